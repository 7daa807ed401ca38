#include "tests/support/GlSubjects.h"

#include "library/Arrow3D.h"
#include "library/Box.h"
#include "library/ColorAtlas.h"
#include "library/ColorMap.h"
#include "library/Cuboid.h"
#include "library/Cylinder.h"
#include "library/Disk.h"
#include "library/FilledBox.h"
#include "library/Geometry.h"
#include "library/HdrImage.h"
#include "library/ModelCache.h"
#include "library/ObjModel.h"
#include "library/Pattern.h"
#include "library/RenderTexture.h"
#include "library/Ring.h"
#include "library/Sphere.h"
#include "library/Style.h"
#include "library/SymbolRegistry.h"
#include "library/TexturedQuad.h"
#include "library/TopMostFragmentDepthBuffer.h"
#include "library/VectorSymbol.h"
#include "library/VolumeImage.h"
#include "library/VolumeTexture.h"
#include "platform/ogl/ShaderProgram.h"
#include "platform/ogl/Text.h"
#include "scene/Canvas.h"
#include "scene/Theme.h"

namespace Vek::Test {

namespace {

QImage Checks() {
  QImage image(4, 4, QImage::Format_ARGB32);
  image.fill(Qt::red);
  image.setPixel(1, 2, 0x80402010);
  return image;
}

boost::shared_ptr<VolumeImage> Voxels() {
  std::istringstream text("TextArray 2 1 2 2 1 2 3 4 5 6 7 8");
  return VolumeImage::LoadFromStream(text, VolumeImage::TextArray);
}

boost::shared_ptr<ObjModel> Triangle() {
  std::istringstream text("v 0 0 0\nv 1 0 0\nv 0 1 0\nvn 0 0 1\ng a\nf 1//1 2//1 3//1\n");
  return LoadPolygonObj(text);
}

boost::shared_ptr<ObjModel> Square() {
  std::istringstream text("v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nf 1 2 3\nf 1 3 4\n");
  return LoadPolygonObj(text);
}

/// A folder with a triangle in place of each symbol: to read whole symbols again and again would take a minute.
vekfile::filepath SmallSymbols() {
  static const TempFolder Folder;
  for (const auto& symbol : std::filesystem::directory_iterator(VEK_SOURCE_DIR "/symbols"))
    Folder.Write(symbol.path().filename().string(), "v 0 0 0\nv 1 0 0\nv 0 1 0\ng a\nf 1 2 3\n");
  return vekfile::filepath(Folder.Path().string());
}

constexpr Types::Viewport<0> Window(0, 0, 61, 37);

template <class Object>
Use Owned(const boost::shared_ptr<Object>& p_object) {
  return [p_object](Scope& p_gl) { (*p_object)(p_gl, RGL_TEXTURE0); };
}

/// A subject that makes its objects anew at each use.
Subject Fresh(const char* p_name, const std::function<void(const Handle&, Scope&)>& p_use) {
  return {p_name, [p_use](const Handle& p_handle) -> Use { return [=](Scope& p_gl) { p_use(p_handle, p_gl); }; }};
}

void DrawStyled(const Handle&, Scope& p_gl) {
  boost::function<void(Scope&)> draw = [](Scope& p_inner) { DrawTexturedSquare(p_inner, 1); };
  Types::FillStyle fill;
  fill.pattern.Set(Pattern::FillGrid);
  fill.secondColor.Set(Qt::white);
  Style::DrawInternal(fill, p_gl, draw);
  Types::LineStyle line;
  line.pattern.Set(Pattern::LineLong);
  line.smooth.Set(true);
  Style::DrawInternal(line, p_gl, draw);
}

Subject TargetOf(const char* p_name, int p_samples) {
  return {p_name,
          [p_samples](const Handle&) -> Use {
            const auto target = boost::make_shared<RenderTexture>(Types::Size{8, 6}, RenderTexture::Rgba8,
                                                                  RenderTexture::Linear, p_samples);
            return [target](Scope& p_gl) {
              {
                const auto bound = target->BindForDraw(p_gl);
                p_gl->Clear(RGL_COLOR_BUFFER_BIT);
              }
              target->GenerateMips(p_gl);
              target->BindColor(p_gl, RGL_TEXTURE0);
              target->BindDepth(p_gl, RGL_TEXTURE0);
              target->ToImage(p_gl);
              target->ReadDepths(p_gl);
            };
          },
          p_samples > 0}; // without samples, where these fail
}

} // namespace

const std::vector<Subject>& GlSubjects() {
  static const std::vector<Subject> All = {
      {"Texture",
       [](const Handle& p_handle) {
         Scope gl(p_handle);
         return Owned(boost::make_shared<Texture>(Checks(), gl));
       }},
      {"VolumeTexture",
       [](const Handle& p_handle) {
         Scope gl(p_handle);
         return Owned(boost::make_shared<VolumeTexture>(Voxels(), gl));
       }},
      {"ColorMap",
       [](const Handle&) {
         return Owned(boost::make_shared<ColorMap>(std::vector<QColor>{Qt::red, Qt::blue}, ColorMap::Interpolated));
       }},
      {"ColorAtlas",
       [](const Handle&) -> Use {
         const auto atlas = boost::make_shared<ColorAtlas>();
         const unsigned int parent = atlas->AddColor(Qt::red, atlas->RootAtlasId());
         atlas->AddColor(Qt::green, parent);
         atlas->AddInstance(parent, {{parent, Qt::blue}});
         return [atlas, built = boost::make_shared<bool>(false)](Scope& p_gl) {
           if (!*built)
             atlas->BuildAtlas(p_gl);
           *built = true;
           (*atlas->Texture())(p_gl, RGL_TEXTURE0);
         };
       }},
      Fresh("Pattern",
            [](const Handle&, Scope& p_gl) {
              Assets::ImageCache cache;
              const Assets::Resource sprites(vekfile::filepath(VEK_SOURCE_DIR "/sprites"));
              (*Pattern::PointSpritePattern(Pattern::PointStar, sprites, cache, p_gl))(p_gl, RGL_TEXTURE0);
            }),
      Fresh("Style", DrawStyled),
      {"Text",
       [](const Handle&) -> Use {
         const auto text = boost::make_shared<Ogl::Text>("abc");
         return [text](Scope& p_gl) { (*text)(p_gl); };
       }},
      {"Canvas",
       [](const Handle&) -> Use {
         const auto text = boost::make_shared<TextRenderer>();
         return [text](Scope& p_gl) {
           Canvas canvas(p_gl, Window, *text);
           canvas.Fill({2, 2, 20, 20}, Qt::red);
           canvas.Text("abc", {5, 10}, {}, Theme().WithHalo(Theme().SmallStyle()));
           canvas.Image({20, 2, 30, 12}, Checks());
           canvas.Polyline({{1, 1}, {5, 9}, {9, 1}}, 1, Qt::red);
           canvas.Flush();
         };
       }},
      {"TexturedQuad",
       [](const Handle& p_handle) -> Use {
         Scope gl(p_handle);
         const auto texture = boost::make_shared<Texture>(Checks(), gl);
         TexturedQuad quad;
         quad.rect = {2, 2, 20, 20};
         quad.border = 1;
         return [=](Scope&) { quad(p_handle, {texture, texture}); };
       }},
      Fresh("Geometry",
            [](const Handle& p_handle, Scope& p_gl) {
              const Geometry shapes(p_handle);
              shapes.Ring(p_gl);
              shapes.Voxel(p_gl);
              Cuboid()(p_handle, shapes);
            }),
      Fresh("Drawables",
            [](const Handle& p_handle, Scope& p_gl) {
              Arrow3D()(p_handle);
              Cylinder()(p_handle);
              Disk()(p_handle);
              Sphere()(p_handle);
              Box()(p_handle);
              FilledBox()(p_handle);
              Ogl::Library::Ring()(p_handle);
              p_gl->PixelProjection(Window);
            }),
      TargetOf("RenderTexture", 0),
      TargetOf("RenderTextureWithSamples", 4),
      {"TopMostFragmentDepthBuffer",
       [](const Handle&) -> Use {
         const auto picker = boost::make_shared<TopMostFragmentDepthBuffer>();
         return [picker](Scope& p_gl) {
           picker->GetDepthAt(
               p_gl, Window, {4, 4}, Core::TimeStamp(), [&](DepthCodec::Encoding) { DrawTexturedSquare(p_gl, 1); },
               [](unsigned int, float) {});
         };
       }},
      {"ModelCache",
       [](const Handle& p_handle) -> Use {
         const auto cache = boost::make_shared<ModelCache>(p_handle);
         const boost::shared_ptr<ObjModel> triangle = Triangle(), square = Square();
         return [=](Scope& p_gl) {
           cache->Register(*triangle);
           ModelDraw(cache->GetModel(cache->Register(*square))).Draw(p_gl);
         };
       }},
      Fresh("SymbolRegistry",
            [symbols = SmallSymbols()](const Handle& p_handle, Scope&) {
              const Core::Ptr<ModelCache> cache(new ModelCache(p_handle));
              const SymbolRegistry registry(cache, symbols);
              registry.GetVertexBuffer(Model::Symbol::ShapeCone);
            }),
      Fresh("VertexData",
            [](const Handle&, Scope& p_gl) {
              Ogl::VertexData data;
              const VectorSymbol arrow(Model::Symbol::ShapeArrow3D, 8);
              arrow.OrientShape(1, 0, Types::Vector3_Base<double>(), true, 0, 1, Types::Matrix3(), data);
              data.Draw(p_gl);
            }),
      Fresh("Readers",
            [](const Handle&, Scope&) {
              const HdrImage sky(vekfile::filepath(VEK_SOURCE_DIR "/fuzz/corpus/FuzzHdr/separated"));
              Voxels();
              Triangle();
            }),
      Fresh("ShaderProgram",
            [](const Handle&, Scope& p_gl) {
              const Ogl::ShaderProgram program(p_gl, "void main() { gl_Position = ftransform(); }",
                                               "uniform vec4 a; void main() { gl_FragColor = a; }");
              const auto used = program.Use(p_gl);
              program.SetUniform(p_gl, "a", QColor(Qt::red));
            }),
  };
  return All;
}

} // namespace Vek::Test

// Occlusion culling of instances: images stay the same, and fewer instances are drawn.

#include "scene/InstancedMesh.h"

#include "library/RenderTexture.h"
#include "library/VectorSymbol.h"
#include "platform/ogl/VertexData.h"
#include "scene/Camera.h"
#include "scene/DirectionalLight.h"
#include "scene/PeelPass.h"

#include "tests/support/Test.h"

namespace {

constexpr int Width = 240, Height = 150;
constexpr unsigned int PrimitivesGenerated = 0x8C87; // a query of OpenGL 3.0

/// Symbols of 12 to 40 pixels in a box, drawn with and without culling.
class InstanceOcclusionPixels : public testing::Test {
public:
  InstanceOcclusionPixels() { Fill(4000, 12, 40); }
  /// Replaces the symbols by others of random sizes.
  void Fill(int p_count, double p_least, double p_most) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> number(0, 1);
    positions.clear(), sizes.clear(), values.clear(), rgba.clear();
    for (int i = 0; i < p_count; ++i) {
      positions.emplace_back(Width * number(random), Height * number(random), -Height * number(random));
      sizes.push_back(p_least + (p_most - p_least) * number(random) * number(random));
      values.push_back(i % 2 == 0 ? NAN : number(random));
      rgba.push_back({static_cast<unsigned char>(i), static_cast<unsigned char>(i / 256), 100, 255});
    }
  }
  InstancedMesh Mesh(std::vector<InstancedMesh::Level> p_levels, bool p_hasColors) const {
    InstancedMesh::Instances instances;
    instances.positions = positions;
    instances.sizes = sizes;
    instances.values = values;
    if (p_hasColors)
      instances.colors = rgba;
    return {std::move(p_levels), instances};
  }
  void TearDown() override { colors = ColorMap({Qt::red}, ColorMap::Discrete); } // releases the texture
  /// Draws, after `prepare`; returns the number of what is `counted`.
  unsigned int Draw(const std::function<void()>& p_draw) {
    gl->ClearColor(Qt::transparent);
    gl->Clear(RGL_COLOR_BUFFER_BIT | RGL_DEPTH_BUFFER_BIT);
    Camera camera;
    camera.Look(Camera::StandardView::Top);
    camera.projection = isCentral ? Camera::Projection::Perspective : Camera::Projection::Parallel;
    const Types::Viewport<0> viewport{0, 0, Width, Height};
    camera.Fit({{0, 0, -Height}, {Width, Height, 0}}, viewport);
    const auto matrices = camera.Apply(gl, viewport);
    const auto lit = DirectionalLight().Apply(gl);
    const auto state = gl->PushAttribScope(RGL_ENABLE_BIT | RGL_DEPTH_BUFFER_BIT | RGL_COLOR_BUFFER_BIT |
                                           RGL_TRANSFORM_BIT | RGL_POLYGON_BIT);
    gl->Enable(RGL_DEPTH_TEST);
    if (prepare)
      prepare();
    unsigned int query = 0, count = 0;
    gl->GenQueries(1, &query);
    gl->BeginQuery(counted, query);
    p_draw();
    gl->EndQuery(counted);
    gl->GetQueryObjectuiv(query, RGL_QUERY_RESULT, &count);
    gl->DeleteQueries(1, &query);
    return count;
  }
  /// Draws colours and then ids with culling and without; the images must be equal. Returns how many primitives are
  /// drawn with culling, in parts of those without.
  double ShareOfDrawn(InstancedMesh p_mesh, const ValueScale& p_scale = {}) {
    std::array<QImage, 2> images, ids;
    std::array<unsigned int, 2> counts{};
    for (const std::size_t all : {0U, 1U}) {
      p_mesh.SetMostVertices(all == 0 ? 0 : std::numeric_limits<std::size_t>::max()); // any number, without culling
      counts[all] = Draw([&] { p_mesh.Draw(gl, colors, p_scale); });
      images[all] = context.Image();
      Draw([&] { p_mesh.DrawIds(gl, 1); });
      ids[all] = context.Image();
    }
    EXPECT_EQ(images[0], images[1]);
    EXPECT_EQ(ids[0], ids[1]);
    return counts[0] / static_cast<double>(counts[1]);
  }

  /// The layers of a peeling and the number of what is `counted`.
  struct Peeled {
    std::vector<QImage> layers;
    double count = 0;
  };
  Peeled Peel(const InstancedMesh& p_mesh, const ValueScale& p_scale = {}) {
    Peeled peeled;
    PeelPass pass{Types::Size(Width, Height), 0};
    boost::shared_ptr<Ogl::Texture> depths;
    for (; pass.front < Layers; ++pass.front) {
      const RenderTexture target(pass.size);
      {
        const auto bound = target.BindForDraw(gl);
        gl->ActiveTexture(PeelPass::Unit);
        if (depths)
          gl->Bind(depths, Rgl::Sampler2D);
        gl->ActiveTexture(RGL_TEXTURE0);
        peeled.count += Draw([&] { p_mesh.Draw(gl, colors, p_scale, pass.front == 0 ? nullptr : &pass); });
      }
      depths = target.DepthTexture(gl);
      peeled.layers.push_back(target.ToImage(gl));
    }
    return peeled;
  }
  /// Peels layers with culling and without; their images must be equal. Returns how many primitives are drawn with
  /// culling, in parts of those without.
  double ShareOfPeeled(InstancedMesh p_mesh, const ValueScale& p_scale = {}) {
    p_mesh.SetMostLayers(Layers);
    const Peeled culled = Peel(p_mesh, p_scale);
    p_mesh.SetMostVertices(std::numeric_limits<std::size_t>::max());
    const Peeled all = Peel(p_mesh, p_scale);
    for (std::size_t layer = 0; layer < Layers; ++layer)
      EXPECT_EQ(culled.layers[layer], all.layers[layer]) << layer;
    return culled.count / all.count;
  }

  static constexpr std::size_t Layers = 4;
  std::vector<Point> positions;
  std::vector<double> sizes, values;
  std::vector<InstancedMesh::Rgba> rgba;
  bool isCentral = false;
  unsigned int counted = PrimitivesGenerated;
  std::function<void()> prepare;
  ColorMap colors{{Qt::red, Qt::yellow, Qt::blue}, ColorMap::Interpolated};
  Ogl::OffscreenContext context{{Width, Height}, 4};
  Scope gl{context.Handle()};
};

std::vector<InstancedMesh::Level> Symbols(Model::Symbol::Shape p_shape) {
  Ogl::VertexData data;
  VectorSymbol(p_shape, 12).BuildShape(data);
  return {InstancedMesh::Level::Centered(GpuMesh(data))};
}

} // namespace

TEST_F(InstanceOcclusionPixels, LeavesTheImageAsItIs) {
  for (const bool isPerspective : {false, true}) {
    isCentral = isPerspective;
    EXPECT_LT(ShareOfDrawn(Mesh(InstancedMesh::Spheres(), false)), 0.8) << isPerspective;
    EXPECT_LT(ShareOfDrawn(Mesh(InstancedMesh::Spheres(), true)), 0.8) << isPerspective;
    EXPECT_LT(ShareOfDrawn(Mesh(Symbols(Model::Symbol::ShapeCube), true)), 0.98) << isPerspective;
  }
}

TEST_F(InstanceOcclusionPixels, LeavesTheLayersOfAPeelingAsTheyAre) {
  colors = ColorMap({QColor(255, 0, 0, 100), QColor(0, 0, 255, 50)}, ColorMap::Interpolated);
  ValueScale holes;
  holes.missing = Qt::transparent;
  for (const bool isPerspective : {false, true}) {
    isCentral = isPerspective;
    EXPECT_LT(ShareOfPeeled(Mesh(InstancedMesh::Spheres(), false)), 0.95) << isPerspective;
    EXPECT_EQ(ShareOfPeeled(Mesh(InstancedMesh::Spheres(), false), holes), 1) << isPerspective;
  }
}

/// Near ones keep the shader from far ones.
TEST_F(InstanceOcclusionPixels, PeelsFromNearToFar) {
  counted = RGL_SAMPLES_PASSED;
  for (const bool isPerspective : {false, true}) {
    isCentral = isPerspective;
    InstancedMesh cubes = Mesh(Symbols(Model::Symbol::ShapeCube), false);
    cubes.SetMostVertices(std::numeric_limits<std::size_t>::max());
    const double byNumber = Peel(cubes).count;
    cubes.SetMostLayers(Layers);
    EXPECT_LT(Peel(cubes).count, 0.8 * byNumber) << isPerspective;
  }
}

/// The outlines of peeled spheres are those of polygons of 64 corners, but for pixels whose centres lie on them.
TEST_F(InstanceOcclusionPixels, PeelsRoundSpheres) {
  colors = ColorMap({QColor(255, 0, 0, 100), QColor(0, 0, 255, 50)}, ColorMap::Interpolated);
  Fill(200, 3, 40);
  for (const bool isPerspective : {false, true}) {
    isCentral = isPerspective;
    InstancedMesh spheres = Mesh(InstancedMesh::Spheres(), false);
    spheres.SetMostLayers(Layers);
    const Peeled round = Peel(spheres);
    std::vector<InstancedMesh::Level> finest = InstancedMesh::Spheres();
    finest.erase(finest.begin(), finest.end() - 2);
    spheres.SetLevels(std::move(finest));
    spheres.SetMostLayers(0);
    const Peeled polygons = Peel(spheres);
    for (std::size_t layer = 0; layer < Layers; ++layer) {
      int seen = 0, different = 0;
      for (int y = 0; y < Height; ++y)
        for (int x = 0; x < Width; ++x) {
          const QRgb pixel = polygons.layers[layer].pixel(x, y);
          seen += qAlpha(pixel) != 0 ? 1 : 0;
          different += pixel != round.layers[layer].pixel(x, y) ? 1 : 0;
        }
      EXPECT_LE(different, seen / 300) << layer << ' ' << isPerspective;
      EXPECT_GT(seen, 0) << layer;
    }
  }
}

/// Surfaces at equal depths are one layer.
TEST_F(InstanceOcclusionPixels, CountsSurfacesAtEqualDepthsOnce) {
  colors = ColorMap({QColor(255, 0, 0, 100)}, ColorMap::Discrete);
  constexpr double Edge = 16, Away = 30;
  positions.clear();
  for (int twice = 0; twice < 2; ++twice)
    for (double z = Away / 2 - Height; z < 0; z += Away) // from far to near
      for (double y = 0; y < Height; y += Edge / 2)
        for (double x = 0; x < Width; x += Edge / 2)
          positions.emplace_back(x, y, z);
  sizes.assign(positions.size(), Edge * std::sqrt(3.0));
  values.assign(positions.size(), 0.5);
  for (const bool isPerspective : {false, true}) {
    isCentral = isPerspective;
    EXPECT_LT(ShareOfPeeled(Mesh(Symbols(Model::Symbol::ShapeCube), false)), 0.9) << isPerspective;
    EXPECT_LT(ShareOfPeeled(Mesh(InstancedMesh::Spheres(), false)), 0.9) << isPerspective;
  }
}

/// As wide as a few pixels.
TEST_F(InstanceOcclusionPixels, HidesSmallSymbols) {
  Fill(60000, 3, 6);
  colors = ColorMap({QColor(255, 0, 0, 100), QColor(0, 0, 255, 50)}, ColorMap::Interpolated);
  for (const bool isPerspective : {false, true}) {
    isCentral = isPerspective;
    EXPECT_LT(ShareOfDrawn(Mesh(InstancedMesh::Spheres(), true)), 0.9) << isPerspective;
    EXPECT_LT(ShareOfPeeled(Mesh(InstancedMesh::Spheres(), false)), 0.98) << isPerspective;
  }
}

/// What is behind is seen, or is not what the depth test keeps.
TEST_F(InstanceOcclusionPixels, LeavesOutNothingThatMayBeSeen) {
  constexpr std::size_t Count = 1500;
  positions.resize(Count);
  for (std::vector<double>* const numbers : {&sizes, &values})
    numbers->resize(Count);
  rgba.resize(Count);
  const InstancedMesh spheres = Mesh(InstancedMesh::Spheres(), false);
  EXPECT_LT(ShareOfDrawn(spheres), 0.95);
  ValueScale holes;
  holes.missing = Qt::transparent;
  EXPECT_EQ(ShareOfDrawn(spheres, holes), 1);
  const std::pair<const char*, std::function<void()>> states[] = {
      {"blending", [&] { gl->Enable(RGL_BLEND); }},
      {"last", [&] { gl->DepthFunc(RGL_ALWAYS); }},
      {"no depths", [&] { gl->DepthMask(false); }},
      {"no test", [&] { gl->Disable(RGL_DEPTH_TEST); }},
      {"back faces", [&] { gl->Enable(RGL_CULL_FACE); }},
      {"cut", [&] {
         constexpr double Plane[] = {0, 0, -1, -Height / 2.0}; // the front half of the box is cut away
         gl->ClipPlane(RGL_CLIP_PLANE0, Plane);
         gl->Enable(RGL_CLIP_PLANE0);
       }}};
  for (const auto& [name, set] : states) {
    SCOPED_TRACE(name);
    prepare = set;
    EXPECT_EQ(ShareOfDrawn(spheres), 1);
  }
  prepare = {};
  colors = ColorMap({QColor(255, 0, 0, 100), Qt::blue}, ColorMap::Interpolated);
  EXPECT_EQ(ShareOfDrawn(spheres), 1);
  for (InstancedMesh::Rgba& color : rgba)
    color[3] = 100;
  EXPECT_EQ(ShareOfDrawn(Mesh(InstancedMesh::Spheres(), true)), 1);
  // Open meshes, and closed ones that do not surround their positions.
  EXPECT_EQ(ShareOfDrawn(Mesh(Symbols(Model::Symbol::ShapeCone), false)), 1);
  std::vector<InstancedMesh::Level> aside = Symbols(Model::Symbol::ShapeCube);
  aside[0].origin += Point(1, 0, 0);
  EXPECT_EQ(ShareOfDrawn(Mesh(aside, false)), 1);
}

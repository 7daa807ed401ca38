#include "scene/DepthShader.h"
#include "scene/InstancedMesh.h"
#include "scene/private/InstanceArrays.h"
#include "scene/private/InstanceBuffers.h"
#include "scene/private/InstanceOcclusion.h"
#include "scene/private/InstanceShaders.h"
#include "scene/private/MeshArrays.h"
#include "scene/private/MeshShaders.h"

#include "platform/debug/Check.h"
#include "platform/ogl/Guard.h"

#include <algorithm>
#include <array>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <utility>

namespace Vek::Chart::Scene {

namespace {

using namespace Private;
using Record = Ogl::Vec3<float>;

constexpr const char* Signature =
    "void __cdecl Vek::Chart::Scene::InstancedMesh::Draw(class Vek::Chart::Utility::Scoped<class Vek::Chart::Ogl::Rgl> "
    "&) const";

// Locations that no fixed attribute of a mesh has: not position (0), normal (2), colours (3, 4) and texture coordinate
// 0 (8).
enum Location : unsigned int {
  PlaceLocation = 1,
  SizeLocation = 5,
  AxisXLocation = 6,
  AxisYLocation = 7,
  PaintLocation = 9
};

} // namespace

std::size_t InstancedMesh::Step(const Utility::Scoped<Rgl>& p_gl) const {
  const Buffers* const buffers = _buffers.Find(p_gl);
  return buffers != nullptr ? buffers->selection.Step() : 1;
}

namespace {

/// Whether a device draws levels of that many instances.
bool HasLevels(const Utility::Scoped<Rgl>& p_gl, std::size_t p_count) {
  if (!(p_gl->GlVersion() >= Utility::VersionNo(4, 0, 0)))
    return false;
  int most = 0;
  p_gl->GetIntegerv(RGL_MAX_TEXTURE_BUFFER_SIZE, &most);
  return 2 * p_count <= static_cast<std::size_t>(std::max(most, 0)); // rotations have two texels
}

} // namespace

/// A drawing of a mesh with what it draws into.
struct InstancedMesh::Drawing {
  using SetUniforms = std::function<void(const Ogl::ShaderProgram&)>;

  bool Upload();
  std::size_t Hiding() const;
  bool Select();
  void Draw(const std::map<std::string, int>& p_constants, const SetUniforms& p_setUniforms);
  InstanceShaders ShadersOf(const std::map<std::string, int>& p_constants) const;
  bool BindTextures();
  void DrawLast(InstanceShaders p_shaders);
  void DrawLevel(std::size_t p_level, InstanceShaders p_shaders);
  void DrawWith(const InstanceShaders& p_shaders, const Level& p_level, const SetUniforms& p_draw);

  Utility::Scoped<Rgl>& gl;
  const InstancedMesh& mesh;
  Paint paint;
  Buffers& buffers = mesh._buffers.Get(gl);
  int leastAlpha = 0;     ///< of all that is drawn, from 0 to 255; of colours
  bool isNearest = false; ///< what one other instance hides is not seen
  bool hasLevels = HasLevels(gl, mesh.Count());
  SetUniforms setUniforms{};
};

/// Uploads what changed and what `paint` paints with.
bool InstancedMesh::Drawing::Upload() {
  return buffers.positions.Update(*gl, mesh._positions, Signature) &&
         buffers.sizes.Update(*gl, mesh._sizes, Signature) && buffers.axes.Update(*gl, mesh._axes, Signature) &&
         (paint != Paint::Colors || (mesh._colors ? buffers.paint.Update(*gl, mesh._colors, Signature)
                                                  : buffers.paint.Update(*gl, mesh._values, Signature))) &&
         (paint != Paint::Ids || buffers.ids.Update(*gl, mesh._ids, Signature));
}

namespace {

/// Clip planes that are enabled, as bits.
int EnabledCuts(const Utility::Scoped<Rgl>& p_gl) {
  constexpr unsigned int Planes = 6;
  int cuts = 0;
  for (unsigned int i = 0; i < Planes; ++i)
    cuts |= p_gl->IsEnabled(RGL_CLIP_PLANE0 + i) != 0 ? 1 << i : 0;
  return cuts;
}

/// Whether the nearest opaque fragment alone is seen, whatever the order of drawing.
bool ShowsNearest(const Utility::Scoped<Rgl>& p_gl) {
  constexpr int EnoughBits = 24;
  if (p_gl->IsEnabled(RGL_DEPTH_TEST) == 0 || EnabledCuts(p_gl) != 0)
    return false;
  for (const Ogl::GlEnum capability : {RGL_BLEND, RGL_CULL_FACE, RGL_ALPHA_TEST, RGL_STENCIL_TEST})
    if (p_gl->IsEnabled(capability) != 0)
      return false;
  int function = 0, isWritten = 0, bits = 0;
  std::array<int, 2> modes{};
  std::array<double, 2> range{};
  p_gl->GetIntegerv(RGL_DEPTH_FUNC, &function);
  p_gl->GetIntegerv(RGL_DEPTH_WRITEMASK, &isWritten);
  p_gl->GetIntegerv(RGL_DEPTH_BITS, &bits);
  p_gl->GetIntegerv(RGL_POLYGON_MODE, modes.data());
  p_gl->GetDoublev(RGL_DEPTH_RANGE, range.data());
  const int fill = static_cast<int>(RGL_FILL);
  return (function == static_cast<int>(RGL_LESS) || function == static_cast<int>(RGL_LEQUAL)) && isWritten != 0 &&
         bits >= EnoughBits && modes[0] == fill && modes[1] == fill && range[0] == 0 && range[1] == 1;
}

} // namespace

/// How many instances surely hide what is behind them; 0 for any number.
std::size_t InstancedMesh::Drawing::Hiding() const {
  constexpr std::size_t Few = 1000;
  const bool areBodies =
      mesh.Count() >= Few && mesh._axisFloats != RotationFloats && // which may be any matrices
      std::any_of(mesh._bodies.begin(), mesh._bodies.end(), [](const Body& p_body) { return p_body.core > 0; });
  if (!areBodies || !ShowsNearest(gl))
    return 0;
  if (paint != Paint::Colors)
    return buffers.selection.Hiding();
  constexpr int Opaque = 255;
  if (mesh._mostLayers == 0)
    return leastAlpha == Opaque ? 1 : 0;
  const std::size_t bodies = (mesh._mostLayers + 1) / 2; // each has two surfaces
  return leastAlpha > 0 && bodies <= OcclusionGrid::MostBodies ? OcclusionGrid::MostBodies : 0;
}

namespace {

bool HasOneSample(const Utility::Scoped<Rgl>& p_gl) {
  int buffers = 1;
  p_gl->GetIntegerv(RGL_SAMPLE_BUFFERS, &buffers);
  return buffers == 0;
}

} // namespace

/// Finds the levels, if asked for or not yet known, and uploads the order of the instances.
bool InstancedMesh::Drawing::Select() {
  InstanceSelection& selection = buffers.selection;
  InstanceSelection::Input input{mesh._positions,    mesh._sizes, mesh._axes, {}, mesh._leastPixels,
                                 mesh._mostVertices, Hiding(),    false,      {}, {}};
  if (input.hiding != 0)
    input.hasOneSample = HasOneSample(gl) && (paint == Paint::Colors || selection.HasOneSample());
  for (std::size_t i = 0; i < mesh._levels.size(); ++i) {
    const Level& level = mesh._levels[i];
    input.levels.push_back({level.mostPixels, level.mesh.VertexCount(),
                            level.facing == Level::Facing::Sphere ? 2 * level.scale : 0, mesh._bodies[i].reach,
                            mesh._bodies[i].core});
  }
  input.view = input.sizing = Projection::Of(gl);
  if (paint != Paint::Colors && selection.Fits(mesh._positions, mesh._sizes, mesh._levels.size()))
    input.sizing = selection.Sizing();
  if (!selection.Update(std::move(input)) && buffers.order.Count() != 0)
    return true;
  if (buffers.order.Count() != mesh.Count())
    buffers.order = gl->GetBufferPool().CreateBuffer<std::uint32_t>(mesh.Count(), Ogl::BufferUsage::Dynamic);
  if (buffers.order.Count() == 0)
    return false; // reported by the pool
  if (selection.Count() == 0)
    return true;
  const Ogl::Buffer<std::uint32_t> order = std::exchange(buffers.order, {});
  {
    const Ogl::BufferPool::WriteArray<std::uint32_t> mapped(order, 0, selection.Count(), RGL_ARRAY_BUFFER);
    if (!VEK_ENSURE_TEXT(mapped.Count() == selection.Count(), "mapped.Count() == selection.Count()", Signature))
      return false;
    selection.WriteOrder(mapped.Data());
  }
  if (order.Storage()->ContentsLost())
    return false; // reported by the mapping
  buffers.order = order;
  return true;
}

/// What all levels have in common.
InstanceShaders InstancedMesh::Drawing::ShadersOf(const std::map<std::string, int>& p_constants) const {
  InstanceShaders shaders{hasLevels ? Fetch::Textures : Fetch::Attributes, Fragments::Mesh, paint, p_constants};
  std::map<std::string, int>& constants = shaders.constants;
  constants["sized"] = buffers.sizes ? 1 : 0;
  constants["oriented"] = !buffers.axes ? 0 : mesh._axisFloats == DirectionFloats ? 1 : 2;
  constants["painted"] = paint == Paint::Ids || (paint == Paint::Colors && buffers.paint) ? 1 : 0;
  constants["numbered"] = paint == Paint::Ids && !buffers.ids ? 1 : 0;
  constants["widened"] = mesh._leastPixels > 0 ? 1 : 0;
  constants["central"] = Projection::Of(gl).isCentral ? 1 : 0;
  return shaders;
}

/// Calls `p_draw` with the program of the shaders, its uniforms set.
void InstancedMesh::Drawing::DrawWith(const InstanceShaders& p_shaders, const Level& p_level,
                                      const SetUniforms& p_draw) {
  const Ogl::ShaderProgram* const found = Private::ProgramOf(buffers.programs, p_shaders, [&] {
    const std::vector<std::string> attributes{"", "place", "", "", "", "size", "axis_x", "axis_y", "", "paint"};
    return Ogl::ShaderProgram(gl, p_shaders.VertexText(), p_shaders.FragmentText(),
                              hasLevels ? std::vector<std::string>() : attributes);
  });
  if (found == nullptr)
    return;
  const Ogl::ShaderProgram& program = *found;
  const auto inUse = program.Use(gl);
  setUniforms(program);
  const double pixels = Projection::Of(gl).pixels;
  program.SetUniform(gl, "up", mesh._up);
  program.SetUniform(gl, "least", static_cast<float>(pixels > 0 ? mesh._leastPixels / pixels : 0));
  program.SetUniform(gl, "center", p_level.origin);
  program.SetUniform(gl, "fit", static_cast<float>(p_level.scale));
  p_draw(program);
}

/// Draws all instances with the last level, where there are no levels.
void InstancedMesh::Drawing::DrawLast(InstanceShaders p_shaders) {
  const Level& level = mesh._levels.back();
  p_shaders.constants["facing"] = 0;
  p_shaders.constants["lighting"] = LightingOf(level.mesh);
  std::vector<GpuMesh::InstanceAttribute> attributes;
  const auto add = [&](unsigned int p_location, const GpuArray& p_array, std::size_t p_record, std::size_t p_offset,
                       unsigned int p_components, bool p_bytes) {
    if (p_array)
      attributes.push_back(
          {p_location, p_array.Storage(), p_offset, static_cast<unsigned int>(p_record), p_components, p_bytes});
  };
  const std::size_t axes = mesh._axisFloats * sizeof(float);
  add(PlaceLocation, buffers.positions, sizeof(Record), 0, 3, false);
  add(SizeLocation, buffers.sizes, sizeof(float), 0, 1, false);
  add(AxisXLocation, buffers.axes, axes, 0, 3, false);
  if (mesh._axisFloats == RotationFloats)
    add(AxisYLocation, buffers.axes, axes, axes / 2, 3, false);
  const bool paintsBytes = paint == Paint::Ids || mesh._colors != nullptr;
  if (paint != Paint::Depths)
    add(PaintLocation, paint == Paint::Ids ? buffers.ids : buffers.paint, sizeof(float), 0, paintsBytes ? 4 : 1,
        paintsBytes);
  DrawWith(p_shaders, level,
           [&](const Ogl::ShaderProgram&) { level.mesh.DrawInstanced(gl, mesh.Count(), attributes); });
}

namespace {

// Units that neither colour maps nor layers use.
constexpr std::array<const char*, 5> TextureNames{"order", "places", "sizes", "axes", "paints"};
constexpr int FirstUnit = Private::BufferTextures<5>::FirstUnit;

/// Disables clip planes, which would cut the polygon instead of the sphere. Releasing the guard enables them again.
boost::shared_ptr<void> WithoutCuts(const Utility::Scoped<Rgl>& p_gl, int p_cuts) {
  const auto each = [p_cuts](const auto& p_call) {
    for (unsigned int i = 0; p_cuts >> i != 0; ++i)
      if ((p_cuts >> i & 1) != 0)
        p_call(RGL_CLIP_PLANE0 + i);
  };
  each([&](Ogl::GlEnum p_plane) { p_gl->Disable(p_plane); });
  return Ogl::MakeGuard([gl = p_gl->Functions(), each] { each([&](Ogl::GlEnum p_plane) { gl->Enable(p_plane); }); });
}

} // namespace

bool InstancedMesh::Drawing::BindTextures() {
  const GpuArray& paints = paint == Paint::Ids ? buffers.ids : buffers.paint;
  return buffers.textures.Bind(*gl, {{{RGL_R32UI, buffers.order.Name()},
                                      {RGL_RGB32F, buffers.positions.Name()},
                                      {RGL_R32F, buffers.sizes.Name()},
                                      {RGL_RGB32F, buffers.axes.Name()},
                                      {paint == Paint::Ids || mesh._colors ? RGL_RGBA8 : RGL_R32F, paints.Name()}}});
}

/// Draws the instances of a level.
void InstancedMesh::Drawing::DrawLevel(std::size_t p_level, InstanceShaders p_shaders) {
  const Level& level = mesh._levels[p_level];
  const InstanceSelection::Range& range = buffers.selection.Ranges()[p_level];
  const bool isSphere = level.facing == Level::Facing::Sphere, isOutline = level.facing == Level::Facing::Outline;
  // Samples between the centres of pixels need polygons.
  constexpr std::size_t SquareVertices = 4;
  const bool isExact =
      isSphere && mesh._mostLayers != 0 && level.mesh.VertexCount() > SquareVertices && HasOneSample(gl);
  const GpuMesh& repeated = isExact ? mesh._squares : mesh._repeated[p_level];
  const std::size_t copies = isExact ? SquareCopies : mesh._copies[p_level];
  const int cuts = isSphere ? EnabledCuts(gl) : 0;
  p_shaders.fragments = isSphere ? Fragments::Spheres : Fragments::Mesh;
  p_shaders.constants["facing"] = isOutline ? 1 : 0;
  p_shaders.constants["lighting"] = isOutline ? ByShade : isSphere ? ByOneNormal : LightingOf(level.mesh);
  p_shaders.constants["repeated"] = copies > 1 ? 1 : 0;
  p_shaders.constants["cuts"] = cuts;
  p_shaders.constants["exact"] = isExact ? 1 : 0;
  p_shaders.constants[FlatNormals] = mesh._areFlat[p_level] ? 1 : 0;
  DrawWith(p_shaders, level, [&](const Ogl::ShaderProgram& p_program) {
    for (std::size_t i = 0; i < TextureNames.size(); ++i)
      p_program.SetUniform(gl, TextureNames[i], FirstUnit + static_cast<int>(i));
    p_program.SetUniform(gl, "copies", static_cast<int>(copies));
    const auto uncut = WithoutCuts(gl, cuts);
    const std::size_t end = isNearest ? range.nearer : range.count;
    const std::size_t most = mesh._mostAtOnce != 0 ? mesh._mostAtOnce : end;
    for (std::size_t begin = 0; begin < end; begin += most) {
      if (begin != 0)
        gl->Finish();
      const std::size_t count = std::min(end - begin, most);
      p_program.SetUniform(gl, "first", static_cast<int>(range.first + begin));
      p_program.SetUniform(gl, "count", static_cast<int>(count));
      repeated.DrawInstanced(gl, (count + copies - 1) / copies, {});
    }
  });
}

/// Draws all levels. The constants and uniforms are those of the painting.
void InstancedMesh::Drawing::Draw(const std::map<std::string, int>& p_constants, const SetUniforms& p_setUniforms) {
  setUniforms = p_setUniforms;
  if (paint == Paint::Ids && !hasLevels && !mesh._ids && !buffers.numbers)
    buffers.numbers = Share(StoredIds({}, mesh.Count()));
  if (!Upload() || (hasLevels && !Select()))
    return;
  if (buffers.numbers && !buffers.ids.Update(*gl, buffers.numbers, Signature))
    return;
  const InstanceShaders shaders = ShadersOf(p_constants);
  if (!hasLevels)
    return DrawLast(shaders);
  const auto state = gl->PushAttribScope(RGL_TEXTURE_BIT);
  if (!BindTextures())
    return;
  for (std::size_t level = 0; level < mesh._levels.size(); ++level)
    if (buffers.selection.Ranges()[level].count != 0)
      DrawLevel(level, shaders);
}

namespace {

/// Of all texels, and of the colours of values without one.
int LeastAlpha(Library::ColorMap p_colors, const ValueScale& p_scale) {
  const QImage& image = p_colors.GetImage();
  const auto* const texels = reinterpret_cast<const QRgb*>(image.constScanLine(0)); // NOLINT: format ARGB32
  if (!p_scale.missing.isValid() || texels == nullptr)
    return 0;
  int least = p_scale.missing.alpha();
  for (const QColor& color : {p_scale.below, p_scale.above})
    if (color.isValid())
      least = std::min(least, color.alpha());
  for (int i = 0; i < image.width(); ++i)
    least = std::min(least, qAlpha(texels[i]));
  return least;
}

} // namespace

void InstancedMesh::Draw(Utility::Scoped<Rgl>& p_gl, const Library::ColorMap& p_colors, const ValueScale& p_scale,
                         const PeelPass* p_pass) const {
  p_scale.Check();
  if (Count() == 0 || _levels.empty())
    return;
  const auto map = p_colors.Bind(p_gl);
  const Painting painting = _colors ? ByColor : ByValue;
  const bool mayHide = p_pass == nullptr || _mostLayers != 0;
  const int leastAlpha = !mayHide ? 0 : _colors ? _leastAlpha : LeastAlpha(p_colors, p_scale);
  // One instance has the surfaces of two layers.
  const bool isNearest = _mostLayers != 0 && (p_pass == nullptr || p_pass->front == 1);
  Drawing{p_gl, *this, Paint::Colors, _buffers.Get(p_gl), leastAlpha, isNearest}.Draw(
      {{"painting", painting}, {"logarithmic", p_scale.logarithmic ? 1 : 0}, {"peeled", p_pass != nullptr ? 1 : 0}},
      [&](const Ogl::ShaderProgram& p_program) {
        SetColorUniforms(p_gl, p_program, painting, p_colors, p_scale, p_pass);
      });
}

void InstancedMesh::DrawDepths(Utility::Scoped<Rgl>& p_gl) const {
  if (Count() != 0 && !_levels.empty())
    Drawing{p_gl, *this, Paint::Depths}.Draw({{"peeled", 0}}, [](const Ogl::ShaderProgram&) {});
}

void InstancedMesh::DrawIds(Utility::Scoped<Rgl>& p_gl, unsigned int p_plot) const {
  if (p_plot >= PickPass::MostPlots)
    throw std::invalid_argument("InstancedMesh: expected a plot below " + std::to_string(PickPass::MostPlots) +
                                ", got " + std::to_string(p_plot));
  if (Count() != 0 && !_levels.empty())
    Drawing{p_gl, *this, Paint::Ids}.Draw({{"peeled", 0}}, [&](const Ogl::ShaderProgram& p_program) {
      p_program.SetUniform(p_gl, "plot", static_cast<float>(p_plot + 1) / 255);
    });
}

void InstancedMesh::Draw(Utility::Scoped<Rgl>& p_gl, const PickPass& p_pass) const {
  if (p_pass.kind == PickPass::Ids)
    DrawIds(p_gl, p_pass.plot);
  else
    DrawDepths(p_gl);
}

} // namespace Vek::Chart::Scene

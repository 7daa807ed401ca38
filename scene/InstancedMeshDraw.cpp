#include "scene/DepthShader.h"
#include "scene/InstancedMesh.h"
#include "scene/private/InstanceArrays.h"
#include "scene/private/InstanceBuffers.h"
#include "scene/private/InstanceShaders.h"
#include "scene/private/MeshArrays.h"
#include "scene/private/MeshShaders.h"

#include "platform/debug/Check.h"
#include "platform/ogl/Guard.h"

#include <algorithm>
#include <array>
#include <optional>
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

/// Uploads what changed and what `p_paint` paints with.
bool InstancedMesh::Upload(Utility::Scoped<Rgl>& p_gl, Buffers& p_buffers, Paint p_paint) const {
  return p_buffers.positions.Update(*p_gl, _positions, Signature) && p_buffers.sizes.Update(*p_gl, _sizes, Signature) &&
         p_buffers.axes.Update(*p_gl, _axes, Signature) &&
         (p_paint != Paint::Colors || (_colors ? p_buffers.paint.Update(*p_gl, _colors, Signature)
                                               : p_buffers.paint.Update(*p_gl, _values, Signature))) &&
         (p_paint != Paint::Ids || p_buffers.ids.Update(*p_gl, _ids, Signature));
}

/// Finds the levels, if asked for or not yet known, and uploads the order of the instances.
bool InstancedMesh::Select(Utility::Scoped<Rgl>& p_gl, Buffers& p_buffers, Paint p_paint) const {
  InstanceSelection& selection = p_buffers.selection;
  InstanceSelection::Input input{_positions, _sizes, _axes, {}, Reach(_levels), _leastPixels, _mostVertices, {}, {}};
  for (const Level& level : _levels)
    input.levels.push_back({level.mostPixels, level.mesh.VertexCount()});
  input.view = input.sizing = Projection::Of(p_gl);
  if (p_paint != Paint::Colors && selection.Fits(_positions, _sizes, _levels.size()))
    input.sizing = selection.Sizing();
  if (!selection.Update(std::move(input)) && p_buffers.order.Count() != 0)
    return true;
  if (p_buffers.order.Count() != Count())
    p_buffers.order = p_gl->GetBufferPool().CreateBuffer<std::uint32_t>(Count(), Ogl::BufferUsage::Dynamic);
  if (p_buffers.order.Count() == 0)
    return false; // reported by the pool
  if (selection.Count() == 0)
    return true;
  const Ogl::Buffer<std::uint32_t> order = std::exchange(p_buffers.order, {});
  {
    const Ogl::BufferPool::WriteArray<std::uint32_t> mapped(order, 0, selection.Count(), RGL_ARRAY_BUFFER);
    if (!VEK_ENSURE_TEXT(mapped.Count() == selection.Count(), "mapped.Count() == selection.Count()", Signature))
      return false;
    selection.WriteOrder(mapped.Data());
  }
  if (order.Storage()->ContentsLost())
    return false; // reported by the mapping
  p_buffers.order = order;
  return true;
}

/// Draws all instances with the last level, with the program in use.
void InstancedMesh::DrawLast(Utility::Scoped<Rgl>& p_gl, const Buffers& p_buffers, Paint p_paint,
                             const Ogl::ShaderProgram& p_program) const {
  const Level& level = _levels.back();
  p_program.SetUniform(p_gl, "center", level.origin);
  p_program.SetUniform(p_gl, "fit", static_cast<float>(level.scale));
  p_program.SetUniform(p_gl, "facing", 0);
  p_program.SetUniform(p_gl, "lighting", LightingOf(level.mesh));
  std::vector<GpuMesh::InstanceAttribute> attributes;
  const auto add = [&](unsigned int p_location, const GpuArray& p_array, std::size_t p_record, std::size_t p_offset,
                       unsigned int p_components, bool p_bytes) {
    if (p_array)
      attributes.push_back(
          {p_location, p_array.Storage(), p_offset, static_cast<unsigned int>(p_record), p_components, p_bytes});
  };
  const std::size_t axes = _axisFloats * sizeof(float);
  add(PlaceLocation, p_buffers.positions, sizeof(Record), 0, 3, false);
  add(SizeLocation, p_buffers.sizes, sizeof(float), 0, 1, false);
  add(AxisXLocation, p_buffers.axes, axes, 0, 3, false);
  if (_axisFloats == RotationFloats)
    add(AxisYLocation, p_buffers.axes, axes, axes / 2, 3, false);
  const bool paintsBytes = p_paint == Paint::Ids || _colors != nullptr;
  if (p_paint != Paint::Depths)
    add(PaintLocation, p_paint == Paint::Ids ? p_buffers.ids : p_buffers.paint, sizeof(float), 0, paintsBytes ? 4 : 1,
        paintsBytes);
  level.mesh.DrawInstanced(p_gl, Count(), attributes);
}

namespace {

// Units that neither colour maps nor layers use.
constexpr std::array<const char*, 5> TextureNames{"order", "places", "sizes", "axes", "paints"};
constexpr int FirstUnit = 4;

/// Clip planes that are enabled, as bits.
int EnabledCuts(const Utility::Scoped<Rgl>& p_gl) {
  constexpr unsigned int Planes = 6;
  int cuts = 0;
  for (unsigned int i = 0; i < Planes; ++i)
    cuts |= p_gl->IsEnabled(RGL_CLIP_PLANE0 + i) != 0 ? 1 << i : 0;
  return cuts;
}

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

/// Draws the instances of a level, with the program in use.
void InstancedMesh::DrawLevel(Utility::Scoped<Rgl>& p_gl, const Buffers& p_buffers, std::size_t p_level,
                              const Ogl::ShaderProgram& p_program) const {
  const Level& level = _levels[p_level];
  const InstanceSelection::Range& range = p_buffers.selection.Ranges()[p_level];
  const std::size_t copies = _copies[p_level];
  p_program.SetUniform(p_gl, "center", level.origin);
  p_program.SetUniform(p_gl, "fit", static_cast<float>(level.scale));
  p_program.SetUniform(p_gl, "facing", level.facing == Level::Facing::Rotated ? 0 : 1);
  p_program.SetUniform(p_gl, "lighting",
                       level.facing == Level::Facing::Rotated   ? LightingOf(level.mesh)
                       : level.facing == Level::Facing::Outline ? ByShade
                                                                : ByOneNormal);
  p_program.SetUniform(p_gl, "first", static_cast<int>(range.first));
  p_program.SetUniform(p_gl, "count", static_cast<int>(range.count));
  p_program.SetUniform(p_gl, "copies", static_cast<int>(copies));
  _repeated[p_level].DrawInstanced(p_gl, (range.count + copies - 1) / copies, {});
}

/// Draws all levels with fragment shaders of the same body.
void InstancedMesh::DrawLevels(Utility::Scoped<Rgl>& p_gl, Buffers& p_buffers, Paint p_paint, const std::string& p_body,
                               const std::function<void(const Ogl::ShaderProgram&)>& p_setUniforms) const {
  const bool hasLevels = HasLevels(p_gl, Count());
  if (p_paint == Paint::Ids && !hasLevels && !_ids && !p_buffers.numbers)
    p_buffers.numbers = Share(StoredIds({}, Count()));
  if (!Upload(p_gl, p_buffers, p_paint) || (hasLevels && !Select(p_gl, p_buffers, p_paint)))
    return;
  if (p_buffers.numbers && !p_buffers.ids.Update(*p_gl, p_buffers.numbers, Signature))
    return;
  const Projection projection = Projection::Of(p_gl);
  const auto with = [&](Fragments p_fragments, const auto& p_draw) {
    std::optional<Ogl::ShaderProgram>& program =
        p_buffers.programs[static_cast<std::size_t>(p_paint)][static_cast<std::size_t>(p_fragments)];
    const Fetch fetch = hasLevels ? Fetch::Textures : Fetch::Attributes;
    if (!program || !program->Linked())
      program.emplace(p_gl, InstanceVertexText(fetch, p_fragments), InstanceFragmentText(p_body, fetch, p_fragments),
                      hasLevels
                          ? std::vector<std::string>()
                          : std::vector<std::string>{"", "place", "", "", "", "size", "axis_x", "axis_y", "", "paint"});
    if (!program->Linked())
      return; // reported
    const auto inUse = program->Use(p_gl);
    p_setUniforms(*program);
    const bool painted = p_paint == Paint::Ids || (p_paint == Paint::Colors && p_buffers.paint);
    program->SetUniform(p_gl, "sized", p_buffers.sizes ? 1 : 0);
    program->SetUniform(p_gl, "oriented", !p_buffers.axes ? 0 : _axisFloats == DirectionFloats ? 1 : 2);
    program->SetUniform(p_gl, "painted", painted ? 1 : 0);
    program->SetUniform(p_gl, "numbered", p_paint == Paint::Ids && !p_buffers.ids ? 1 : 0);
    program->SetUniform(p_gl, "up", _up);
    program->SetUniform(p_gl, "least",
                        static_cast<float>(projection.pixels > 0 ? _leastPixels / projection.pixels : 0));
    p_draw(*program);
  };
  if (!hasLevels)
    return with(Fragments::Mesh,
                [&](const Ogl::ShaderProgram& p_program) { DrawLast(p_gl, p_buffers, p_paint, p_program); });

  const auto state = p_gl->PushAttribScope(RGL_TEXTURE_BIT);
  const GpuArray& paint = p_paint == Paint::Ids ? p_buffers.ids : p_buffers.paint;
  const std::array<std::pair<Ogl::GlEnum, unsigned int>, 5> sources{
      {{RGL_R32UI, p_buffers.order.Name()},
       {RGL_RGB32F, p_buffers.positions.Name()},
       {RGL_R32F, p_buffers.sizes.Name()},
       {RGL_RGB32F, p_buffers.axes.Name()},
       {p_paint == Paint::Ids || _colors ? RGL_RGBA8 : RGL_R32F, paint.Name()}}};
  for (std::size_t i = 0; i < sources.size(); ++i) {
    if (!p_buffers.textures[i])
      p_buffers.textures[i] = p_gl->GenTexture();
    if (!p_buffers.textures[i])
      return; // reported
    p_gl->ActiveTexture(RGL_TEXTURE0 + static_cast<unsigned int>(FirstUnit) + static_cast<unsigned int>(i));
    p_gl->BindTexture(RGL_TEXTURE_BUFFER, p_buffers.textures[i]->Name());
    p_gl->TexBuffer(RGL_TEXTURE_BUFFER, sources[i].first, sources[i].second);
  }
  p_gl->ActiveTexture(RGL_TEXTURE0);
  for (const Fragments fragments : {Fragments::Mesh, Fragments::Spheres}) {
    std::vector<std::size_t> levels;
    for (std::size_t level = 0; level < _levels.size(); ++level)
      if ((_levels[level].facing == Level::Facing::Sphere) == (fragments == Fragments::Spheres) &&
          p_buffers.selection.Ranges()[level].count != 0)
        levels.push_back(level);
    if (levels.empty())
      continue;
    with(fragments, [&](const Ogl::ShaderProgram& p_program) {
      for (std::size_t i = 0; i < TextureNames.size(); ++i)
        p_program.SetUniform(p_gl, TextureNames[i], FirstUnit + static_cast<int>(i));
      const int cuts = fragments == Fragments::Spheres ? EnabledCuts(p_gl) : 0;
      p_program.SetUniform(p_gl, "cuts", cuts);
      const auto uncut = WithoutCuts(p_gl, cuts);
      for (const std::size_t level : levels)
        DrawLevel(p_gl, p_buffers, level, p_program);
    });
  }
}

void InstancedMesh::Draw(Utility::Scoped<Rgl>& p_gl, const Library::ColorMap& p_colors, const ValueScale& p_scale,
                         const PeelPass* p_pass) const {
  p_scale.Check();
  if (Count() == 0 || _levels.empty())
    return;
  const auto map = p_colors.Bind(p_gl);
  DrawLevels(p_gl, _buffers.Get(p_gl), Paint::Colors, LitColorBody(), [&](const Ogl::ShaderProgram& p_program) {
    SetColorUniforms(p_gl, p_program, _colors ? ByColor : ByValue, p_colors, p_scale, p_pass);
  });
}

void InstancedMesh::DrawDepths(Utility::Scoped<Rgl>& p_gl) const {
  if (Count() != 0 && !_levels.empty())
    DrawLevels(p_gl, _buffers.Get(p_gl), Paint::Depths, PackedDepthText(), [](const Ogl::ShaderProgram&) {});
}

void InstancedMesh::DrawIds(Utility::Scoped<Rgl>& p_gl, unsigned int p_plot) const {
  if (p_plot >= PickPass::MostPlots)
    throw std::invalid_argument("InstancedMesh: expected a plot below " + std::to_string(PickPass::MostPlots) +
                                ", got " + std::to_string(p_plot));
  if (Count() != 0 && !_levels.empty())
    DrawLevels(p_gl, _buffers.Get(p_gl), Paint::Ids, InstanceIdBody, [&](const Ogl::ShaderProgram& p_program) {
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

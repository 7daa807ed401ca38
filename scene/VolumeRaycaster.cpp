#include "scene/VolumeRaycaster.h"

#include "scene/private/DataTransform.h"
#include "scene/private/DrawnPlaces.h"
#include "scene/private/FlatState.h"
#include "scene/private/FrameDepths.h"
#include "scene/private/Matrix4.h"
#include "scene/private/RayShaders.h"
#include "scene/private/VertexStream.h"

#include "platform/debug/Check.h"
#include "platform/ogl/PixelStore.h"
#include "platform/ogl/ShaderProgram.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <map>
#include <stdexcept>
#include <string>
#include <tuple>
#include <utility>

namespace Vek::Chart::Scene {

namespace {

using Point = Types::Vector3_Base<double>;
using Box = Types::BoundingBox_Base<double>;
using Private::Matrix4;
using Private::RayOutput;
using Settings = VolumeRaycaster::Settings;
using Mode = VolumeRaycaster::Mode;

constexpr std::size_t MostClips = 6;
constexpr const char* Signature = "void Vek::Chart::Scene::VolumeRaycaster::Draw(class "
                                  "Vek::Chart::Utility::Scoped<class Vek::Chart::Ogl::Rgl> &,...) const";

void Check(const Settings& p_settings) {
  p_settings.scale.Check();
  const auto require = [](bool p_holds, const char* p_name, double p_value) {
    if (!p_holds || !std::isfinite(p_value))
      throw std::invalid_argument(std::string("VolumeRaycaster: ") + p_name + ": expected a finite number" +
                                  (p_holds ? "" : " in its range") + ", got " + std::to_string(p_value));
  };
  require(p_settings.samplesPerVoxel > 0, "samplesPerVoxel", p_settings.samplesPerVoxel);
  require(p_settings.quality > 0, "quality", p_settings.quality);
  require(p_settings.unitLength >= 0, "unitLength", p_settings.unitLength);
  require(p_settings.leastStep >= 0, "leastStep", p_settings.leastStep);
  require(true, "isovalue", p_settings.isovalue);
  if (p_settings.clips.size() > MostClips)
    throw std::invalid_argument("VolumeRaycaster: clips: expected at most 6 planes, got " +
                                std::to_string(p_settings.clips.size()));
  for (const Types::Plane& plane : p_settings.clips) {
    const double length = Length(plane.Normal()), distance = Dot(plane.Normal(), plane.Point());
    if (!(length > 0 && std::isfinite(length) && std::isfinite(distance)))
      throw std::invalid_argument("VolumeRaycaster: clips: expected finite planes with a normal");
  }
}

/// The rectangle and the depths that a box covers, in normalised device coordinates.
struct Covered {
  double left = 1, right = -1, bottom = 1, top = -1, nearest = 1, farthest = -1;
  bool Empty() const { return !(left < right && bottom < top && nearest < farthest); }
};

/// `p_toClip` takes the corners of the unit cube to clip coordinates.
Covered CoveredBy(const Matrix4& p_toClip) {
  Covered covered;
  bool behind = false;
  for (unsigned int corner = 0; corner < 8; ++corner) {
    const double x = corner & 1, y = (corner >> 1) & 1, z = (corner >> 2) & 1;
    const auto row = [&](std::size_t p_row) {
      return p_toClip[p_row] * x + p_toClip[4 + p_row] * y + p_toClip[8 + p_row] * z + p_toClip[12 + p_row];
    };
    const double w = row(3);
    if (!(w > 1e-9)) {
      behind = true; // the eye
      continue;
    }
    const auto grow = [](double p_value, double& p_least, double& p_most) {
      p_least = std::min(p_least, p_value);
      p_most = std::max(p_most, p_value);
    };
    grow(row(0) / w, covered.left, covered.right);
    grow(row(1) / w, covered.bottom, covered.top);
    grow(row(2) / w, covered.nearest, covered.farthest);
  }
  if (covered.farthest < covered.nearest)
    return {};
  if (behind)
    covered.left = covered.bottom = covered.nearest = -1, covered.right = covered.top = 1;
  for (double* const value :
       {&covered.left, &covered.right, &covered.bottom, &covered.top, &covered.nearest, &covered.farthest})
    *value = std::clamp(*value, -1.0, 1.0);
  return covered;
}

/// The transfer function as a row of texels: colours and opacities of even values, or of their logarithms.
struct Table {
  static constexpr int Size = 2048;
  std::vector<std::array<float, 4>> texels;
  double start = 0;  ///< the value of the first texel, or its logarithm
  double factor = 1; ///< from values to texture coordinates
};

/// The opacity that is taken where none is given, which follows the colours.
double DefaultOpacity(const Settings& p_settings, double p_share) {
  return std::clamp(p_share, 0.0, 1.0) * (p_settings.mode == Mode::Composite ? 0.5 : 1);
}

Table Baked(const Settings& p_settings, const Library::ColorMap& p_colors, double p_unitLength) {
  const ValueScale& scale = p_settings.scale;
  const auto position = [&](double p_value) { return scale.logarithmic ? std::log(p_value) : p_value; };
  const double lower = position(scale.lower), upper = position(scale.upper);
  double first = lower, last = upper;
  if (p_settings.opacity)
    for (const OpacityFunction::Point& point : p_settings.opacity->Points())
      if (const double at = position(point.value); std::isfinite(at)) {
        first = std::min(first, at);
        last = std::max(last, at);
      }
  // The outermost texels stand for all that lies outside.
  const double step = (last - first) / (Table::Size - 3);
  Table table;
  table.texels.resize(Table::Size);
  for (int i = 0; i < Table::Size; ++i) {
    const double at = first + (i - 1) * step;
    const double share = (at - lower) / (upper - lower);
    const QColor color = share < 0 && scale.below.isValid()           ? scale.below
                         : share > 1.0000001 && scale.above.isValid() ? scale.above
                                                                      : p_colors.Color(share);
    const double opacity =
        color.alphaF() * (p_settings.opacity ? (*p_settings.opacity)(scale.logarithmic ? std::exp(at) : at)
                                             : DefaultOpacity(p_settings, share));
    const double extinction = std::min(-std::log1p(-std::min(opacity, 1.0)), 1000.0) / p_unitLength;
    table.texels[static_cast<std::size_t>(i)] = {
        static_cast<float>(color.redF()), static_cast<float>(color.greenF()), static_cast<float>(color.blueF()),
        static_cast<float>(p_settings.mode == Mode::Composite ? extinction : opacity)};
  }
  // The value of a texel is that of its centre.
  table.factor = 1 / (step * Table::Size);
  table.start = first - 1.5 * step;
  return table;
}

} // namespace

struct VolumeRaycaster::Programs {
  std::map<std::tuple<Mode, RayOutput, bool, bool>, Ogl::ShaderProgram> programs;
  boost::shared_ptr<Ogl::Texture> table;
  Private::FrameDepths depths;

  const Ogl::ShaderProgram& Of(Utility::Scoped<Rgl>& p_gl, const Settings& p_settings, RayOutput p_output,
                               bool p_isEven) {
    const bool shading = p_settings.shading && p_settings.mode == Mode::Composite && p_output == RayOutput::Color;
    const auto key = std::tuple(p_settings.mode, p_output, shading, p_isEven);
    auto found = programs.find(key);
    if (found == programs.end()) {
      const std::string text = Private::RayFragmentText(p_settings.mode, p_output, shading, p_isEven);
      found = programs.emplace(key, Ogl::ShaderProgram(p_gl, Private::RayVertexText, text)).first;
    }
    return found->second;
  }

  /// Binds the table on a unit; false after a report.
  bool BindTable(Utility::Scoped<Rgl>& p_gl, unsigned int p_unit, const Table& p_table) {
    p_gl->CheckError(std::string("before ") + Signature);
    p_gl->ActiveTexture(p_unit);
    if (!table)
      table = p_gl->GenTexture();
    if (!table)
      return false;
    p_gl->Bind(table, Rgl::Sampler2D);
    for (const Ogl::GlEnum filter : {RGL_TEXTURE_MIN_FILTER, RGL_TEXTURE_MAG_FILTER})
      p_gl->TexParameteri(RGL_TEXTURE_2D, filter, static_cast<int>(RGL_LINEAR));
    for (const Ogl::GlEnum wrap : {RGL_TEXTURE_WRAP_S, RGL_TEXTURE_WRAP_T})
      p_gl->TexParameteri(RGL_TEXTURE_2D, wrap, static_cast<int>(RGL_CLAMP_TO_EDGE));
    const boost::shared_ptr<void> unpacking = Ogl::UnpackScope(*p_gl);
    p_gl->TexImage2D(RGL_TEXTURE_2D, 0, static_cast<int>(RGL_RGBA32F), Table::Size, 1, 0, RGL_RGBA, RGL_FLOAT,
                     p_table.texels.data());
    return p_gl->CheckError(Signature);
  }
};

namespace {

/// Sets uniforms of types that ShaderProgram has no overload for.
class Uniforms {
public:
  Uniforms(Utility::Scoped<Rgl>& p_gl, const Ogl::ShaderProgram& p_program)
      : _gl(p_gl)
      , _program(p_program) {}

  void Set(const char* p_name, int p_value) const { _program.SetUniform(_gl, p_name, p_value); }
  void Set(const char* p_name, double p_value) const { _program.SetUniform(_gl, p_name, static_cast<float>(p_value)); }
  void Set(const char* p_name, const Point& p_value) const { _program.SetUniform(_gl, p_name, p_value); }
  void Set(const std::string& p_name, const std::array<double, 4>& p_value) const {
    _gl->Uniform4f(Location(p_name), static_cast<float>(p_value[0]), static_cast<float>(p_value[1]),
                   static_cast<float>(p_value[2]), static_cast<float>(p_value[3]));
  }
  void Set(const char* p_name, const Matrix4& p_value) const {
    std::array<float, 16> floats{};
    std::transform(p_value.begin(), p_value.end(), floats.begin(), [](double p_v) { return static_cast<float>(p_v); });
    _gl->UniformMatrix4fv(Location(p_name), 1, RGL_FALSE, floats.data());
  }

private:
  int Location(const std::string& p_name) const { return _gl->GetUniformLocation(_program.Name(), p_name.c_str()); }

  Utility::Scoped<Rgl>& _gl;
  const Ogl::ShaderProgram& _program;
};

/// A grid under GL's matrices.
struct Placed {
  Point corner; ///< at the coordinate 0
  Point size;   ///< from there to the coordinate 1; negative where voxels descend
  Point low;    ///< the coordinates that are drawn
  Point high;
  Point wholeLow; ///< those that rays run through
  Point wholeHigh;
  Matrix4 toClip; ///< from coordinates: those of the texture, or shares of the box where cells are uneven
  Matrix4 fromClip{};
  Covered covered;
  double nearest = 1, farthest = -1; ///< of the rays, in normalised device coordinates
  bool visible = false;

  Placed(Utility::Scoped<Rgl>& p_gl, const VoxelGrid& p_grid, const Settings& p_settings) {
    const Private::DrawnPlaces drawn(p_grid);
    const Box& box = drawn.places.Bounds();
    const Box& part = p_settings.part.Empty() ? p_grid.Bounds() : p_settings.part;
    const Box& whole = p_settings.whole.Empty() ? part : p_settings.whole;
    const Point first = drawn.Coordinate(box.Min()), last = drawn.Coordinate(box.Max());
    for (std::size_t axis = 0; axis < 3; ++axis) {
      using Private::At;
      const double a = At(first, axis), b = At(last, axis), extent = At(box.Max(), axis) - At(box.Min(), axis);
      At(size, axis) = extent / (b - a);
      At(corner, axis) = a == 1 && b == 0 ? At(box.Max(), axis) : At(box.Min(), axis) - a * At(size, axis);
      const auto range = [&](const Box& p_part, Point& p_low, Point& p_high) {
        const double from = At(drawn.Coordinate(p_part.Min()), axis), to = At(drawn.Coordinate(p_part.Max()), axis);
        At(p_low, axis) = std::max(std::min(from, to), std::min(a, b));
        At(p_high, axis) = std::min(std::max(from, to), std::max(a, b));
      };
      range(part, low, high);
      range(whole, wholeLow, wholeHigh);
    }
    Matrix4 view{}, projection{};
    p_gl->GetDoublev(RGL_MODELVIEW_MATRIX, view.data());
    p_gl->GetDoublev(RGL_PROJECTION_MATRIX, projection.data());
    const Matrix4 model = {size.x, 0, 0, 0, 0, size.y, 0, 0, 0, 0, size.z, 0, corner.x, corner.y, corner.z, 1};
    toClip = Private::Product(projection, Private::Product(view, model));
    const auto coveredBy = [&](const Point& p_low, const Point& p_high) {
      const Point extent = p_high - p_low;
      return CoveredBy(Private::Product(
          toClip, {extent.x, 0, 0, 0, 0, extent.y, 0, 0, 0, 0, extent.z, 0, p_low.x, p_low.y, p_low.z, 1}));
    };
    covered = coveredBy(low, high);
    const Covered rays = coveredBy(wholeLow, wholeHigh);
    nearest = rays.nearest;
    farthest = rays.farthest;
    visible = !covered.Empty() && Private::Invert(toClip, fromClip);
  }

  /// A plane of the scene in texture coordinates.
  std::array<double, 4> Clip(const Types::Plane& p_plane) const {
    const Point normal = p_plane.Normal() / Length(p_plane.Normal());
    return {normal.x * size.x, normal.y * size.y, normal.z * size.z, Dot(normal, corner - p_plane.Point())};
  }
};

double StepOf(const Settings& p_settings, const VoxelGrid& p_grid) {
  const Point voxel = Private::DrawnPlaces(p_grid).ShortestVoxel();
  const double step = std::min({voxel.x, voxel.y, voxel.z}) / p_settings.samplesPerVoxel;
  return std::max(step, p_settings.leastStep) / p_settings.quality;
}

/// Binds what rays read; false after a report.
bool Bind(Utility::Scoped<Rgl>& p_gl, const VoxelGrid& p_grid, const Settings& p_settings) {
  const Private::VoxelPlaces& places = Private::DrawnPlaces(p_grid).places;
  return (places.AreEven() || places.BindTable(p_gl, RGL_TEXTURE3)) &&
         p_grid.Bind(p_gl, RGL_TEXTURE0, p_settings.filter);
}

void SetRays(const Uniforms& p_set, const VoxelGrid& p_grid, const Settings& p_settings, const Placed& p_placed) {
  const Private::DrawnPlaces drawn(p_grid);
  const Point voxel = drawn.MeanVoxel(), &size = p_placed.size;
  p_set.Set("volume", 0);
  p_set.Set("table", 1);
  p_set.Set("depths", 2);
  if (!drawn.places.AreEven())
    p_set.Set("places", 3);
  p_set.Set("texelScale", drawn.scale);
  p_set.Set("texelShift", drawn.shift);
  p_set.Set("fromClip", p_placed.fromClip);
  p_set.Set("toClip", p_placed.toClip);
  p_set.Set("nearest", p_placed.nearest);
  p_set.Set("farthest", p_placed.farthest);
  p_set.Set("corner", p_placed.corner);
  p_set.Set("size", size);
  p_set.Set("low", p_placed.low);
  p_set.Set("high", p_placed.high);
  p_set.Set("wholeLow", p_placed.wholeLow);
  p_set.Set("wholeHigh", p_placed.wholeHigh);
  p_set.Set("voxel", Point(voxel.x / std::abs(size.x), voxel.y / std::abs(size.y), voxel.z / std::abs(size.z)));
  p_set.Set("spacing", StepOf(p_settings, p_grid));
  p_set.Set("jitter", p_settings.jitter ? 1 : 0);
  p_set.Set("logarithmic", p_settings.scale.logarithmic ? 1 : 0);
  p_set.Set("isovalue", p_settings.isovalue);
  p_set.Set("clipCount", static_cast<int>(p_settings.clips.size()));
  for (std::size_t i = 0; i < p_settings.clips.size(); ++i)
    p_set.Set("clips[" + std::to_string(i) + "]", p_placed.Clip(p_settings.clips[i]));
}

void DrawRectangle(Utility::Scoped<Rgl>& p_gl, const Covered& p_covered) {
  using Stream = Private::VertexStream;
  Stream(*p_gl, Stream::Rectangle(p_covered.left, p_covered.bottom, p_covered.right, p_covered.top), Stream::Positions)
      .Draw(RGL_QUADS);
}

double UnitLength(const Settings& p_settings, const VoxelGrid& p_grid) {
  return p_settings.unitLength > 0 ? p_settings.unitLength : Length(p_grid.Bounds().Extent()) / 20;
}

} // namespace

VolumeRaycaster::VolumeRaycaster(VoxelGrid p_grid)
    : _grid(std::move(p_grid)) {}

void VolumeRaycaster::SetGrid(VoxelGrid p_grid) {
  _grid = std::move(p_grid);
}

double VolumeRaycaster::SamplingDistance(const Settings& p_settings) const {
  Check(p_settings);
  return StepOf(p_settings, _grid);
}

void VolumeRaycaster::Draw(Utility::Scoped<Rgl>& p_gl, const Library::ColorMap& p_colors,
                           const Settings& p_settings) const {
  Check(p_settings);
  const Placed placed(p_gl, _grid, p_settings);
  if (!placed.visible)
    return;
  Programs& programs = _programs.Get(p_gl);
  const Ogl::ShaderProgram& program =
      programs.Of(p_gl, p_settings, RayOutput::Color, Private::DrawnPlaces(_grid).places.AreEven());
  const bool testsDepth = p_gl->IsEnabled(RGL_DEPTH_TEST) != 0;
  const auto state = FlatState(p_gl);
  const Table table = Baked(p_settings, p_colors, UnitLength(p_settings, _grid));
  const bool occluded = testsDepth && programs.depths.Copy(p_gl, RGL_TEXTURE2);
  if (!program.Linked() || !programs.BindTable(p_gl, RGL_TEXTURE1, table) || !Bind(p_gl, _grid, p_settings))
    return;
  p_gl->BlendFunc(RGL_ONE, RGL_ONE_MINUS_SRC_ALPHA);
  p_gl->Disable(RGL_MULTISAMPLE); // a ray is that of all samples of its pixel, also at the face of a block
  const auto used = program.Use(p_gl);
  const Uniforms set(p_gl, program);
  SetRays(set, _grid, p_settings, placed);
  set.Set("occluded", occluded ? 1 : 0);
  set.Set("tableStart", table.start);
  set.Set("tableFactor", table.factor);
  DrawRectangle(p_gl, placed.covered);
}

void VolumeRaycaster::DrawDepths(Utility::Scoped<Rgl>& p_gl, const Settings& p_settings) const {
  Draw(p_gl, p_settings, PickPass());
}

void VolumeRaycaster::Draw(Utility::Scoped<Rgl>& p_gl, const Settings& p_settings, const PickPass& p_pass) const {
  Check(p_settings);
  if (p_pass.plot >= PickPass::MostPlots)
    throw std::invalid_argument("VolumeRaycaster: expected a plot below " + std::to_string(PickPass::MostPlots) +
                                ", got " + std::to_string(p_pass.plot));
  const Placed placed(p_gl, _grid, p_settings);
  if (!placed.visible)
    return;
  Programs& programs = _programs.Get(p_gl);
  const RayOutput output = p_pass.kind == PickPass::Ids ? RayOutput::Id : RayOutput::Depth;
  const Ogl::ShaderProgram& program =
      programs.Of(p_gl, p_settings, output, Private::DrawnPlaces(_grid).places.AreEven());
  const auto state = p_gl->PushAttribScope(RGL_ENABLE_BIT | RGL_TEXTURE_BIT | RGL_CURRENT_BIT);
  for (unsigned int plane = 0; plane < MostClips; ++plane)
    p_gl->Disable(RGL_CLIP_PLANE0 + plane);
  p_gl->Disable(RGL_CULL_FACE);
  const Library::ColorMap grey({Qt::black, Qt::white}, Library::ColorMap::Interpolated);
  const Table table = Baked(p_settings, grey, UnitLength(p_settings, _grid));
  if (!program.Linked() || !programs.BindTable(p_gl, RGL_TEXTURE1, table) || !Bind(p_gl, _grid, p_settings))
    return;
  const auto used = program.Use(p_gl);
  const Uniforms set(p_gl, program);
  SetRays(set, _grid, p_settings, placed);
  set.Set("occluded", 0);
  set.Set("tableStart", table.start);
  set.Set("tableFactor", table.factor);
  set.Set("id", std::array<double, 4>{1, 1, 1, (p_pass.plot + 1) / 255.0});
  DrawRectangle(p_gl, placed.covered);
}

} // namespace Vek::Chart::Scene

#include "scene/VolumeSlices.h"

#include "scene/private/DataTransform.h"
#include "scene/private/DrawnPlaces.h"
#include "scene/private/PeelShader.h"
#include "scene/private/VertexStream.h"
#include "scene/private/VoxelPlaces.h"

#include "library/DepthCodec.h"
#include "library/Intersect.h"
#include "platform/ogl/PixelStore.h"
#include "platform/ogl/ShaderProgram.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

namespace Vek::Chart::Scene {

namespace {

using Point = Types::Vector3_Base<double>;
using Box = Types::BoundingBox_Base<double>;

const char* const VertexText = R"(#version 120
void main() {
  gl_TexCoord[0] = gl_MultiTexCoord0;
  gl_ClipVertex = gl_ModelViewMatrix * gl_Vertex;
  gl_Position = ftransform();
}
)";

// The texture coordinate is a share of the box where cells are uneven.
const char* const SampleText = R"(
uniform sampler3D volume;
uniform float least; // of the values that are shown
uniform float most;
uniform vec3 partLow; // the coordinates that are filled
uniform vec3 partHigh;
uniform vec3 texelScale; // to coordinates of the texture
uniform vec3 texelShift;

vec4 Texel() { // see VoxelGrid::Bind
  vec3 at = gl_TexCoord[0].xyz;
  if (any(lessThan(at, partLow)) || any(greaterThanEqual(at, partHigh)))
    discard;
#ifdef UNEVEN
  at = TexelAt(at);
#endif
  return texture3D(volume, at * texelScale + texelShift);
}

float Value() {
  vec4 texel = Texel();
  float value = texel.r / max(texel.a, 1e-6);
  if (texel.a < 0.5 || value < least || value > most)
    discard;
  return value;
}
)";

const char* const ColorText = R"(
uniform sampler2D colors;
uniform int logarithmic;
uniform float lower;      // the value of the first colour, or its logarithm
uniform float upper;      // the value of the last colour, or its logarithm
uniform float lowOpacity;
uniform vec4 below;
uniform vec4 above;
uniform vec4 missing;

void main() {
  if (IsPeeled())
    discard;
  if (missing.a > 0.0 && Texel().a < 0.5) {
    gl_FragColor = missing;
    return;
  }
  float value = Value();
  float share = ((logarithmic != 0 ? log(max(value, 1e-37)) : value) - lower) / (upper - lower);
  float inside = clamp(share, 0.0, 1.0);
  vec4 color = share < 0.0 ? below : share > 1.0 ? above : texture2D(colors, vec2(inside, 0.5));
  gl_FragColor = vec4(color.rgb, color.a * mix(lowOpacity, 1.0, inside));
}
)";

const char* const DepthText = R"(
void main() {
  Value();
  gl_FragColor = EncodeDepth(gl_FragCoord.z);
}
)";

const char* const IdText = R"(
uniform vec4 id;
void main() {
  Value();
  gl_FragColor = id;
}
)";

/// Programs for even and for uneven cells.
using Pair = std::array<std::optional<Ogl::ShaderProgram>, 2>;

/// The program, made if there is none yet.
const Ogl::ShaderProgram& Made(Pair& p_programs, Utility::Scoped<Rgl>& p_gl, const VoxelGrid& p_grid,
                               const std::string& p_text) {
  const bool isEven = Private::DrawnPlaces(p_grid).places.AreEven();
  std::optional<Ogl::ShaderProgram>& program = p_programs[isEven ? 0 : 1];
  if (!program)
    program.emplace(
        p_gl, VertexText,
        (isEven ? std::string("#version 120\n") : std::string("#version 120\n#define UNEVEN\n") + Private::PlacesText) +
            SampleText + p_text);
  return *program;
}

using Stream = Private::VertexStream;

/// The vertices of all polygons, one after the other.
std::vector<Stream::Vertex> Vertices(const std::vector<Slice>& p_slices) {
  std::vector<Stream::Vertex> vertices;
  for (const Slice& slice : p_slices)
    for (const Point& corner : slice)
      vertices.emplace_back(corner);
  return vertices;
}

/// Likewise, with the coordinates of a volume.
std::vector<Stream::Vertex> Vertices(const std::vector<Slice>& p_slices, const VoxelGrid& p_grid) {
  const Private::DrawnPlaces drawn(p_grid);
  std::vector<Stream::Vertex> vertices = Vertices(p_slices);
  auto vertex = vertices.begin();
  for (const Slice& slice : p_slices)
    for (const Point& corner : slice)
      (vertex++)->texCoord = Stream::Vertex(drawn.Coordinate(corner)).position;
  return vertices;
}

/// Draws the polygons of a stream of at least that many corners, each after `p_before` with its number.
template <class Before>
void DrawEach(const Stream& p_stream, Ogl::GlEnum p_mode, const std::vector<Slice>& p_slices, std::size_t p_corners,
              Before&& p_before) {
  std::size_t first = 0;
  for (std::size_t i = 0; i < p_slices.size(); ++i) {
    if (p_slices[i].size() >= p_corners) {
      p_before(i);
      p_stream.Draw(p_mode, first, p_slices[i].size());
    }
    first += p_slices[i].size();
  }
}

/// Fills the polygons, each after `p_before` with its number.
template <class Before>
void Fill(Utility::Scoped<Rgl>& p_gl, const VoxelGrid& p_grid, const std::vector<Slice>& p_slices, Before&& p_before) {
  DrawEach(Stream(*p_gl, Vertices(p_slices, p_grid), Stream::TexCoords), RGL_POLYGON, p_slices, 3, p_before);
}
void Fill(Utility::Scoped<Rgl>& p_gl, const VoxelGrid& p_grid, const std::vector<Slice>& p_slices) {
  Fill(p_gl, p_grid, p_slices, [](std::size_t) {});
}

} // namespace

struct VolumeSlices::Programs {
  Pair colors, depths, ids;
};

/// A program in use with the volume on unit 0, until the end of the object.
class VolumeSlices::Painting {
public:
  Painting(Utility::Scoped<Rgl>& p_gl, const VolumeSlices& p_slices, const Ogl::ShaderProgram& p_program)
      : _state(p_gl->PushAttribScope(RGL_ENABLE_BIT | RGL_TEXTURE_BIT | RGL_CURRENT_BIT))
      , _bound(p_program.Linked() && Bind(p_gl, p_slices)) {
    if (!_bound)
      return;
    p_gl->Disable(RGL_CULL_FACE);
    _used = p_program.Use(p_gl);
    const auto limit = [](double p_limit) { return static_cast<float>(std::clamp(p_limit, -3.4e38, 3.4e38)); };
    p_program.SetUniform(p_gl, "volume", 0);
    const Private::DrawnPlaces drawn(p_slices._grid);
    if (!drawn.places.AreEven())
      p_program.SetUniform(p_gl, "places", 2);
    constexpr double Far = 1e30;
    Point low(-Far, -Far, -Far), high(Far, Far, Far);
    for (std::size_t axis = 0; axis < 3 && !p_slices.part.Empty(); ++axis) {
      using Private::At;
      const double a = At(drawn.Coordinate(p_slices.part.Min()), axis);
      const double b = At(drawn.Coordinate(p_slices.part.Max()), axis);
      At(low, axis) = std::min(a, b);
      At(high, axis) = std::max(a, b);
    }
    p_program.SetUniform(p_gl, "partLow", low);
    p_program.SetUniform(p_gl, "partHigh", high);
    p_program.SetUniform(p_gl, "texelScale", drawn.scale);
    p_program.SetUniform(p_gl, "texelShift", drawn.shift);
    p_program.SetUniform(p_gl, "least", limit(p_slices.shown.min));
    p_program.SetUniform(p_gl, "most", limit(p_slices.shown.max));
  }
  explicit operator bool() const { return _bound; }

private:
  static bool Bind(Utility::Scoped<Rgl>& p_gl, const VolumeSlices& p_slices) {
    const VoxelGrid& grid = p_slices._grid;
    const Private::VoxelPlaces& places = Private::DrawnPlaces(grid).places;
    return (places.AreEven() || places.BindTable(p_gl, RGL_TEXTURE2)) &&
           grid.Bind(p_gl, RGL_TEXTURE0, p_slices._filter);
  }

  boost::shared_ptr<void> _state;
  bool _bound;
  boost::shared_ptr<void> _used;
};

VolumeSlices::VolumeSlices(VoxelGrid p_grid, VoxelGrid::Filter p_filter)
    : _grid(std::move(p_grid))
    , _filter(p_filter) {}

void VolumeSlices::SetGrid(VoxelGrid p_grid, VoxelGrid::Filter p_filter) {
  _grid = std::move(p_grid);
  _filter = p_filter;
}

Slice VolumeSlices::Cut(const Types::Plane& p_plane) const {
  Slice slice;
  if (!Library::Intersect::Intersection(_grid.Bounds(), p_plane, slice) || slice.size() < 3)
    slice.clear();
  return slice;
}

Slice VolumeSlices::Cut(int p_axis, double p_position) const {
  if (p_axis < 0 || p_axis > 2)
    throw std::invalid_argument("VolumeSlices: expected an axis of 0 to 2, got " + std::to_string(p_axis));
  const double on[3] = {p_axis == 0 ? 1.0 : 0.0, p_axis == 1 ? 1.0 : 0.0, p_axis == 2 ? 1.0 : 0.0};
  const Point normal(on[0], on[1], on[2]);
  return Cut(Types::Plane(normal * p_position, normal));
}

void VolumeSlices::Draw(Utility::Scoped<Rgl>& p_gl, const std::vector<Slice>& p_slices,
                        const Library::ColorMap& p_colors, const ValueScale& p_scale, double p_lowOpacity,
                        const PeelPass* p_pass) const {
  p_scale.Check();
  const Ogl::ShaderProgram& program =
      Made(_programs.Get(p_gl).colors, p_gl, _grid, Private::PeelText + std::string(ColorText));
  const Painting painting(p_gl, *this, program);
  if (!painting)
    return;
  {
    const boost::shared_ptr<void> unpacking = Ogl::UnpackScope(*p_gl); // the first bind uploads the colours
    p_colors(p_gl, RGL_TEXTURE1);
  }
  const auto limit = [&](double p_limit) {
    return static_cast<float>(p_scale.logarithmic ? std::log(p_limit) : p_limit);
  };
  program.SetUniform(p_gl, "colors", 1);
  program.SetUniform(p_gl, "logarithmic", p_scale.logarithmic ? 1 : 0);
  program.SetUniform(p_gl, "lower", limit(p_scale.lower));
  program.SetUniform(p_gl, "upper", limit(p_scale.upper));
  program.SetUniform(p_gl, "lowOpacity", static_cast<float>(p_lowOpacity));
  program.SetUniform(p_gl, "below", p_scale.below.isValid() ? p_scale.below : p_colors.Color(0.0));
  program.SetUniform(p_gl, "above", p_scale.above.isValid() ? p_scale.above : p_colors.Color(1.0));
  program.SetUniform(p_gl, "missing", fillsMissing ? p_scale.missing : QColor(0, 0, 0, 0));
  Private::SetPeelUniforms(p_gl, program, p_pass);
  Fill(p_gl, _grid, p_slices);
}

void VolumeSlices::DrawDepths(Utility::Scoped<Rgl>& p_gl, const std::vector<Slice>& p_slices) const {
  const Painting painting(
      p_gl, *this, Made(_programs.Get(p_gl).depths, p_gl, _grid, Library::DepthCodec::PreciseGlsl() + DepthText));
  if (painting)
    Fill(p_gl, _grid, p_slices);
}

void VolumeSlices::Draw(Utility::Scoped<Rgl>& p_gl, const std::vector<Slice>& p_slices, const PickPass& p_pass) const {
  if (p_pass.kind == PickPass::Depths)
    return DrawDepths(p_gl, p_slices);
  if (p_pass.plot >= PickPass::MostPlots)
    throw std::invalid_argument("VolumeSlices: expected a plot below " + std::to_string(PickPass::MostPlots) +
                                ", got " + std::to_string(p_pass.plot));
  const Ogl::ShaderProgram& program = Made(_programs.Get(p_gl).ids, p_gl, _grid, IdText);
  const Painting painting(p_gl, *this, program);
  if (!painting)
    return;
  Fill(p_gl, _grid, p_slices, [&](std::size_t p_number) {
    const auto element = static_cast<unsigned int>(std::min<std::size_t>(p_number, PickPass::NoElement));
    const auto byte = [&](unsigned int p_shift) { return static_cast<int>((element >> p_shift) & 0xFF); };
    program.SetUniform(p_gl, "id", QColor(byte(0), byte(8), byte(16), static_cast<int>(p_pass.plot + 1)));
  });
}

std::array<std::array<Point, 2>, 12> Edges(const Box& p_box) {
  const Point& a = p_box.Min();
  const Point& b = p_box.Max();
  std::array<std::array<Point, 2>, 12> edges;
  for (std::size_t i = 0; i < 4; ++i) {
    // The two axes that an edge does not run along take the two bits of its number.
    const bool first = (i & 1) != 0, second = (i & 2) != 0;
    const double x = first ? b.x : a.x, y = second ? b.y : a.y, y1 = first ? b.y : a.y, z = second ? b.z : a.z;
    edges[i] = {{{a.x, y1, z}, {b.x, y1, z}}};
    edges[i + 4] = {{{x, a.y, z}, {x, b.y, z}}};
    edges[i + 8] = {{{x, y, a.z}, {x, y, b.z}}};
  }
  return edges;
}

void DrawOutlines(Utility::Scoped<Rgl>& p_gl, const std::vector<Slice>& p_slices) {
  DrawEach(Stream(*p_gl, Vertices(p_slices), Stream::Positions), RGL_LINE_LOOP, p_slices, 1, [](std::size_t) {});
}

void DrawEdges(Utility::Scoped<Rgl>& p_gl, const Box& p_box) {
  std::vector<Slice> edges;
  for (const auto& edge : Edges(p_box))
    edges.emplace_back(edge.begin(), edge.end());
  Stream(*p_gl, Vertices(edges), Stream::Positions).Draw(RGL_LINES);
}

} // namespace Vek::Chart::Scene

#include "scene/VolumeSlices.h"

#include "library/DepthCodec.h"

#include <algorithm>

namespace Vek::Chart::Scene {

namespace {

using Library::VolumeImage;
using Point = Types::Vector3_Base<double>;
using Box = Types::BoundingBox_Base<double>;

const char* const VertexText = R"(#version 120
void main() {
  gl_TexCoord[0] = gl_MultiTexCoord0;
  gl_Position = ftransform();
}
)";

const char* const ColorText = R"(#version 120
uniform sampler3D volume; // 0 to 1; 0 where there is nothing
uniform sampler2D colors;
uniform float low;        // the values that get the first and the last colour
uniform float high;
uniform float lowOpacity;
void main() {
  float value = texture3D(volume, gl_TexCoord[0].xyz).r;
  if (value < 0.5 / 255.0)
    discard;
  float place = clamp((value - low) / (high - low), 0.0, 1.0);
  gl_FragColor = vec4(texture2D(colors, vec2(place, 0.5)).rgb, mix(lowOpacity, 1.0, place));
}
)";

const char* const DepthText = R"(
uniform sampler3D volume;
void main() {
  if (texture3D(volume, gl_TexCoord[0].xyz).r < 0.5 / 255.0)
    discard;
  gl_FragColor = EncodeDepth(gl_FragCoord.z);
}
)";

} // namespace

SlicePainter::SlicePainter(Utility::Scoped<Rgl>& p_gl, const boost::shared_ptr<const VolumeImage>& p_image,
                           const Box& p_box, Library::VolumeTexture::Filter p_filter, bool p_downwards)
    : _box(p_box)
    , _downwards(p_downwards)
    , _texture(p_image, p_gl)
    , _colored(p_gl, VertexText, ColorText)
    , _packed(p_gl, VertexText, Library::DepthCodec::PreciseGlsl() + DepthText) {
  _texture.minFilter = _texture.magFilter = p_filter;
}

void SlicePainter::Draw(Utility::Scoped<Rgl>& p_gl, const std::vector<Slice>& p_slices,
                        const Library::ColorMap& p_colors, const Look& p_look) const {
  const auto state = p_gl->PushAttribScope(RGL_ENABLE_BIT | RGL_TEXTURE_BIT);
  const auto inUse = _colored.Use(p_gl);
  p_colors(p_gl, RGL_TEXTURE1);
  _colored.SetUniform(p_gl, "volume", 0);
  _colored.SetUniform(p_gl, "colors", 1);
  _colored.SetUniform(p_gl, "low", p_look.low);
  _colored.SetUniform(p_gl, "high", p_look.high);
  _colored.SetUniform(p_gl, "lowOpacity", p_look.lowOpacity);
  Fill(p_gl, p_slices);
}

void SlicePainter::DrawDepths(Utility::Scoped<Rgl>& p_gl, const std::vector<Slice>& p_slices) const {
  const auto state = p_gl->PushAttribScope(RGL_ENABLE_BIT | RGL_TEXTURE_BIT);
  const auto inUse = _packed.Use(p_gl);
  _packed.SetUniform(p_gl, "volume", 0);
  Fill(p_gl, p_slices);
}

void SlicePainter::Fill(Utility::Scoped<Rgl>& p_gl, const std::vector<Slice>& p_slices) const {
  _texture(p_gl, RGL_TEXTURE0);
  const Point size = _box.Extent();
  for (const Slice& slice : p_slices) {
    p_gl->Begin(RGL_POLYGON);
    for (const Point& corner : slice) {
      const Point part = corner - _box.Min();
      const double up = part.z / size.z;
      p_gl->MultiTexCoord(RGL_TEXTURE0, Point(part.x / size.x, part.y / size.y, _downwards ? 1 - up : up));
      p_gl->Vertex(corner);
    }
    p_gl->End();
  }
}

Box BoxOf(const VolumeImage& p_image, double p_longest) {
  const Point voxels(p_image.Height(), p_image.Width(), p_image.Depth());
  const Point size = voxels * (p_longest / std::max({voxels.x, voxels.y, voxels.z}));
  return Box(size * -0.5, size * 0.5);
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
  for (const Slice& slice : p_slices) {
    p_gl->Begin(RGL_LINE_LOOP);
    for (const Point& corner : slice)
      p_gl->Vertex(corner);
    p_gl->End();
  }
}

void DrawEdges(Utility::Scoped<Rgl>& p_gl, const Box& p_box) {
  p_gl->Begin(RGL_LINES);
  for (const auto& edge : Edges(p_box))
    for (const Point& end : edge)
      p_gl->Vertex(end);
  p_gl->End();
}

} // namespace Vek::Chart::Scene

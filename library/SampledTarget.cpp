#include "library/SampledTarget.h"

#include "platform/ogl/Guard.h"
#include "platform/ogl/MultisampleTexture.h"
#include "platform/ogl/PixelStore.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <stdexcept>
#include <string>

namespace Vek::Chart::Library {

namespace {

const char* const VertexText = R"(#version 150 compatibility
void main() {
  gl_Position = vec4(gl_Vertex.xy, 0.0, 1.0);
}
)";

const char* const ReadingText = R"(#version 150 compatibility
uniform sampler2DMS colors;
uniform sampler2DMS depths;
uniform int number; // of the sample
void main() {
  ivec2 at = ivec2(gl_FragCoord.xy);
  gl_FragColor = texelFetch(colors, at, number);
  gl_FragDepth = texelFetch(depths, at, number).r;
}
)";

const char* const WritingText = R"(#version 400 compatibility
uniform sampler2D colors;
uniform sampler2D depths;
uniform int number; // of the sample
uniform int isMasked; // whether only pixels with something drawn are written
void main() {
  ivec2 at = ivec2(gl_FragCoord.xy);
  float depth = texelFetch(depths, at, 0).r;
  if (gl_SampleID != number || (isMasked != 0 && depth >= 1.0))
    discard;
  gl_FragColor = texelFetch(colors, at, 0);
  gl_FragDepth = depth;
}
)";

/// The current frame buffer's size is covered, without tests; depths are written as they are.
void DrawAll(const Rgl& p_gl) {
  p_gl.Begin(RGL_QUADS);
  for (const auto& [x, y] : {std::pair(-1, -1), std::pair(1, -1), std::pair(1, 1), std::pair(-1, 1)})
    p_gl.Vertex(x, y, 0);
  p_gl.End();
}

boost::shared_ptr<void> CopyState(const Rgl& p_gl) {
  boost::shared_ptr<void> state = p_gl.PushAttribScope(RGL_ENABLE_BIT | RGL_COLOR_BUFFER_BIT | RGL_DEPTH_BUFFER_BIT |
                                                       RGL_TEXTURE_BIT | RGL_POLYGON_BIT);
  for (const Ogl::GlEnum off :
       {RGL_BLEND, RGL_SCISSOR_TEST, RGL_STENCIL_TEST, RGL_CULL_FACE, RGL_ALPHA_TEST, RGL_DITHER})
    p_gl.Disable(off);
  p_gl.Enable(RGL_DEPTH_TEST);
  p_gl.DepthFunc(RGL_ALWAYS);
  p_gl.DepthMask(true);
  p_gl.ColorMask(true, true, true, true);
  return state;
}

/// A texture of texels that shaders fetch, bound on a unit.
template <class Value>
boost::shared_ptr<Ogl::Texture> Upload(const Rgl& p_gl, unsigned int p_unit, Types::Size p_size, Ogl::GlEnum p_internal,
                                       Ogl::GlEnum p_format, Ogl::GlEnum p_type, const std::vector<Value>& p_values) {
  p_gl.ActiveTexture(p_unit);
  boost::shared_ptr<Ogl::Texture> texture = p_gl.GenTexture();
  if (!texture)
    throw std::runtime_error("GL makes no texture for an image of samples");
  p_gl.Bind(texture, Rgl::Sampler2D);
  p_gl.TexParameteri(RGL_TEXTURE_2D, RGL_TEXTURE_MIN_FILTER, static_cast<int>(RGL_NEAREST));
  p_gl.TexParameteri(RGL_TEXTURE_2D, RGL_TEXTURE_MAG_FILTER, static_cast<int>(RGL_NEAREST));
  const boost::shared_ptr<void> unpacking = Ogl::UnpackScope(p_gl);
  p_gl.TexImage2D(RGL_TEXTURE_2D, 0, static_cast<int>(p_internal), p_size.width, p_size.height, 0, p_format, p_type,
                  p_values.data());
  return texture;
}

} // namespace

SampledTarget::SampledTarget(Utility::Scoped<Rgl>& p_gl, Types::Size p_size, int p_samples)
    : _size(p_size)
    , _samples(p_samples)
    , _plain(p_size)
    , _writing(p_gl, VertexText, WritingText) {
  int most = 0;
  p_gl->GetIntegerv(RGL_MAX_SAMPLES, &most);
  _samples = std::clamp(p_samples, 0, std::max(most, 0));
  if (_samples > 0)
    MakeSamples(p_gl);
  const auto bound = BindForDraw(p_gl);
  if (!_writing.Linked() || !bound || p_gl->CheckFramebufferStatus(RGL_FRAMEBUFFER) != RGL_FRAMEBUFFER_COMPLETE)
    throw std::runtime_error("no target of " + std::to_string(p_size.width) + " x " + std::to_string(p_size.height) +
                             " pixels with " + std::to_string(_samples) + " samples; GL 4.0 is needed");
}

void SampledTarget::MakeSamples(Utility::Scoped<Rgl>& p_gl) {
  _reading.emplace(p_gl, VertexText, ReadingText);
  _colors = MakeMultisampleTexture(*p_gl, RGL_RGBA8, _size, _samples);
  _depths = MakeMultisampleTexture(*p_gl, RGL_DEPTH24_STENCIL8, _size, _samples);
  _frame = p_gl->GenFrameBufferObject();
  if (!_reading->Linked() || !_colors || !_depths || !_frame)
    throw std::runtime_error("GL makes no textures of " + std::to_string(_size.width) + " x " +
                             std::to_string(_size.height) + " pixels with " + std::to_string(_samples) + " samples");
  const auto bound = p_gl->BindScope(_frame);
  p_gl->FramebufferTexture2D(RGL_FRAMEBUFFER, RGL_COLOR_ATTACHMENT0, Ogl::MultisampleTarget, _colors->Name(), 0);
  p_gl->FramebufferTexture2D(RGL_FRAMEBUFFER, RGL_DEPTH_STENCIL_ATTACHMENT, Ogl::MultisampleTarget, _depths->Name(), 0);
}

boost::shared_ptr<void> SampledTarget::BindForDraw(Utility::Scoped<Rgl>& p_gl) const {
  if (_samples == 0)
    return _plain.BindForDraw(p_gl);
  std::array<int, 4> before{};
  p_gl->GetIntegerv(RGL_VIEWPORT, before.data());
  const boost::shared_ptr<void> bound = p_gl->BindScope(_frame);
  p_gl->Viewport(0, 0, _size.width, _size.height);
  return Ogl::MakeGuard(
      [bound, before, gl = p_gl->Functions()] { gl->Viewport(before[0], before[1], before[2], before[3]); });
}

SampledTarget::Samples SampledTarget::Read(Utility::Scoped<Rgl>& p_gl, int p_sample) const {
  if (_samples > 0) {
    const auto bound = _plain.BindForDraw(p_gl);
    const auto state = CopyState(*p_gl);
    for (const auto& [unit, texture] : {std::pair(RGL_TEXTURE1, _depths), std::pair(RGL_TEXTURE0, _colors)}) {
      p_gl->ActiveTexture(unit);
      p_gl->BindTexture(Ogl::MultisampleTarget, texture->Name());
    }
    const auto used = _reading->Use(p_gl);
    _reading->SetUniform(p_gl, "colors", 0);
    _reading->SetUniform(p_gl, "depths", 1);
    _reading->SetUniform(p_gl, "number", p_sample);
    DrawAll(*p_gl);
  }
  Samples image;
  const std::size_t pixels = static_cast<std::size_t>(_size.width) * static_cast<std::size_t>(_size.height);
  image.colors.resize(4 * pixels);
  image.depths.resize(pixels);
  const auto bound = _plain.BindForRead(p_gl);
  const auto packing = Ogl::PackScope(*p_gl);
  p_gl->ReadPixels(0, 0, _size.width, _size.height, RGL_RGBA, RGL_UNSIGNED_BYTE, image.colors.data());
  p_gl->ReadPixels(0, 0, _size.width, _size.height, RGL_DEPTH_COMPONENT, RGL_FLOAT, image.depths.data());
  if (!p_gl->CheckError("SampledTarget::Read"))
    throw std::runtime_error("reading the drawn image failed");
  return image;
}

QImage SampledTarget::Image(Utility::Scoped<Rgl>& p_gl) const {
  if (_samples > 0) {
    const auto bound = _plain.BindForDraw(p_gl); // to draw to; samples are read from the other one
    p_gl->BindFramebuffer(RGL_READ_FRAMEBUFFER, _frame->Name());
    p_gl->BlitFramebuffer(0, 0, _size.width, _size.height, 0, 0, _size.width, _size.height, RGL_COLOR_BUFFER_BIT,
                          RGL_NEAREST);
  }
  return _plain.ToImage(p_gl);
}

void SampledTarget::Write(Utility::Scoped<Rgl>& p_gl, int p_sample, const Samples& p_values, Written p_written) const {
  const std::size_t pixels = static_cast<std::size_t>(_size.width) * static_cast<std::size_t>(_size.height);
  if (p_values.colors.size() != 4 * pixels || p_values.depths.size() != pixels)
    throw std::invalid_argument("SampledTarget: expected " + std::to_string(pixels) + " colours and depths, got " +
                                std::to_string(p_values.colors.size() / 4) + " and " +
                                std::to_string(p_values.depths.size()));
  const auto bound = BindForDraw(p_gl);
  const auto state = CopyState(*p_gl);
  if (p_written == Written::Depths)
    p_gl->ColorMask(false, false, false, false);
  else
    p_gl->DepthMask(false);
  if (p_written == Written::Blended) {
    p_gl->Enable(RGL_BLEND);
    p_gl->BlendFunc(RGL_ONE, RGL_ONE_MINUS_SRC_ALPHA);
  }
  const auto depths = Upload(*p_gl, RGL_TEXTURE1, _size, RGL_R32F, RGL_RED, RGL_FLOAT, p_values.depths);
  const auto colors = Upload(*p_gl, RGL_TEXTURE0, _size, RGL_RGBA8, RGL_RGBA, RGL_UNSIGNED_BYTE, p_values.colors);
  const auto used = _writing.Use(p_gl);
  _writing.SetUniform(p_gl, "colors", 0);
  _writing.SetUniform(p_gl, "depths", 1);
  _writing.SetUniform(p_gl, "number", p_sample);
  _writing.SetUniform(p_gl, "isMasked", p_written == Written::Colors ? 1 : 0);
  DrawAll(*p_gl);
  if (!p_gl->CheckError("SampledTarget::Write"))
    throw std::runtime_error("drawing the composited image failed");
}

} // namespace Vek::Chart::Library

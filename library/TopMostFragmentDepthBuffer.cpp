#include "library/TopMostFragmentDepthBuffer.h"

#include "library/RenderTexture.h"
#include "library/private/gl/Truncate.h"
#include "platform/ogl/HitRecord.h"
#include "platform/ogl/PixelStore.h"

#include <boost/array.hpp>

#include <QColor>

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace Vek::Chart::Library {

namespace {

#define VEK_CLASS "Vek::Chart::Library::TopMostFragmentDepthBuffer::"
#define VEK_FUNCTION(p_arguments) "const class boost::function<void __cdecl(" p_arguments ")> &"
#define VEK_RENDER VEK_FUNCTION("enum Vek::Chart::Library::DepthCodec::Encoding")
#define VEK_SCOPE "class Vek::Chart::Utility::Scoped<class Vek::Chart::Ogl::Rgl> &,"
namespace Signature {
constexpr const char* GetDepthAt =
    "bool __cdecl " VEK_CLASS "GetDepthAt(" VEK_SCOPE
    "const class Vek::Chart::Types::Viewport<0>,const class Vek::Chart::Types::Pos &,"
    "const class Vek::Chart::Core::TimeStamp &," VEK_RENDER "," VEK_FUNCTION("unsigned int,float") ") @line86";
constexpr const char* MakeSnapshot = "const class Vek::Chart::Library::DepthImage &__cdecl " VEK_CLASS
                                     "MakeSnapshot(" VEK_SCOPE "const class Vek::Chart::Types::Viewport<0> &,"
                                     "const class Vek::Chart::Core::TimeStamp &," VEK_RENDER ")";
constexpr const char* ReadRectangle = "class Vek::Chart::Library::DepthImage __cdecl " VEK_CLASS
                                      "ReadRectangle(" VEK_SCOPE "const class Vek::Chart::Types::Viewport<0> &,"
                                      "const class Vek::Chart::Types::Pos &,const class Vek::Chart::Types::Size &,"
                                      "const class Vek::Chart::Core::TimeStamp &," VEK_RENDER ")";
} // namespace Signature
#undef VEK_CLASS
#undef VEK_FUNCTION
#undef VEK_RENDER
#undef VEK_SCOPE

Types::Size SizeOf(const Types::Viewport<0>& p_viewport) {
  return {Private::Truncate(p_viewport.width), Private::Truncate(p_viewport.height)};
}

} // namespace

struct VEK_HIDDEN TopMostFragmentDepthBuffer::State {
  /// The target bound for reading and, released after it, the host's attributes.
  struct Bound {
    boost::shared_ptr<void> attributes;
    boost::shared_ptr<void> target;
  };

  boost::shared_ptr<RenderTexture> target;
  Core::TimeStamp stamp; ///< of the scene that the target holds

  Bound BindScene(Utility::Scoped<Rgl>& p_gl, Types::Size p_size, const Core::TimeStamp& p_stamp,
                  const RenderFunction& p_render);
  DepthImage Read(const Rgl& p_gl, Types::Pos p_corner, Types::Size p_size, const char* p_signature) const;
};

TopMostFragmentDepthBuffer::TopMostFragmentDepthBuffer()
    : _state(new State) {}

TopMostFragmentDepthBuffer::~TopMostFragmentDepthBuffer() = default;

/// Binds the target with the scene of that stamp, which is drawn if need be. Without a target if there is none.
TopMostFragmentDepthBuffer::State::Bound TopMostFragmentDepthBuffer::State::BindScene(Utility::Scoped<Rgl>& p_gl,
                                                                                      Types::Size p_size,
                                                                                      const Core::TimeStamp& p_stamp,
                                                                                      const RenderFunction& p_render) {
  if (!target || !(target->Size() == p_size)) {
    target.reset(new RenderTexture(p_size, RenderTexture::Rgba8, RenderTexture::Linear));
    stamp = Core::TimeStamp(); // differs from every other
  }

  Bound bound;
  bound.attributes = p_gl->PushAttribScope(RGL_COLOR_BUFFER_BIT | RGL_ENABLE_BIT | RGL_VIEWPORT_BIT);
  bound.target = target->BindForRead(p_gl);
  if (!bound.target)
    return bound; // drawing would go to the host's window
  p_gl->Viewport(Types::Viewport<0>(0, 0, static_cast<float>(p_size.width), static_cast<float>(p_size.height)));
  if (p_gl->Features().Supported(Ogl::DeviceFeatures::FeatureSrgbFrameBuffer))
    p_gl->Disable(RGL_FRAMEBUFFER_SRGB);

  if (stamp != p_stamp) {
    stamp = Core::TimeStamp();                 // what the target held is lost, even if the callback throws
    p_gl->ClearColor(QColor(Qt::transparent)); // the packing of an empty pixel
    p_gl->Clear(RGL_COLOR_BUFFER_BIT | RGL_STENCIL_BUFFER_BIT | RGL_DEPTH_BUFFER_BIT);
    p_gl->Disable(RGL_STENCIL_TEST);
    p_gl->Enable(RGL_DEPTH_TEST);
    p_render(DepthCodec::EncodingRgba8);
    if (target->Complete())
      stamp = p_stamp;
  }
  return bound;
}

bool TopMostFragmentDepthBuffer::GetDepthAt(Utility::Scoped<Rgl>& p_gl, Types::Viewport<0> p_viewport,
                                            const Types::Pos& p_position, const Core::TimeStamp& p_stamp,
                                            const boost::function<void(DepthCodec::Encoding)>& p_render,
                                            const boost::function<void(unsigned int, float)>& p_result) {
  const State::Bound bound = _state->BindScene(p_gl, SizeOf(p_viewport), p_stamp, p_render);
  if (!bound.target)
    return false;
  boost::array<unsigned char, 4> bytes{{0, 0, 0, 0}};
  {
    const boost::shared_ptr<void> packing = Ogl::PixelPackScope(*p_gl);
    p_gl->ReadPixels(p_position.x, p_position.y, 1, 1, RGL_RGBA, RGL_UNSIGNED_BYTE, bytes.data());
  }
  static const std::string Location = Signature::GetDepthAt; // made once: it costs as much as binding the target
  p_gl->CheckError(Location);
  const float depth = DepthCodec::Decode(bytes);
  if (!(Ogl::HitRecord::DepthFarthest > static_cast<double>(depth)))
    return false;
  p_result(0, depth);
  return true;
}

/// Reads a rectangle of the bound target. Empty where it cannot be read.
DepthImage TopMostFragmentDepthBuffer::State::Read(const Rgl& p_gl, Types::Pos p_corner, Types::Size p_size,
                                                   const char* p_signature) const {
  p_gl.CheckError(std::string("before ") + p_signature);
  if (!target->Complete())
    return {};
  const std::size_t count = static_cast<std::size_t>(p_size.width) * static_cast<std::size_t>(p_size.height);
  std::vector<float> depths(count);
  const auto bytes = reinterpret_cast<unsigned char*>(depths.data()); // which become depths in place
  {
    const boost::shared_ptr<void> packing = Ogl::PackScope(p_gl);
    p_gl.ReadPixels(p_corner.x, p_corner.y, p_size.width, p_size.height, RGL_RGBA, RGL_UNSIGNED_BYTE, bytes);
  }
  if (!p_gl.CheckError(p_signature))
    return {};
  DepthCodec::Decode(bytes, count, depths.data());
  return {p_corner, p_size, std::move(depths)};
}

/// The snapshot of that scene and size. It is made unless there is one.
const DepthImage& TopMostFragmentDepthBuffer::MakeSnapshot(Utility::Scoped<Rgl>& p_gl,
                                                           const Types::Viewport<0>& p_viewport,
                                                           const Core::TimeStamp& p_stamp,
                                                           const RenderFunction& p_render) {
  const Types::Size size = SizeOf(p_viewport);
  _snapshotViewport = p_viewport;
  if (_snapshotStamp == p_stamp && _snapshot.Size() == size)
    return _snapshot;                 // another viewport of the same size
  _snapshotStamp = Core::TimeStamp(); // even if drawing throws
  _snapshot = {};
  const State::Bound bound = _state->BindScene(p_gl, size, p_stamp, p_render);
  if (!bound.target)
    return _snapshot;
  _snapshot = _state->Read(*p_gl, {0, 0}, size, Signature::MakeSnapshot);
  if (!_snapshot.Empty())
    _snapshotStamp = p_stamp;
  return _snapshot;
}

DepthImage TopMostFragmentDepthBuffer::ReadRectangle(Utility::Scoped<Rgl>& p_gl, const Types::Viewport<0>& p_viewport,
                                                     const Types::Pos& p_corner, const Types::Size& p_size,
                                                     const Core::TimeStamp& p_stamp, const RenderFunction& p_render) {
  const Types::Size whole = SizeOf(p_viewport);
  const Types::Pos corner(std::max(p_corner.x, 0), std::max(p_corner.y, 0));
  const auto right = std::min<std::int64_t>(std::int64_t{p_corner.x} + p_size.width, whole.width);
  const auto top = std::min<std::int64_t>(std::int64_t{p_corner.y} + p_size.height, whole.height);
  if (right <= corner.x || top <= corner.y)
    return {};
  const State::Bound bound = _state->BindScene(p_gl, whole, p_stamp, p_render);
  if (!bound.target)
    return {};
  const Types::Size size(static_cast<int>(right) - corner.x, static_cast<int>(top) - corner.y);
  return _state->Read(*p_gl, corner, size, Signature::ReadRectangle);
}

} // namespace Vek::Chart::Library

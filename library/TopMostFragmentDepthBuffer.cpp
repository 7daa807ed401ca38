#include "library/TopMostFragmentDepthBuffer.h"

#include "library/RenderTexture.h"
#include "library/private/gl/Truncate.h"
#include "platform/ogl/HitRecord.h"
#include "platform/ogl/PixelStore.h"

#include <boost/array.hpp>

#include <QColor>

#include <string>

namespace Vek::Chart::Library {

namespace {

namespace Signature {
constexpr const char* GetDepthAt =
    "bool __cdecl Vek::Chart::Library::TopMostFragmentDepthBuffer::GetDepthAt(class "
    "Vek::Chart::Utility::Scoped<class Vek::Chart::Ogl::Rgl> &,const class Vek::Chart::Types::Viewport<0>,const "
    "class Vek::Chart::Types::Pos &,const class Vek::Chart::Core::TimeStamp &,const class boost::function<void "
    "__cdecl(enum Vek::Chart::Library::DepthCodec::Encoding)> &,const class boost::function<void __cdecl(unsigned "
    "int,float)> &) @line86";
} // namespace Signature

} // namespace

struct TopMostFragmentDepthBuffer::State {
  boost::shared_ptr<RenderTexture> target;
  Core::TimeStamp stamp; ///< of the scene that the target holds
};

TopMostFragmentDepthBuffer::TopMostFragmentDepthBuffer()
    : _state(new State) {}

TopMostFragmentDepthBuffer::~TopMostFragmentDepthBuffer() = default;

bool TopMostFragmentDepthBuffer::GetDepthAt(Utility::Scoped<Rgl>& p_gl, Types::Viewport<0> p_viewport,
                                            const Types::Pos& p_position, const Core::TimeStamp& p_stamp,
                                            const boost::function<void(DepthCodec::Encoding)>& p_render,
                                            const boost::function<void(unsigned int, float)>& p_result) {
  const Types::Size size(Private::Truncate(p_viewport.width), Private::Truncate(p_viewport.height));
  if (!_state->target || !(_state->target->Size() == size)) {
    _state->target.reset(new RenderTexture(size, RenderTexture::Rgba8, RenderTexture::Linear));
    _state->stamp = Core::TimeStamp(); // differs from every other
  }

  // Released in reverse: the frame buffer first, then the attributes.
  const boost::shared_ptr<void> attributes =
      p_gl->PushAttribScope(RGL_COLOR_BUFFER_BIT | RGL_ENABLE_BIT | RGL_VIEWPORT_BIT);
  const boost::shared_ptr<void> bound = _state->target->BindForRead(p_gl);
  if (!bound)
    return false; // drawing would go to the host's window
  p_gl->Viewport(Types::Viewport<0>(0, 0, static_cast<float>(size.width), static_cast<float>(size.height)));
  if (p_gl->Features().Supported(Ogl::DeviceFeatures::FeatureSrgbFrameBuffer))
    p_gl->Disable(RGL_FRAMEBUFFER_SRGB);

  if (_state->stamp != p_stamp) {
    _state->stamp = Core::TimeStamp();         // what the target held is lost, even if the callback throws
    p_gl->ClearColor(QColor(Qt::transparent)); // the packing of an empty pixel
    p_gl->Clear(RGL_COLOR_BUFFER_BIT | RGL_STENCIL_BUFFER_BIT | RGL_DEPTH_BUFFER_BIT);
    p_gl->Disable(RGL_STENCIL_TEST);
    p_gl->Enable(RGL_DEPTH_TEST);
    p_render(DepthCodec::EncodingRgba8);
    if (_state->target->Complete())
      _state->stamp = p_stamp;
  }

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

} // namespace Vek::Chart::Library

#include "platform/ogl/Objects.h"

#include "platform/debug/Check.h"
#include "platform/ogl/GlTokens.h"
#include "platform/ogl/Guard.h"

#include <utility>

namespace Vek::Chart::Ogl {
namespace {

namespace Signature {
constexpr const char* Compile =
    "class boost::shared_ptr<void> __cdecl Vek::Chart::Ogl::DisplayList::Compile(void) const";
} // namespace Signature

} // namespace

Texture::Texture(boost::shared_ptr<const GlFunctions> p_gl)
    : _gl(std::move(p_gl)) {
  _gl->GenTextures(1, &_name);
}

Texture::~Texture() {
  if (_name != 0)
    _gl->DeleteTextures(1, &_name);
}

DisplayList::DisplayList(boost::shared_ptr<const GlFunctions> p_gl)
    : _gl(std::move(p_gl))
    , _name(_gl->GenLists(1)) {}

DisplayList::~DisplayList() {
  if (_name != 0)
    _gl->DeleteLists(_name, 1);
}

boost::shared_ptr<void> DisplayList::Compile() const {
  if (!VEK_ENSURE(_name != 0, Signature::Compile))
    return MakeGuard([] {});
  _gl->NewList(_name, RGL_COMPILE);
  return MakeGuard([gl = _gl] { gl->EndList(); });
}

void DisplayList::operator()() const {
  if (_name != 0)
    _gl->CallList(_name);
}

FrameBufferObject::FrameBufferObject(boost::shared_ptr<const GlFunctions> p_gl)
    : _gl(std::move(p_gl)) {
  _gl->GenFramebuffers(1, &_name);
}

FrameBufferObject::~FrameBufferObject() {
  if (_name != 0)
    _gl->DeleteFramebuffers(1, &_name);
}

RenderBuffer::RenderBuffer(boost::shared_ptr<const GlFunctions> p_gl)
    : _gl(std::move(p_gl)) {
  _gl->GenRenderbuffers(1, &_name);
}

RenderBuffer::~RenderBuffer() {
  if (_name != 0)
    _gl->DeleteRenderbuffers(1, &_name);
}

} // namespace Vek::Chart::Ogl

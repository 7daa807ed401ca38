#include "platform/ogl/private/EglContext.h"

#include "platform/debug/Check.h"
#include "platform/ogl/Guard.h"
#include "platform/ogl/private/QuietReport.h"

#include <QOpenGLContext>
#include <QSurface>

#include <EGL/egl.h>
#include <EGL/eglext.h>

#include <algorithm>
#include <cstdio>
#include <mutex>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace Vek::Chart::Ogl {
namespace {

constexpr const char* Packages =
    "; an off-screen context needs the packages libegl1, libegl-mesa0 and libgl1-mesa-dri, or a hardware vendor's "
    "driver with EGL";

/// "step: EGL error 0x3001"
std::string Failure(const std::string& p_step) {
  char code[16];
  std::snprintf(code, sizeof(code), "0x%04X", static_cast<unsigned int>(eglGetError()));
  return p_step + ": EGL error " + code;
}

bool HasWord(const char* p_words, std::string_view p_word) {
  if (p_words == nullptr)
    return false;
  const std::string words = " " + std::string(p_words) + " ";
  return words.find(" " + std::string(p_word) + " ") != std::string::npos;
}

template <class Function>
Function EntryPoint(const char* p_name) {
  return reinterpret_cast<Function>(eglGetProcAddress(p_name));
}

/// A display that may or may not work, and a name for messages.
struct Candidate {
  EGLDisplay display;
  std::string name;
};

void AppendDevices(std::vector<Candidate>& p_candidates, PFNEGLGETPLATFORMDISPLAYEXTPROC p_getDisplay) {
  const auto queryDevices = EntryPoint<PFNEGLQUERYDEVICESEXTPROC>("eglQueryDevicesEXT");
  const auto queryString = EntryPoint<PFNEGLQUERYDEVICESTRINGEXTPROC>("eglQueryDeviceStringEXT");
  EGLint count = 0;
  if (queryDevices == nullptr || queryString == nullptr || queryDevices(0, nullptr, &count) == EGL_FALSE || count <= 0)
    return;
  std::vector<EGLDeviceEXT> devices(static_cast<std::size_t>(count));
  if (queryDevices(count, devices.data(), &count) == EGL_FALSE)
    return;
  devices.resize(static_cast<std::size_t>(std::max(0, count)));
  std::stable_partition(devices.begin(), devices.end(), [queryString](EGLDeviceEXT p_device) {
    return !HasWord(queryString(p_device, EGL_EXTENSIONS), "EGL_MESA_device_software");
  });
  for (std::size_t i = 0; i < devices.size(); ++i)
    p_candidates.push_back(
        {p_getDisplay(EGL_PLATFORM_DEVICE_EXT, devices[i], nullptr), "EGL device " + std::to_string(i + 1)});
}

/// All displays that need no window system: devices, hardware first, then Mesa's own choice.
std::vector<Candidate> Candidates() {
  const char* const extensions = eglQueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS);
  const auto getDisplay = EntryPoint<PFNEGLGETPLATFORMDISPLAYEXTPROC>("eglGetPlatformDisplayEXT");
  std::vector<Candidate> candidates;
  if (getDisplay == nullptr)
    return candidates;
  if (HasWord(extensions, "EGL_EXT_platform_device"))
    AppendDevices(candidates, getDisplay);
  if (HasWord(extensions, "EGL_MESA_platform_surfaceless"))
    candidates.push_back(
        {getDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr), "EGL surfaceless platform"});
  return candidates;
}

/// A context on that display, or EGL_NO_CONTEXT and the failed step in `p_failure`.
EGLContext CreateContext(EGLDisplay p_display, std::string& p_failure) {
  // A display is initialised once and stays so for the process: ending it would end every context on it.
  if (p_display == EGL_NO_DISPLAY || eglInitialize(p_display, nullptr, nullptr) == EGL_FALSE) {
    p_failure = Failure("eglInitialize");
    return EGL_NO_CONTEXT;
  }
  const char* const extensions = eglQueryString(p_display, EGL_EXTENSIONS);
  for (const char* const needed : {"EGL_KHR_surfaceless_context", "EGL_KHR_create_context"})
    if (!HasWord(extensions, needed)) {
      p_failure = std::string("the display lacks ") + needed;
      return EGL_NO_CONTEXT;
    }
  if (eglBindAPI(EGL_OPENGL_API) == EGL_FALSE) {
    p_failure = Failure("eglBindAPI(EGL_OPENGL_API)");
    return EGL_NO_CONTEXT;
  }
  constexpr EGLint ConfigWishes[] = {EGL_SURFACE_TYPE, 0, EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT, EGL_NONE};
  EGLConfig config = nullptr;
  EGLint count = 0;
  if (eglChooseConfig(p_display, ConfigWishes, &config, 1, &count) == EGL_FALSE || count < 1) {
    p_failure = Failure("eglChooseConfig for desktop GL");
    return EGL_NO_CONTEXT;
  }
  constexpr EGLint ContextWishes[] = {EGL_CONTEXT_OPENGL_PROFILE_MASK_KHR,
                                      EGL_CONTEXT_OPENGL_COMPATIBILITY_PROFILE_BIT_KHR, EGL_NONE};
  const EGLContext context = eglCreateContext(p_display, config, EGL_NO_CONTEXT, ContextWishes);
  if (context == EGL_NO_CONTEXT)
    p_failure = Failure("eglCreateContext (compatibility profile)");
  return context;
}

/// The API that a thread has bound decides what "the current context" means; a host may have bound GL ES.
class DesktopApi {
public:
  DesktopApi()
      : _previous(eglQueryAPI()) {
    eglBindAPI(EGL_OPENGL_API);
  }
  ~DesktopApi() {
    if (_previous != EGL_NONE)
      eglBindAPI(_previous);
  }
  DesktopApi(const DesktopApi&) = delete;
  DesktopApi& operator=(const DesktopApi&) = delete;

private:
  EGLenum _previous;
};

} // namespace

EglContext::EglContext() {
  static std::mutex oneAtATime; // drivers start up inside
  const std::lock_guard<std::mutex> lock(oneAtATime);
  const DesktopApi api;
  std::string failures;
  for (const Candidate& candidate : Candidates()) {
    std::string failure;
    _display = candidate.display;
    _context = CreateContext(candidate.display, failure);
    if (_context == EGL_NO_CONTEXT) {
      failures += (failures.empty() ? "" : "; ") + candidate.name + ": " + failure;
      continue;
    }
    try {
      CurrentScope();
      return;
    } catch (const std::runtime_error& error) {
      failures += (failures.empty() ? "" : "; ") + candidate.name + ": " + error.what();
      eglDestroyContext(_display, _context);
    }
  }
  if (failures.empty())
    failures = "EGL offers neither devices nor the surfaceless platform";
  throw std::runtime_error("No off-screen GL context: " + failures + Packages);
}

EglContext::~EglContext() {
  const DesktopApi api;
  if (eglGetCurrentContext() == _context)
    eglMakeCurrent(_display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
  eglDestroyContext(_display, _context);
}

void EglContext::MakeCurrent() {
  const DesktopApi api;
  Binding previous{eglGetCurrentDisplay(),
                   eglGetCurrentContext(),
                   eglGetCurrentSurface(EGL_DRAW),
                   eglGetCurrentSurface(EGL_READ),
                   nullptr,
                   nullptr};
  if (previous.context == EGL_NO_CONTEXT)
    ReleaseQt(previous);
  const bool isCurrent =
      previous.context == _context || eglMakeCurrent(_display, EGL_NO_SURFACE, EGL_NO_SURFACE, _context) != EGL_FALSE;
  const std::string failure = isCurrent ? std::string() : Failure("eglMakeCurrent");
  _previous = previous;
  if (isCurrent)
    return;
  RestoreQt();
  throw std::runtime_error(failure);
}

void EglContext::ReleaseQt(Binding& p_binding) {
  QOpenGLContext* const context = QOpenGLContext::currentContext();
  if (context == nullptr)
    return;
  p_binding.qtContext = context;
  p_binding.qtSurface = dynamic_cast<QObject*>(context->surface());
  context->doneCurrent();
}

void EglContext::RestoreQt() noexcept {
  auto* const context = qobject_cast<QOpenGLContext*>(_previous.qtContext.data());
  auto* const surface = dynamic_cast<QSurface*>(_previous.qtSurface.data());
  if (context == nullptr || surface == nullptr)
    return;
  eglMakeCurrent(_display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT); // GLX refuses while EGL has one
  context->makeCurrent(surface);
}

void EglContext::Restore() noexcept {
  RestoreQt();
  if (_previous.context == EGL_NO_CONTEXT || _previous.context == _context)
    return;
  const DesktopApi api;
  if (eglMakeCurrent(_previous.display, _previous.draw, _previous.read, _previous.context) == EGL_FALSE)
    ReportQuietly([] { vekdebug::warn("The GL context that was current before could not be made current again."); });
}

boost::shared_ptr<void> EglContext::CurrentScope() {
  MakeCurrent();
  return MakeGuard([this] { Restore(); });
}

} // namespace Vek::Chart::Ogl

#pragma once

#include <boost/shared_ptr.hpp>

#include <QObject>
#include <QPointer>

namespace Vek::Chart::Ogl {

/// The EGL context (compatibility profile) of `OffscreenContext`, without a display, a window or a default frame
/// buffer.
class EglContext {
public:
  /// Tries the devices that EGL lists, hardware first, then the surfaceless platform. Throws std::runtime_error, with
  /// what was tried and what to install, when none makes a context. The context is not current afterwards.
  EglContext();
  ~EglContext();
  EglContext(const EglContext&) = delete;
  EglContext& operator=(const EglContext&) = delete;

  /// Makes the context current on this thread and remembers the one that was: of EGL, or of Qt, which may use another
  /// interface, GLX for example, and is released first. Throws std::runtime_error if EGL refuses.
  void MakeCurrent();
  /// Makes the remembered context current again. Without one, this context stays current.
  void Restore() noexcept;
  /// Calls MakeCurrent, and Restore when the guard is released.
  boost::shared_ptr<void> CurrentScope();

private:
  // EGL's handles; its types are all void*.
  void* _display = nullptr;
  void* _context = nullptr;
  struct Binding {
    void* display = nullptr;
    void* context = nullptr;
    void* draw = nullptr;
    void* read = nullptr;
    QPointer<QObject> qtContext; // QOpenGLContext
    QPointer<QObject> qtSurface; // QSurface
  } _previous;
  static void ReleaseQt(Binding& p_binding);
  void RestoreQt() noexcept;
};

} // namespace Vek::Chart::Ogl

#pragma once

#include "platform/Export.h"
#include "platform/ogl/GlFunctions.h"

#include <boost/shared_ptr.hpp>

namespace Vek::Chart::Ogl {

// GL objects with shared ownership. Each is made by an operation of Rgl and deletes its GL name with its last holder.
//
// At that moment the context that made it, or one that shares objects with it, must be current. A host that brings its
// own context must ensure this: otherwise the name is leaked, or an object of another context that has the same name is
// deleted. Objects of an `OffscreenContext` may outlive it; they are then reported and dropped. `PerContext` ensures it
// for the objects of its values.

/// The name of a GL texture. The first bind decides its target.
class VEK_PLATFORM_API Texture {
public:
  /// A new name in the current context; 0 when GL makes none.
  explicit Texture(boost::shared_ptr<const GlFunctions> p_gl);
  ~Texture();
  Texture(const Texture&) = delete;
  Texture& operator=(const Texture&) = delete;
  /// The name in GL.
  unsigned int Name() const { return _name; }

private:
  boost::shared_ptr<const GlFunctions> _gl;
  unsigned int _name = 0;
};

/// A display list, which is recorded once and replayed by calling it.
class VEK_PLATFORM_API DisplayList {
public:
  /// A new, empty list in the current context; name 0 when GL makes none.
  explicit DisplayList(boost::shared_ptr<const GlFunctions> p_gl);
  ~DisplayList();
  DisplayList(const DisplayList&) = delete;
  DisplayList& operator=(const DisplayList&) = delete;
  /// The name in GL.
  unsigned int Name() const { return _name; }

  /// Starts recording with GL_COMPILE: nothing is drawn meanwhile. Releasing the guard ends the recording. Lists cannot
  /// be nested. A list without a name is reported and records nothing.
  boost::shared_ptr<void> Compile() const;
  /// Replays the recorded calls; does nothing without a name.
  void operator()() const;

private:
  boost::shared_ptr<const GlFunctions> _gl;
  unsigned int _name = 0;
};

/// The name of a frame-buffer object, to which textures and renderbuffers are attached by its user.
class VEK_PLATFORM_API FrameBufferObject {
public:
  /// A new name in the current context; 0 when GL makes none.
  explicit FrameBufferObject(boost::shared_ptr<const GlFunctions> p_gl);
  ~FrameBufferObject();
  FrameBufferObject(const FrameBufferObject&) = delete;
  FrameBufferObject& operator=(const FrameBufferObject&) = delete;
  /// The name in GL.
  unsigned int Name() const { return _name; }

private:
  boost::shared_ptr<const GlFunctions> _gl;
  unsigned int _name = 0;
};

/// The name of a renderbuffer: storage for one attachment of a frame-buffer object, never sampled.
class VEK_PLATFORM_API RenderBuffer {
public:
  /// A new name in the current context; 0 when GL makes none.
  explicit RenderBuffer(boost::shared_ptr<const GlFunctions> p_gl);
  ~RenderBuffer();
  RenderBuffer(const RenderBuffer&) = delete;
  RenderBuffer& operator=(const RenderBuffer&) = delete;
  /// The name in GL.
  unsigned int Name() const { return _name; }

private:
  boost::shared_ptr<const GlFunctions> _gl;
  unsigned int _name = 0;
};

} // namespace Vek::Chart::Ogl

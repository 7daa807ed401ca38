#pragma once

#include "platform/Export.h"
#include "platform/ogl/Rgl.h"
#include "platform/types/Matrix.h"
#include "platform/types/Vector.h"

#include <QColor>

#include <boost/shared_ptr.hpp>

#include <string>
#include <vector>

namespace Vek::Chart::Ogl {

/// A GLSL program of one vertex and one fragment shader.
///
/// Copies share the program. Its name is deleted with the last copy, when the context that made it must be current.
///
/// \snippet HostSnippets.cpp ShaderProgram
/// \ingroup host
class VEK_PLATFORM_API ShaderProgram {
public:
  /// Compiles and links. `p_attributes` are the names of vertex attributes in the order of their locations, from 0 on;
  /// an empty name leaves the location to GL. A step that fails is reported as "WARNING: ", the step, ": " and GL's
  /// log, and the program is not linked.
  ShaderProgram(Utility::Scoped<Rgl>& p_gl, const std::string& p_vertexText, const std::string& p_fragmentText,
                const std::vector<std::string>& p_attributes = {});

  /// True if the program can be used.
  bool Linked() const { return _handle != nullptr; }
  /// The name in GL; 0 if the program is not linked.
  unsigned int Name() const;

  /// Makes this program current; releasing the guard restores the previous one. A program that is not linked reports
  /// "Linked()" and leaves the current program.
  boost::shared_ptr<void> Use(Utility::Scoped<Rgl>& p_gl) const;

  ///@{
  /// Sets a uniform of this program, which must be current: an int or sampler, a float, a vec3, a vec4 (red, green,
  /// blue and alpha from 0 to 1) or a mat4. Names of unknown or unused uniforms are ignored.
  void SetUniform(Utility::Scoped<Rgl>& p_gl, const std::string& p_name, int p_value) const;
  void SetUniform(Utility::Scoped<Rgl>& p_gl, const std::string& p_name, float p_value) const;
  void SetUniform(Utility::Scoped<Rgl>& p_gl, const std::string& p_name,
                  const Types::Vector3_Base<double>& p_value) const;
  void SetUniform(Utility::Scoped<Rgl>& p_gl, const std::string& p_name, const QColor& p_value) const;
  void SetUniform(Utility::Scoped<Rgl>& p_gl, const std::string& p_name, const Types::Transformation& p_value) const;
  ///@}

private:
  class Handle;
  int Location(const Rgl& p_gl, const std::string& p_name) const;
  boost::shared_ptr<const Handle> _handle;
};

} // namespace Vek::Chart::Ogl

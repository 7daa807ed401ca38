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
/// The name of the program is deleted with the last copy, while the context that made it must be current.
///
/// \snippet HostSnippets.cpp ShaderProgram
/// \ingroup host
class VEK_PLATFORM_API ShaderProgram {
public:
  /// Compiles and links. `p_attributes` are the names of vertex attributes in the order of their locations, from 0 on;
  /// an empty name leaves a location to GL. What GL refuses is reported, as "WARNING: ", the step, ": " and GL's log;
  /// the program is then not linked.
  ShaderProgram(Utility::Scoped<Rgl>& p_gl, const std::string& p_vertexText, const std::string& p_fragmentText,
                const std::vector<std::string>& p_attributes = {});

  /// Whether it can be used.
  bool Linked() const { return _handle != nullptr; }
  /// 0 when it is not linked.
  unsigned int Name() const;

  /// Makes it the current program; releasing the guard makes the previous one current again. A program that is not
  /// linked leaves the current one, with the report "Linked()".
  boost::shared_ptr<void> Use(Utility::Scoped<Rgl>& p_gl) const;

  ///@{
  /// Sets a uniform of this program, which must be the current one: an int or sampler, a float, a vec3, a vec4 (red,
  /// green, blue, alpha from 0 to 1), a mat4. A name that the program does not have, or does not need, is passed over,
  /// as GL does.
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

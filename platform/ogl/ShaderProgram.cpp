#include "platform/ogl/ShaderProgram.h"

#include "platform/debug/Check.h"
#include "platform/ogl/Guard.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <array>
#include <utility>

namespace Vek::Chart::Ogl {

/// The GL name, deleted with the last holder.
class ShaderProgram::Handle {
public:
  explicit Handle(boost::shared_ptr<const GlFunctions> p_gl)
      : _gl(std::move(p_gl))
      , _name(_gl->CreateProgram()) {}
  ~Handle() { _gl->DeleteProgram(_name); } // GL ignores name 0
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  unsigned int Name() const { return _name; }

private:
  boost::shared_ptr<const GlFunctions> _gl;
  unsigned int _name;
};

namespace {

namespace Signature {
#define VEK_STRING "class std::basic_string<char,struct std::char_traits<char>,class std::allocator<char> >"
#define VEK_SCOPE "class Vek::Chart::Utility::Scoped<class Vek::Chart::Ogl::Rgl> &"
constexpr const char* Constructor =
    "__cdecl Vek::Chart::Ogl::ShaderProgram::ShaderProgram(" VEK_SCOPE ",const " VEK_STRING " &,const " VEK_STRING
    " &,const class std::vector<" VEK_STRING ",class std::allocator<" VEK_STRING " > > &)";
constexpr const char* Use =
    "class boost::shared_ptr<void> __cdecl Vek::Chart::Ogl::ShaderProgram::Use(" VEK_SCOPE ") const";
#undef VEK_STRING
#undef VEK_SCOPE
} // namespace Signature

/// A shader that is deleted once its program is linked.
class Shader {
public:
  Shader(const Rgl& p_gl, GlEnum p_type)
      : _gl(p_gl)
      , _name(p_gl.CreateShader(p_type)) {}
  ~Shader() { _gl.DeleteShader(_name); }
  Shader(const Shader&) = delete;
  Shader& operator=(const Shader&) = delete;
  unsigned int Name() const { return _name; }

private:
  const Rgl& _gl;
  unsigned int _name;
};

using GetParameter = void (Rgl::*)(unsigned int, GlEnum, int*) const;
using GetLog = void (Rgl::*)(unsigned int, int, int*, char*) const;

/// True if the step succeeded; otherwise reports GL's log.
bool CheckStep(const Rgl& p_gl, const char* p_step, unsigned int p_name, GlEnum p_status, GetParameter p_get,
               GetLog p_log) {
  int done = 0;
  if (p_name != 0)
    (p_gl.*p_get)(p_name, p_status, &done);
  if (done != 0)
    return true;
  int room = 0;
  if (p_name != 0)
    (p_gl.*p_get)(p_name, RGL_INFO_LOG_LENGTH, &room);
  std::string log(static_cast<std::size_t>(std::max(room, 1)), '\0');
  int length = 0;
  if (room > 0)
    (p_gl.*p_log)(p_name, room, &length, log.data());
  log.resize(static_cast<std::size_t>(std::clamp(length, 0, room)));
  // One report is one line.
  std::replace(log.begin(), log.end(), '\n', ' ');
  log.erase(log.find_last_not_of(' ') + 1);
  return vekdebug::warn(std::string(p_step) + ": " + log);
}

bool Compile(const Rgl& p_gl, const char* p_step, unsigned int p_name, const std::string& p_text) {
  if (p_name != 0) {
    const char* const text = p_text.data();
    const int length = static_cast<int>(p_text.size());
    p_gl.ShaderSource(p_name, 1, &text, &length);
    p_gl.CompileShader(p_name);
  }
  return CheckStep(p_gl, p_step, p_name, RGL_COMPILE_STATUS, &Rgl::GetShaderiv, &Rgl::GetShaderInfoLog);
}

} // namespace

ShaderProgram::ShaderProgram(Utility::Scoped<Rgl>& p_gl, const std::string& p_vertexText,
                             const std::string& p_fragmentText, const std::vector<std::string>& p_attributes) {
  const Rgl& gl = *p_gl;
  if (!VEK_ENSURE(gl.GlVersion() >= Utility::VersionNo(2, 0, 0), Signature::Constructor))
    return;
  const Shader vertex(gl, RGL_VERTEX_SHADER);
  const Shader fragment(gl, RGL_FRAGMENT_SHADER);
  const bool vertexCompiled = Compile(gl, "vertex shader", vertex.Name(), p_vertexText);
  const bool fragmentCompiled = Compile(gl, "fragment shader", fragment.Name(), p_fragmentText);
  if (!vertexCompiled || !fragmentCompiled)
    return;
  boost::shared_ptr<const Handle> handle = boost::make_shared<Handle>(gl.Functions());
  if (handle->Name() != 0) {
    gl.AttachShader(handle->Name(), vertex.Name());
    gl.AttachShader(handle->Name(), fragment.Name());
    for (std::size_t i = 0; i < p_attributes.size(); ++i)
      if (!p_attributes[i].empty())
        gl.BindAttribLocation(handle->Name(), static_cast<unsigned int>(i), p_attributes[i].c_str());
    gl.LinkProgram(handle->Name());
  }
  if (CheckStep(gl, "shader program", handle->Name(), RGL_LINK_STATUS, &Rgl::GetProgramiv, &Rgl::GetProgramInfoLog))
    _handle = std::move(handle);
}

unsigned int ShaderProgram::Name() const {
  return _handle ? _handle->Name() : 0;
}

boost::shared_ptr<void> ShaderProgram::Use(Utility::Scoped<Rgl>& p_gl) const {
  if (!VEK_ENSURE(Linked(), Signature::Use))
    return MakeGuard([] {});
  int previous = 0;
  p_gl->GetIntegerv(RGL_CURRENT_PROGRAM, &previous);
  p_gl->UseProgram(Name());
  return MakeGuard(
      [gl = p_gl->Functions(), handle = _handle, previous] { gl->UseProgram(static_cast<unsigned int>(previous)); });
}

int ShaderProgram::Location(const Rgl& p_gl, const std::string& p_name) const {
  return _handle ? p_gl.GetUniformLocation(Name(), p_name.c_str()) : -1;
}

void ShaderProgram::SetUniform(Utility::Scoped<Rgl>& p_gl, const std::string& p_name, int p_value) const {
  p_gl->Uniform1i(Location(*p_gl, p_name), p_value);
}

void ShaderProgram::SetUniform(Utility::Scoped<Rgl>& p_gl, const std::string& p_name, float p_value) const {
  p_gl->Uniform1f(Location(*p_gl, p_name), p_value);
}

void ShaderProgram::SetUniform(Utility::Scoped<Rgl>& p_gl, const std::string& p_name,
                               const Types::Vector3_Base<double>& p_value) const {
  p_gl->Uniform3f(Location(*p_gl, p_name), static_cast<float>(p_value.x), static_cast<float>(p_value.y),
                  static_cast<float>(p_value.z));
}

void ShaderProgram::SetUniform(Utility::Scoped<Rgl>& p_gl, const std::string& p_name, const QColor& p_value) const {
  p_gl->Uniform4f(Location(*p_gl, p_name), static_cast<float>(p_value.redF()), static_cast<float>(p_value.greenF()),
                  static_cast<float>(p_value.blueF()), static_cast<float>(p_value.alphaF()));
}

void ShaderProgram::SetUniform(Utility::Scoped<Rgl>& p_gl, const std::string& p_name,
                               const Types::Transformation& p_value) const {
  const std::array<double, 16> elements = p_value.ColumnMajor();
  std::array<float, 16> floats{};
  std::transform(elements.begin(), elements.end(), floats.begin(),
                 [](double p_element) { return static_cast<float>(p_element); });
  p_gl->UniformMatrix4fv(Location(*p_gl, p_name), 1, RGL_FALSE, floats.data());
}

} // namespace Vek::Chart::Ogl

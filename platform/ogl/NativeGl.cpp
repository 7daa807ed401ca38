#include "platform/ogl/GlFunctions.h"

#include "platform/debug/Check.h"
#include "platform/ogl/GlDefaults.h"

#include <epoxy/gl.h> // before GLU's header, which must not bring in another GL header

#include <GL/glu.h>

#include <atomic>
#include <string>
#include <string_view>
#include <type_traits>

namespace Vek::Chart::Ogl {
namespace {

template <class T>
T ToGlu(T p_value) {
  return p_value;
}
GLUquadric* ToGlu(GlQuadric* p_quadric) {
  return reinterpret_cast<GLUquadric*>(p_quadric);
}

/// A GLU function that takes and returns our opaque type for GLU's.
template <class Function>
struct GluCall {
  Function* function;

  template <class... Arguments>
  auto operator()(Arguments... p_arguments) const {
    if constexpr (std::is_same_v<decltype(function(ToGlu(p_arguments)...)), GLUquadric*>)
      return reinterpret_cast<GlQuadric*>(function(ToGlu(p_arguments)...));
    else
      return function(ToGlu(p_arguments)...);
  }
};
template <class Function>
GluCall(Function*) -> GluCall<Function>;

/// A group of functions needs a GL version, as 10 * major + minor, or the extension.
struct Need {
  std::string_view functions; // separated by blanks
  int version = 0;
  const char* extension = nullptr;
};

constexpr Need Needs[] = {
    {"TexImage3D", 12, "GL_EXT_texture3D"},
    // Without MultiTexCoord3d: a version cannot be asked for between Begin and End.
    {"ActiveTexture ClientActiveTexture", 13},
    {"BlendFuncSeparate PointParameterfv", 14},
    {"GenBuffers DeleteBuffers BindBuffer BufferData BufferSubData GetBufferSubData UnmapBuffer GenQueries "
     "DeleteQueries BeginQuery EndQuery GetQueryObjectuiv",
     15},
    {"EnableVertexAttribArray DisableVertexAttribArray VertexAttribPointer CreateShader DeleteShader ShaderSource "
     "CompileShader GetShaderiv GetShaderInfoLog CreateProgram DeleteProgram AttachShader BindAttribLocation "
     "LinkProgram GetProgramiv GetProgramInfoLog UseProgram GetUniformLocation Uniform1i Uniform1f Uniform3f "
     "Uniform4f UniformMatrix4fv",
     20},
    {"MapBufferRange", 30, "GL_ARB_map_buffer_range"},
    {"GenFramebuffers DeleteFramebuffers BindFramebuffer FramebufferTexture2D FramebufferRenderbuffer "
     "CheckFramebufferStatus BlitFramebuffer GenRenderbuffers DeleteRenderbuffers BindRenderbuffer "
     "RenderbufferStorageMultisample GenerateMipmap",
     30, "GL_ARB_framebuffer_object"},
    {"TexBuffer", 31, "GL_ARB_texture_buffer_object"},
    {"DrawArraysInstanced DrawElementsInstanced", 31, "GL_ARB_draw_instanced"},
    {"VertexAttribDivisor", 33, "GL_ARB_instanced_arrays"},
};

constexpr bool HasWord(std::string_view p_words, std::string_view p_word) {
  for (std::size_t at = p_words.find(p_word); at != std::string_view::npos; at = p_words.find(p_word, at + 1)) {
    const std::size_t end = at + p_word.size();
    if ((at == 0 || p_words[at - 1] == ' ') && (end == p_words.size() || p_words[end] == ' '))
      return true;
  }
  return false;
}

/// The need of a function; version 0 for functions of GL 1.1, which every context has.
constexpr Need NeedOf(std::string_view p_function) {
  for (const Need& need : Needs)
    if (HasWord(need.functions, p_function))
      return need;
  return {};
}

/// Whether the current context meets the need. libepoxy ends the process at the first call of a missing function.
bool IsMet(const Need& p_need) {
  // Without a context there is no version, and libepoxy cannot look for extensions.
  return glGetString(GL_VERSION) != nullptr &&
         (epoxy_gl_version() >= p_need.version ||
          (p_need.extension != nullptr && epoxy_has_gl_extension(p_need.extension)));
}

void ReportMissing(const char* p_function, const Need& p_need) {
  const unsigned char* const version = glGetString(GL_VERSION);
  vekdebug::warn(
      "gl" + std::string(p_function) + " needs GL " + std::to_string(p_need.version / 10) + "." +
      std::to_string(p_need.version % 10) +
      (p_need.extension == nullptr ? std::string() : " or " + std::string(p_need.extension)) +
      "; the current context has " +
      (version == nullptr ? std::string("no version") : "GL " + std::string(reinterpret_cast<const char*>(version))));
}

// Each entry calls through, since libepoxy's own pointers change when they are first used. A function that was found
// once is not looked for again; one that is missing does nothing, which is reported the first time.
GlFunctions MakeNativeGl() {
  GlFunctions table;
#define VEK_GL(p_result, p_name, p_parameters, p_arguments)                                                            \
  table.p_name = [] p_parameters -> p_result {                                                                         \
    constexpr Need Needed = NeedOf(#p_name);                                                                           \
    if constexpr (Needed.version != 0) {                                                                               \
      static std::atomic<bool> found{false}, reported{false};                                                          \
      if (!found.load(std::memory_order_relaxed)) {                                                                    \
        if (!IsMet(Needed)) {                                                                                          \
          if (!reported.exchange(true))                                                                                \
            ReportMissing(#p_name, Needed);                                                                            \
          return GlDefaults().p_name p_arguments;                                                                      \
        }                                                                                                              \
        found.store(true, std::memory_order_relaxed);                                                                  \
      }                                                                                                                \
    }                                                                                                                  \
    return gl##p_name p_arguments;                                                                                     \
  };
#define VEK_GLU(p_result, p_name, p_parameters, p_arguments)                                                           \
  table.p_name = [] p_parameters -> p_result { return GluCall{&glu##p_name} p_arguments; };
#include "platform/ogl/GlFunctionList.h"
  return table;
}

} // namespace

const GlFunctions& NativeGl() {
  static const GlFunctions Table = MakeNativeGl();
  return Table;
}

} // namespace Vek::Chart::Ogl

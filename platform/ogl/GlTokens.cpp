#include "platform/ogl/GlTokens.h"

#include "platform/ogl/GlTypes.h"

#include <epoxy/gl.h> // before GLU's header, which must not bring in another GL header

#include <GL/glu.h>

#include <type_traits>

// Checks the constants and scalar types against the system's headers, at compile time.

namespace Vek::Chart::Ogl {

static_assert(std::is_same_v<GlEnum, GLenum>);
static_assert(std::is_same_v<GlBitfield, GLbitfield>);
static_assert(std::is_same_v<GlBoolean, GLboolean>);
static_assert(std::is_same_v<GlSize, GLsizeiptr> && std::is_same_v<GlSize, GLintptr>);
static_assert(std::is_same_v<int, GLint> && std::is_same_v<int, GLsizei> && std::is_same_v<unsigned int, GLuint>);
static_assert(std::is_same_v<unsigned short, GLushort> && std::is_same_v<unsigned char, GLubyte>);
static_assert(std::is_same_v<float, GLfloat> && std::is_same_v<double, GLdouble> && std::is_same_v<char, GLchar>);

#define VEK_GL_TOKEN(p_name, p_value) static_assert(RGL_##p_name == GL_##p_name);
#define VEK_GLU_TOKEN(p_name, p_value) static_assert(RGLU_##p_name == GLU_##p_name);
#include "platform/ogl/GlTokenList.h"

} // namespace Vek::Chart::Ogl

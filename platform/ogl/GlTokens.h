#pragma once

// The constants RGL_* and RGLU_*: the values of the GL and GLU constants of the same names.

#define VEK_GL_TOKEN(p_name, p_value) inline constexpr unsigned int RGL_##p_name = p_value;
#define VEK_GLU_TOKEN(p_name, p_value) inline constexpr unsigned int RGLU_##p_name = p_value;
#include "platform/ogl/GlTokenList.h"

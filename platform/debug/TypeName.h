#pragma once

#include <string>

namespace vekdebug {

/// The name of a type in a signature, as the host platform's compiler prints it. Signatures of templates are composed
/// of such names. Classes specialise it beside their definition.
template <class T>
struct TypeName;

/// Defines the name of a type. Use at global scope.
#define VEK_TYPE_NAME(p_type, p_text)                                                                                  \
  template <>                                                                                                          \
  struct vekdebug::TypeName<p_type> {                                                                                  \
    static std::string Text() { return p_text; }                                                                       \
  };

} // namespace vekdebug

VEK_TYPE_NAME(bool, "bool")
VEK_TYPE_NAME(char, "char")
VEK_TYPE_NAME(signed char, "signed char")
VEK_TYPE_NAME(unsigned char, "unsigned char")
VEK_TYPE_NAME(short, "short")
VEK_TYPE_NAME(unsigned short, "unsigned short")
VEK_TYPE_NAME(int, "int")
VEK_TYPE_NAME(unsigned int, "unsigned int")
VEK_TYPE_NAME(long, "__int64")
VEK_TYPE_NAME(unsigned long, "unsigned __int64")
VEK_TYPE_NAME(long long, "__int64")
VEK_TYPE_NAME(unsigned long long, "unsigned __int64")
VEK_TYPE_NAME(float, "float")
VEK_TYPE_NAME(double, "double")

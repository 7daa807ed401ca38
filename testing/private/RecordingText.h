#pragma once

#include "platform/ogl/GlTypes.h"

#include <map>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace Vek::Chart::Testing::Recording {

using namespace Ogl;

/// One GL function: its name, its library, and the types and names of its parameters.
struct Signature {
  struct Parameter {
    std::string type;
    std::string name;
  };
  /// `p_parameters` is the parameter list of the source: "(GlEnum p_mode, int p_x)".
  Signature(std::string_view p_name, std::string_view p_parameters, bool p_isGlu);

  std::string name;
  std::vector<Parameter> parameters;
  bool isGlu;
};

/// "GL_BLEND" (or "GLU_FILL"); an unknown value in hex. Of the names that share 0 and 1, those of primitives and blend
/// factors are chosen by the parameter's name.
std::string EnumText(GlEnum p_value, bool p_isGlu, std::string_view p_parameter = {});
/// The name of a constant of GL.
inline std::string Name(GlEnum p_value) {
  return EnumText(p_value, false);
}
/// The shortest string that reads back as the same value.
std::string NumberText(double p_value);
std::string NumberText(float p_value);

/// Builds the line of one call, argument by argument.
class LineWriter {
public:
  LineWriter(const Signature& p_signature, const std::map<const GlQuadric*, int>& p_quadrics);

  template <class... Arguments>
  std::string operator()(Arguments... p_arguments) {
    (Take(p_arguments), ...);
    return _line + ")";
  }

private:
  const Signature::Parameter& Begin();
  std::string Integer(const Signature::Parameter& p_parameter, long long p_value);
  std::string Bits(GlBitfield p_value) const;

  template <class T>
  void Take(T p_value) {
    const Signature::Parameter& parameter = Begin();
    if constexpr (std::is_pointer_v<T>)
      _line += p_value == nullptr ? "null" : Pointer(p_value);
    else if constexpr (std::is_floating_point_v<T>)
      _line += NumberText(p_value);
    else
      _line += Integer(parameter, static_cast<long long>(p_value));
  }
  std::string Pointer(const void*) const { return "ptr"; }
  std::string Pointer(const int*) const { return "ptr"; }
  std::string Pointer(const char* const*) const { return "ptr"; }
  std::string Pointer(char*) const { return "ptr"; }
  std::string Pointer(float*) const { return "ptr"; }
  std::string Pointer(double*) const { return "ptr"; }
  std::string Pointer(const char* p_text) const;
  std::string Pointer(const double* p_numbers) const;
  std::string Pointer(const float* p_values) const;
  std::string Pointer(const unsigned int* p_names) const;
  std::string Pointer(const unsigned char* p_mask) const;
  std::string Pointer(const GlQuadric* p_quadric) const;

  const Signature& _signature;
  const std::map<const GlQuadric*, int>& _quadrics;
  std::string _line;
  std::size_t _next = 0;
  // The length of an array depends on these arguments.
  GlEnum _enumerant = 0;
  long long _count = 0;
};

} // namespace Vek::Chart::Testing::Recording

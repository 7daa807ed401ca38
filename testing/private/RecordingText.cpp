#include "testing/private/RecordingText.h"

#include "platform/ogl/GlTokens.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <iterator>

namespace Vek::Chart::Testing::Recording {
namespace {

std::string_view Trimmed(std::string_view p_text) {
  const std::size_t first = p_text.find_first_not_of(' ');
  if (first == std::string_view::npos)
    return {};
  return p_text.substr(first, p_text.find_last_not_of(' ') - first + 1);
}

std::string Hex(unsigned long long p_value, int p_digits = 4) {
  char text[24];
  std::snprintf(text, sizeof(text), "0x%0*llX", p_digits, p_value);
  return text;
}

template <class T>
std::string Shortest(T p_value) {
  char text[64];
  return {text, std::to_chars(std::begin(text), std::end(text), p_value).ptr};
}

} // namespace

Signature::Signature(std::string_view p_name, std::string_view p_parameters, bool p_isGlu)
    : name(p_name)
    , isGlu(p_isGlu) {
  std::string_view rest = Trimmed(p_parameters.substr(1, p_parameters.size() - 2));
  while (!rest.empty()) {
    const std::size_t comma = std::min(rest.find(','), rest.size());
    const std::string_view parameter = Trimmed(rest.substr(0, comma));
    const std::size_t nameStart = parameter.rfind("p_");
    parameters.push_back(
        {std::string(Trimmed(parameter.substr(0, nameStart))), std::string(parameter.substr(nameStart))});
    rest.remove_prefix(std::min(comma + 1, rest.size()));
  }
}

std::string NumberText(double p_value) {
  return Shortest(p_value);
}
std::string NumberText(float p_value) {
  return Shortest(p_value);
}

namespace {

struct Token {
  std::string_view name;
  GlEnum value;
};

constexpr Token GlTokens[] = {
#define VEK_GL_TOKEN(p_name, p_value) {"GL_" #p_name, p_value},
#define VEK_GLU_TOKEN(p_name, p_value)
#include "platform/ogl/GlTokenList.h"
};

constexpr Token GluTokens[] = {
#define VEK_GL_TOKEN(p_name, p_value)
#define VEK_GLU_TOKEN(p_name, p_value) {"GLU_" #p_name, p_value},
#include "platform/ogl/GlTokenList.h"
};

bool StartsWith(std::string_view p_text, std::string_view p_start) {
  return p_text.substr(0, p_start.size()) == p_start;
}
bool EndsWith(std::string_view p_text, std::string_view p_end) {
  return p_text.size() >= p_end.size() && p_text.substr(p_text.size() - p_end.size()) == p_end;
}
bool IsBit(std::string_view p_name) {
  return EndsWith(p_name, "_BIT") || EndsWith(p_name, "_BITS");
}

/// The name of value 0 or 1, which several constants share.
std::string_view SmallEnum(GlEnum p_value, std::string_view p_parameter) {
  if (p_parameter == "p_mode")
    return p_value == 0 ? "GL_POINTS" : "GL_LINES";
  if (StartsWith(p_parameter, "p_source") || StartsWith(p_parameter, "p_destination"))
    return p_value == 0 ? "GL_ZERO" : "GL_ONE";
  return p_value == 0 ? "GL_NONE" : "GL_ONE";
}

} // namespace

std::string EnumText(GlEnum p_value, bool p_isGlu, std::string_view p_parameter) {
  if (p_value <= 1 && !p_isGlu)
    return std::string(SmallEnum(p_value, p_parameter));
  const auto matches = [p_value](const Token& p_token) { return p_token.value == p_value && !IsBit(p_token.name); };
  const Token* const first = p_isGlu ? std::begin(GluTokens) : std::begin(GlTokens);
  const Token* const end = p_isGlu ? std::end(GluTokens) : std::end(GlTokens);
  const Token* const found = std::find_if(first, end, matches);
  return found == end ? Hex(p_value) : std::string(found->name);
}

LineWriter::LineWriter(const Signature& p_signature, const std::map<const GlQuadric*, int>& p_quadrics)
    : _signature(p_signature)
    , _quadrics(p_quadrics)
    , _line(p_signature.name + "(") {}

const Signature::Parameter& LineWriter::Begin() {
  if (_next != 0)
    _line += ", ";
  return _signature.parameters[_next++];
}

namespace {

/// True for int parameters that take enumerants or numbers.
bool MayBeEnum(const std::string& p_function, const std::string& p_parameter) {
  if (p_parameter == "p_internalFormat")
    return true;
  return p_parameter == "p_value" && (p_function == "TexParameteri" || p_function == "TexEnvi" ||
                                      p_function == "TexGeni" || p_function == "LightModeli");
}

constexpr long long LeastEnumerant = 0x0100;

} // namespace

std::string LineWriter::Integer(const Signature::Parameter& p_parameter, long long p_value) {
  if (p_parameter.name == "p_count")
    _count = p_value;
  if (p_parameter.type == "GlEnum") {
    _enumerant = static_cast<GlEnum>(p_value);
    return EnumText(_enumerant, _signature.isGlu, p_parameter.name);
  }
  if (p_parameter.type == "GlBitfield")
    return Bits(static_cast<GlBitfield>(p_value));
  if (p_parameter.type == "GlBoolean")
    return p_value == 0 ? "GL_FALSE" : p_value == 1 ? "GL_TRUE" : std::to_string(p_value);
  if (p_parameter.type == "unsigned short")
    return Hex(static_cast<unsigned long long>(p_value));
  if (p_value >= LeastEnumerant && MayBeEnum(_signature.name, p_parameter.name)) {
    const std::string text = EnumText(static_cast<GlEnum>(p_value), false);
    return StartsWith(text, "0x") ? std::to_string(p_value) : text;
  }
  return std::to_string(p_value);
}

std::string LineWriter::Bits(GlBitfield p_value) const {
  const std::string_view kind = _signature.name == "PushClientAttrib" ? "GL_CLIENT_"
                                : _signature.name == "MapBufferRange" ? "GL_MAP_"
                                                                      : "";
  std::string text;
  GlBitfield rest = p_value;
  for (const Token& token : GlTokens) {
    const bool special = StartsWith(token.name, "GL_CLIENT_") || StartsWith(token.name, "GL_MAP_");
    if (!IsBit(token.name) || (kind.empty() ? special : !StartsWith(token.name, kind)))
      continue;
    if (token.value == p_value)
      return std::string(token.name);
    if ((rest & token.value) != token.value)
      continue;
    text += (text.empty() ? "" : "|") + std::string(token.name);
    rest &= ~token.value;
  }
  if (rest != 0 || text.empty())
    text += (text.empty() ? "" : "|") + (rest == 0 ? "0" : Hex(rest));
  return text;
}

namespace {

template <class T>
std::string List(const T* p_values, long long p_count) {
  std::string text = "[";
  for (long long i = 0; i < p_count; ++i) {
    if constexpr (std::is_floating_point_v<T>)
      text += (i == 0 ? "" : " ") + NumberText(p_values[i]);
    else
      text += (i == 0 ? "" : " ") + std::to_string(p_values[i]);
  }
  return text + "]";
}

/// The number of floats of a light, material or point parameter.
int ParameterLength(GlEnum p_name) {
  switch (p_name) {
  case RGL_AMBIENT:
  case RGL_DIFFUSE:
  case RGL_SPECULAR:
  case RGL_EMISSION:
  case RGL_AMBIENT_AND_DIFFUSE:
  case RGL_POSITION:
  case RGL_LIGHT_MODEL_AMBIENT:
    return 4;
  case RGL_SPOT_DIRECTION:
  case RGL_POINT_DISTANCE_ATTENUATION:
    return 3;
  default:
    return 1;
  }
}

} // namespace

std::string LineWriter::Pointer(const char* p_text) const {
  return "\"" + std::string(p_text) + "\"";
}

std::string LineWriter::Pointer(const double* p_numbers) const {
  return List(p_numbers, _signature.name == "ClipPlane" ? 4 : 16);
}

std::string LineWriter::Pointer(const float* p_values) const {
  return List(p_values, _signature.name == "UniformMatrix4fv" ? 16 * _count : ParameterLength(_enumerant));
}

std::string LineWriter::Pointer(const unsigned int* p_names) const {
  return List(p_names, _count);
}

std::string LineWriter::Pointer(const unsigned char* p_mask) const {
  std::uint64_t hash = 0xCBF29CE484222325U; // 64-bit FNV-1a
  for (int i = 0; i < 128; ++i)
    hash = (hash ^ p_mask[i]) * 0x100000001B3U;
  return "mask " + Hex(hash, 16);
}

std::string LineWriter::Pointer(const GlQuadric* p_quadric) const {
  const auto found = _quadrics.find(p_quadric);
  return found == _quadrics.end() ? "ptr" : "quadric" + std::to_string(found->second);
}

} // namespace Vek::Chart::Testing::Recording

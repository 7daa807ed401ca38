#include "library/private/io/NumberText.h"

#include <boost/lexical_cast.hpp>
#include <boost/throw_exception.hpp>

#include <charconv>
#include <locale>
#include <sstream>
#include <string>
#include <system_error>
#include <typeinfo>

namespace Vek::Chart::Library::Private {

namespace {

template <class T>
[[noreturn]] void Refuse() {
  boost::throw_exception(boost::bad_lexical_cast(typeid(std::string), typeid(T)));
}

bool IsDigit(char p_character) {
  return p_character >= '0' && p_character <= '9';
}

std::string_view WithoutSign(std::string_view p_text) {
  const bool isSigned = !p_text.empty() && (p_text.front() == '+' || p_text.front() == '-');
  return p_text.substr(isSigned ? 1 : 0);
}

/// std::from_chars accepts a minus sign only.
std::string_view WithoutPlus(std::string_view p_text) {
  return p_text.substr(p_text.front() == '+' ? 1 : 0);
}

/// A decimal number beyond the range of double: too large ones throw, too small ones yield the nearest double.
/// lexical_cast itself would use the process's locale.
double OutOfRangeDouble(std::string_view p_text) {
  std::istringstream stream{std::string(p_text)};
  stream.imbue(std::locale::classic());
  double value = 0.0;
  if (!(stream >> value))
    Refuse<double>();
  return value;
}

} // namespace

double DoubleFromText(std::string_view p_text) {
  const std::string_view magnitude = WithoutSign(p_text);
  if (magnitude.empty())
    Refuse<double>();
  // Infinities and NaN, for which lexical_cast uses no locale.
  if (!IsDigit(magnitude.front()) && magnitude.front() != '.')
    return boost::lexical_cast<double>(std::string(p_text));

  double value = 0.0;
  const char* const end = p_text.data() + p_text.size();
  const std::from_chars_result result = std::from_chars(WithoutPlus(p_text).data(), end, value);
  if (result.ptr != end || result.ec == std::errc::invalid_argument)
    Refuse<double>();
  return result.ec == std::errc::result_out_of_range ? OutOfRangeDouble(p_text) : value;
}

int IntFromText(std::string_view p_text) {
  const std::string_view magnitude = WithoutSign(p_text);
  if (magnitude.empty() || !IsDigit(magnitude.front()))
    Refuse<int>();
  int value = 0;
  const char* const end = p_text.data() + p_text.size();
  const std::from_chars_result result = std::from_chars(WithoutPlus(p_text).data(), end, value);
  if (result.ptr != end || result.ec != std::errc())
    Refuse<int>();
  return value;
}

std::size_t FloatTextLength(std::string_view p_text) {
  const auto is = [&](std::size_t p_at, char p_a, char p_b) {
    return p_at < p_text.size() && (p_text[p_at] == p_a || p_text[p_at] == p_b);
  };
  bool digits = false;
  bool point = false;
  bool exponent = false;
  std::size_t at = is(0, '+', '-') ? 1 : 0;
  for (; at != p_text.size(); ++at) {
    if (IsDigit(p_text[at])) {
      digits = true;
    } else if (p_text[at] == '.' && !point && !exponent) {
      point = true;
    } else if (is(at, 'e', 'E') && digits && !exponent) {
      exponent = true;
      at += is(at + 1, '+', '-') ? 1 : 0;
    } else {
      break;
    }
  }
  return at;
}

bool StreamFloatFromText(std::string_view p_text, float& p_value) {
  p_value = 0.0f;
  if (p_text.empty())
    return false;
  const char* const end = p_text.data() + p_text.size();
  const std::from_chars_result result = std::from_chars(WithoutPlus(p_text).data(), end, p_value);
  if (result.ec == std::errc() && result.ptr == end)
    return true;
  p_value = 0.0f;
  if (result.ec != std::errc::result_out_of_range)
    return false;
  std::istringstream stream{std::string(p_text)};
  stream.imbue(std::locale::classic());
  return static_cast<bool>(stream >> p_value);
}

} // namespace Vek::Chart::Library::Private

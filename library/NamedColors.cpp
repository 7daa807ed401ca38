#include "library/NamedColors.h"

#include "library/private/color/NamedColorTables.h"
#include "platform/debug/Check.h"
#include "platform/types/ColorChannels.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace Vek::Chart::Library {

namespace {

namespace Signature {
#define VEK_COLORS                                                                                                     \
  "class std::vector<class QColor,class std::allocator<class QColor> > __cdecl "                                       \
  "Vek::Chart::Library::NamedColors::Colors(const class std::basic_string<char,struct std::char_traits<char>,class "   \
  "std::allocator<char> > &"
constexpr const char* Colors = VEK_COLORS ")";
constexpr const char* ColorsOfPart = VEK_COLORS ",int,double,double)";
} // namespace Signature

template <std::size_t Count>
std::vector<QColor> Listed(const std::array<std::uint32_t, Count>& p_table) {
  return {p_table.begin(), p_table.end()};
}

std::vector<QColor> Grey() {
  std::vector<QColor> colors;
  for (int level = 0; level < 256; ++level)
    colors.emplace_back(level, level, level);
  return colors;
}

struct Named {
  const char* name;
  std::vector<QColor> (*colors)();
};
constexpr Named Maps[] = {
    {"viridis", [] { return Listed(Private::Viridis); }},   {"plasma", [] { return Listed(Private::Plasma); }},
    {"inferno", [] { return Listed(Private::Inferno); }},   {"magma", [] { return Listed(Private::Magma); }},
    {"cividis", [] { return Listed(Private::Cividis); }},   {"grey", Grey},
    {"coolwarm", [] { return Listed(Private::CoolWarm); }},
};

std::vector<QColor> Find(const std::string& p_name, const char* p_signature) {
  std::string names;
  for (const Named& map : Maps) {
    if (p_name == map.name)
      return map.colors();
    names += (names.empty() ? "" : ", ") + std::string(map.name);
  }
  vekdebug::fail_ensure("colour map \"" + p_name + "\" is one of " + names, p_signature);
  return {};
}

/// Within [0, 1]; 0 for NaN.
double Clamped(double p_position) {
  return p_position >= 0 ? std::min(p_position, 1.0) : 0.0;
}

QColor Blend(const QColor& p_a, const QColor& p_b, double p_t) {
  const std::array<double, 4> from = Types::ColorChannels(p_a);
  const std::array<double, 4> to = Types::ColorChannels(p_b);
  const auto blend = [&](std::size_t p_i) { return from[p_i] * (1 - p_t) + to[p_i] * p_t; };
  return Types::ColorOfChannels({blend(0), blend(1), blend(2), 1});
}

/// The colour at a position in [0, 1] of a list of at least two.
QColor At(const std::vector<QColor>& p_colors, double p_position) {
  const double steps = p_position * static_cast<double>(p_colors.size() - 1);
  const std::size_t index = std::min(static_cast<std::size_t>(steps), p_colors.size() - 2);
  return Blend(p_colors[index], p_colors[index + 1], steps - static_cast<double>(index));
}

} // namespace

const std::vector<std::string>& NamedColors::Names() {
  static const std::vector<std::string> Names = [] {
    std::vector<std::string> list;
    for (const Named& map : Maps)
      list.emplace_back(map.name);
    return list;
  }();
  return Names;
}

std::vector<QColor> NamedColors::Colors(const std::string& p_name) {
  return Find(p_name, Signature::Colors);
}

std::vector<QColor> NamedColors::Colors(const std::string& p_name, int p_count, double p_from, double p_to) {
  VEK_ENSURE(0 <= p_from && p_from <= 1, Signature::ColorsOfPart);
  VEK_ENSURE(0 <= p_to && p_to <= 1, Signature::ColorsOfPart);
  const std::vector<QColor> map = Find(p_name, Signature::ColorsOfPart);
  const double from = Clamped(p_from), to = Clamped(p_to);
  std::vector<QColor> colors;
  for (int i = 0; i < p_count && !map.empty(); ++i)
    colors.push_back(At(map, from + (to - from) * i / std::max(p_count - 1, 1)));
  return colors;
}

} // namespace Vek::Chart::Library

#include "apps/gallery/TextTable.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <sstream>

namespace Vek::Chart::Gallery {

namespace {

std::string Shortened(std::string_view p_text) {
  constexpr std::size_t Longest = 40;
  return p_text.size() <= Longest ? std::string(p_text) : std::string(p_text.substr(0, Longest)) + "...";
}

std::string Formatted(double p_value) {
  std::ostringstream text;
  text << p_value;
  return text.str();
}

} // namespace

InputError::InputError(const std::string& p_file, std::size_t p_line, const std::string& p_expected,
                       std::string_view p_got)
    : std::runtime_error(p_file + ":" + std::to_string(p_line) + ": expected " + p_expected + ", got \"" +
                         Shortened(p_got) + "\"") {}

bool ParseNumber(std::string_view p_text, double& p_value) {
  constexpr std::string_view Blanks = " \t\r";
  const std::size_t first = p_text.find_first_not_of(Blanks);
  if (first == std::string_view::npos)
    return false;
  p_text = p_text.substr(first, p_text.find_last_not_of(Blanks) - first + 1);
  if (p_text.front() == '+')
    p_text.remove_prefix(1);
  const auto [end, error] = std::from_chars(p_text.data(), p_text.data() + p_text.size(), p_value);
  return error == std::errc() && end == p_text.data() + p_text.size() && std::isfinite(p_value);
}

TextTable::TextTable(std::istream& p_stream, std::string p_name, std::size_t p_linesBefore)
    : _stream(p_stream)
    , _name(std::move(p_name))
    , _line(p_linesBefore) {
  std::string line;
  if (!std::getline(_stream, line))
    throw InputError(_name + ": expected a header line with the names of the columns, got nothing");
  ++_line;
  Split(line);
  _titles = std::move(_cells);
}

bool TextTable::HasColumn(std::string_view p_title) const {
  return std::find(_titles.begin(), _titles.end(), p_title) != _titles.end();
}

std::size_t TextTable::Column(std::string_view p_title) const {
  const auto found = std::find(_titles.begin(), _titles.end(), p_title);
  if (found != _titles.end())
    return static_cast<std::size_t>(found - _titles.begin());
  std::string titles;
  for (const std::string& title : _titles)
    titles += (titles.empty() ? "" : ",") + title;
  throw InputError(_name, _line, "a column named \"" + std::string(p_title) + "\"", titles);
}

bool TextTable::NextRow() {
  std::string line;
  do {
    if (!std::getline(_stream, line))
      return false;
    ++_line;
  } while (line.find_first_not_of(" \t\r") == std::string::npos);
  Split(line);
  if (_cells.size() != _titles.size())
    throw InputError(_name, _line, std::to_string(_titles.size()) + " cells", line);
  return true;
}

double TextTable::Number(std::size_t p_column, double p_min, double p_max) const {
  double value = 0;
  const std::string& text = _cells[p_column];
  if (!ParseNumber(text, value))
    throw InputError(_name, _line, "a number for \"" + _titles[p_column] + "\"", text);
  if (value < p_min || value > p_max)
    throw InputError(_name, _line, "\"" + _titles[p_column] + "\" from " + Formatted(p_min) + " to " + Formatted(p_max),
                     text);
  return value;
}

void TextTable::Split(const std::string& p_line) {
  _cells.assign(1, {});
  bool quoted = false;
  for (std::size_t i = 0; i < p_line.size(); ++i) {
    const char c = p_line[i];
    if (quoted && c == '"' && i + 1 < p_line.size() && p_line[i + 1] == '"')
      _cells.back() += p_line[++i];
    else if (c == '"')
      quoted = !quoted;
    else if (c == ',' && !quoted)
      _cells.emplace_back();
    else if (c != '\r')
      _cells.back() += c;
  }
}

} // namespace Vek::Chart::Gallery

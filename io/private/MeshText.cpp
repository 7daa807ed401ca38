#include "io/private/MeshText.h"

#include "io/FileError.h"
#include "library/ComputeNormals.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <vector>

namespace Vek::Chart::Io::Private {

namespace {

char Lower(char p_character) {
  return p_character >= 'A' && p_character <= 'Z' ? static_cast<char>(p_character - 'A' + 'a') : p_character;
}

} // namespace

bool IsSameWord(std::string_view p_a, std::string_view p_b) {
  return std::equal(p_a.begin(), p_a.end(), p_b.begin(), p_b.end(),
                    [](char p_x, char p_y) { return Lower(p_x) == Lower(p_y); });
}

std::string_view Words::Peek() {
  while (_at < _text.size() && IsBlank(_text[_at]))
    ++_at;
  std::size_t end = _at;
  while (end < _text.size() && !IsBlank(_text[end]))
    ++end;
  return _text.substr(_at, end - _at);
}

std::string_view Words::Next() {
  _last = Peek();
  _at += _last.size();
  return _last;
}

void Words::Take(std::string_view p_word) {
  if (!IsSameWord(Next(), p_word))
    Fail('"' + std::string(p_word) + '"');
}

std::string_view Words::RestOfLine() {
  const std::size_t end = std::min(_text.find_first_of("\n\r", _at), _text.size());
  std::string_view rest = _text.substr(_at, end - _at);
  _at = end;
  while (!rest.empty() && IsBlank(rest.front()))
    rest.remove_prefix(1);
  while (!rest.empty() && IsBlank(rest.back()))
    rest.remove_suffix(1);
  return rest;
}

double Words::Number() {
  std::string_view word = Next();
  if (!word.empty() && word.front() == '+')
    word.remove_prefix(1);
  double number = 0;
  const char* const last = word.data() + word.size();
  const auto [end, error] = std::from_chars(word.data(), last, number);
  if (word.empty() || end != last || error == std::errc::invalid_argument)
    Fail("a number");
  if (error == std::errc::result_out_of_range) {
    const bool tiny = word.find("e-") != std::string_view::npos || word.find("E-") != std::string_view::npos;
    number = tiny                  ? 0
             : word.front() == '-' ? -std::numeric_limits<double>::infinity()
                                   : std::numeric_limits<double>::infinity();
  }
  return number;
}

void Words::Fail(const std::string& p_expected) const {
  const std::string_view before = _text.substr(0, _at - _last.size());
  std::size_t line = 1;
  for (std::size_t i = 0; i < before.size(); ++i)
    line += before[i] == '\n' || (before[i] == '\r' && before.substr(i + 1, 1) != "\n");
  if (_last.empty())
    throw FileError(_name, line, p_expected, "the end of the file");
  throw FileError(_name, line, p_expected, _last);
}

void AddNormals(Mesh& p_mesh) {
  std::vector<Ogl::Vec3<float>> positions(p_mesh.positions.size() / 3);
  for (std::size_t i = 0; i < positions.size(); ++i)
    positions[i] = {p_mesh.positions[3 * i], p_mesh.positions[3 * i + 1], p_mesh.positions[3 * i + 2]};
  std::vector<std::uint32_t> triangles;
  for (const Mesh::Group& group : p_mesh.groups)
    if (group.primitive == Mesh::Triangles)
      triangles.insert(triangles.end(), p_mesh.indices.begin() + std::ptrdiff_t(group.first),
                       p_mesh.indices.begin() + std::ptrdiff_t(group.first + group.count));
  if (triangles.empty())
    return;
  p_mesh.normals.reserve(3 * positions.size());
  for (const Ogl::Vec3<float>& normal :
       Library::ComputeNormals(positions.data(), positions.size(), triangles.data(), triangles.size()))
    p_mesh.normals.insert(p_mesh.normals.end(), {normal.x, normal.y, normal.z});
}

} // namespace Vek::Chart::Io::Private

#include "apps/gallery/VectorGrid.h"

#include "apps/gallery/TextTable.h"

#include <array>
#include <cmath>
#include <sstream>
#include <vector>

namespace Vek::Chart::Gallery {

namespace {

using Scene::VectorField;
using Vector = VectorField::Vector;

struct Header {
  VectorField::Counts counts{};
  Vector origin;
  Vector spacing{1, 1, 1};
};

bool ReadNumbers(std::istream& p_words, Vector& p_numbers) {
  std::string x, y, z;
  p_words >> x >> y >> z;
  return ParseNumber(x, p_numbers.x) && ParseNumber(y, p_numbers.y) && ParseNumber(z, p_numbers.z);
}

bool ReadCounts(std::istream& p_words, VectorField::Counts& p_counts) {
  Vector numbers;
  if (!ReadNumbers(p_words, numbers))
    return false;
  const std::array<double, 3> sizes = {numbers.x, numbers.y, numbers.z};
  for (std::size_t i = 0; i < 3; ++i) {
    if (!(sizes[i] >= 2 && sizes[i] <= 4096) || sizes[i] != std::floor(sizes[i]))
      return false;
    p_counts[i] = static_cast<std::size_t>(sizes[i]);
  }
  return p_counts[0] * p_counts[1] * p_counts[2] <= std::size_t{1} << 26U;
}

bool ParseHeader(const std::string& p_line, Header& p_header) {
  std::istringstream words(p_line);
  std::string word;
  words >> word;
  if (word == "#")
    words >> word;
  if (word != "dims" || !ReadCounts(words, p_header.counts))
    return false;
  while (words >> word) {
    if (word == "origin" ? !ReadNumbers(words, p_header.origin)
                         : word != "spacing" || !ReadNumbers(words, p_header.spacing))
      return false;
  }
  return p_header.spacing.x > 0 && p_header.spacing.y > 0 && p_header.spacing.z > 0;
}

} // namespace

VectorField ReadVectorGrid(std::istream& p_stream, const std::string& p_name) {
  std::string line;
  std::getline(p_stream, line);
  Header header;
  if (!ParseHeader(line, header))
    throw InputError(p_name, 1, "\"# dims nx ny nz origin x y z spacing dx dy dz\"", line);
  const std::size_t count = header.counts[0] * header.counts[1] * header.counts[2];
  TextTable table(p_stream, p_name, 1);
  const std::size_t u = table.Column("u");
  const std::size_t v = table.Column("v");
  const std::size_t w = table.Column("w");
  constexpr double Most = 1e12;
  std::vector<Vector> vectors; // grows with the rows that are there, not with what the first line claims
  while (table.NextRow()) {
    if (vectors.size() == count)
      throw InputError(p_name, table.Line(), "the end after " + std::to_string(count) + " rows", table.Text(0));
    vectors.emplace_back(table.Number(u, -Most, Most), table.Number(v, -Most, Most), table.Number(w, -Most, Most));
  }
  if (vectors.size() != count)
    throw InputError(p_name, table.Line(), std::to_string(count) + " rows",
                     "the end after " + std::to_string(vectors.size()));
  return VectorField::Regular(header.counts, header.origin, header.spacing, vectors);
}

VectorField ReadVectorGridFile(const std::string& p_path, Loading& p_loading) {
  return ReadVectorGrid(*p_loading.Open(p_path), p_path);
}

} // namespace Vek::Chart::Gallery

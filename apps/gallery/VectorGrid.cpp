#include "apps/gallery/VectorGrid.h"

#include "apps/gallery/TextTable.h"

#include <algorithm>
#include <cmath>
#include <sstream>

namespace Vek::Chart::Gallery {

namespace {

using Vector = VectorGrid::Vector;

struct Header {
  VectorGrid::Counts counts{};
  Vector origin;
  Vector spacing{1, 1, 1};
};

bool ReadNumbers(std::istream& p_words, Vector& p_numbers) {
  std::string x, y, z;
  p_words >> x >> y >> z;
  return ParseNumber(x, p_numbers.x) && ParseNumber(y, p_numbers.y) && ParseNumber(z, p_numbers.z);
}

bool ReadCounts(std::istream& p_words, VectorGrid::Counts& p_counts) {
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

/// The two nodes around a place on an axis and the share of the second one; false beyond the border.
struct Between {
  std::size_t lower = 0;
  std::size_t upper = 0;
  double share = 0;
};
bool Locate(double p_place, std::size_t p_count, bool p_wraps, Between& p_between) {
  const double count = static_cast<double>(p_count);
  if (p_wraps)
    p_place -= std::floor(p_place / count) * count;
  // Rounding must not push the border's own places out.
  constexpr double Slack = 1e-9;
  const double last = p_wraps ? count : count - 1;
  if (!(p_place >= -Slack && p_place <= last + Slack))
    return false;
  const double place = std::clamp(p_place, 0.0, last);
  p_between.lower = std::min(static_cast<std::size_t>(place), p_count - 1);
  p_between.upper = p_wraps ? (p_between.lower + 1) % p_count : std::min(p_between.lower + 1, p_count - 1);
  p_between.share = place - static_cast<double>(p_between.lower);
  return true;
}

} // namespace

VectorGrid::VectorGrid(const Counts& p_counts, const Vector& p_origin, const Vector& p_spacing,
                       std::vector<Vector> p_vectors, bool p_wraps)
    : _counts(p_counts)
    , _origin(p_origin)
    , _spacing(p_spacing)
    , _vectors(std::move(p_vectors))
    , _wraps(p_wraps) {
  _vectors.resize(_counts[0] * _counts[1] * _counts[2]);
}

VectorGrid VectorGrid::Read(std::istream& p_stream, const std::string& p_name) {
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
  return VectorGrid(header.counts, header.origin, header.spacing, std::move(vectors));
}

VectorGrid VectorGrid::ReadFile(const std::string& p_path, Loading& p_loading) {
  return Read(*p_loading.Open(p_path), p_path);
}

bool VectorGrid::At(const Vector& p_place, Vector& p_vector) const {
  const Vector from = p_place - _origin;
  Between x, y, z;
  if (!Locate(from.x / _spacing.x, _counts[0], _wraps, x) || !Locate(from.y / _spacing.y, _counts[1], false, y) ||
      !Locate(from.z / _spacing.z, _counts[2], false, z))
    return false;
  const auto alongX = [&](std::size_t p_y, std::size_t p_z) {
    return Node(x.lower, p_y, p_z) * (1 - x.share) + Node(x.upper, p_y, p_z) * x.share;
  };
  const auto alongY = [&](std::size_t p_z) {
    return alongX(y.lower, p_z) * (1 - y.share) + alongX(y.upper, p_z) * y.share;
  };
  p_vector = alongY(z.lower) * (1 - z.share) + alongY(z.upper) * z.share;
  return true;
}

Vector VectorGrid::Place(std::size_t p_x, std::size_t p_y, std::size_t p_z) const {
  return _origin + Vector(static_cast<double>(p_x) * _spacing.x, static_cast<double>(p_y) * _spacing.y,
                          static_cast<double>(p_z) * _spacing.z);
}

const Vector& VectorGrid::Node(std::size_t p_x, std::size_t p_y, std::size_t p_z) const {
  return _vectors[p_x + _counts[0] * (p_y + _counts[1] * p_z)];
}

double VectorGrid::LengthQuantile(double p_fraction) const {
  std::vector<double> lengths;
  lengths.reserve(_vectors.size());
  for (const Vector& vector : _vectors)
    lengths.push_back(Length(vector));
  const auto nth = lengths.begin() + static_cast<std::ptrdiff_t>(p_fraction * static_cast<double>(lengths.size() - 1));
  std::nth_element(lengths.begin(), nth, lengths.end());
  return *nth;
}

} // namespace Vek::Chart::Gallery

#include "scene/private/TubeSelection.h"

#include "scene/private/Matrix4.h"

#include "platform/utility/Threads.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Vek::Chart::Scene::Private {

namespace {

using Vector = TubeLevels::Vector;

constexpr double Error = 0.1;            // pixels: where many lines cross, a fifth shows
constexpr double ValueError = 1.0 / 128; // of the span of the colours

/// Dot(normal, p) + offset
struct Plane {
  Vector normal;
  double offset = 0;
  double operator()(const Vector& p_point) const { return Dot(normal, p_point) + offset; }
};

/// A row of a matrix times a number, plus the last row.
Plane Combined(const Matrix4& p_m, std::size_t p_row, double p_factor) {
  const auto at = [&](std::size_t p_column) { return p_factor * p_m[4 * p_column + p_row] + p_m[4 * p_column + 3]; };
  return {{at(0), at(1), at(2)}, at(3)};
}

} // namespace

/// The input as the loop over all blocks needs it.
struct TubeSelection::Rules {
  Rules(const Input& p_input, double p_coarseness)
      : input(p_input)
      , coarseness(p_coarseness)
      , depth(Combined(p_input.sizing.clip, 0, 0)) {
    for (std::size_t i = 0; i < sides.size(); ++i) {
      sides[i] = Combined(p_input.view.clip, i / 2, i % 2 == 0 ? 1 : -1);
      const double length = Length(sides[i].normal);
      if (length > 0)
        sides[i] = {sides[i].normal / length, sides[i].offset / length};
    }
    Matrix4 inverse{};
    if (Invert(p_input.sizing.clip, inverse)) { // the eye has the clip coordinates (0, 0, z, 0)
      eye = {inverse[8], inverse[9], inverse[10]};
      eyeW = inverse[11];
    }
  }

  bool MaySee(const Vector& p_center, double p_reach) const {
    return std::all_of(sides.begin(), sides.end(), [&](const Plane& p_side) { return p_side(p_center) >= -p_reach; });
  }
  /// Pixels of a unit at the point of a sphere that is nearest to the eye; infinite where it reaches the eye.
  double PixelsAt(const Vector& p_center, double p_reach) const {
    const double w = depth(p_center), nearest = w - p_reach * Length(depth.normal);
    return nearest > 1e-3 * w && nearest > 0 ? input.sizing.pixels / nearest : HUGE_VAL;
  }
  /// Whether the line may run along the sight: half tubes that face the eye twist there.
  bool IsEndOn(const TubeLevels::Block& p_block) const {
    const Vector sight = input.sizing.isCentral ? p_block.center - eye / eyeW : eye;
    const double distance = Length(sight);
    constexpr double Least = 0.35; // radians
    if (!(distance > 0) || (input.sizing.isCentral && distance < 4 * p_block.reach))
      return true;
    const double angle = std::acos(std::clamp(std::abs(Dot(sight, p_block.axis)) / distance, 0.0, 1.0));
    return angle < Least + p_block.spread + (input.sizing.isCentral ? p_block.reach / distance : 0);
  }
  /// The first section of a kind that is fine enough; the last one if none is.
  static std::uint8_t SectionOf(TubeSection::Kind p_kind, double p_pixels) {
    std::size_t found = TubeSections.size();
    for (std::size_t i = TubeSections.size(); i-- > 0;)
      if (TubeSections[i].kind == p_kind && (found == TubeSections.size() || p_pixels <= TubeSections[i].mostPixels))
        found = i;
    return static_cast<std::uint8_t>(found);
  }
  std::uint8_t SectionFor(const TubeLevels::Block& p_block, double p_pixelsPerUnit) const {
    const double pixels = 2 * p_block.radius * p_pixelsPerUnit;
    if (input.isOnScreen || input.isFlat)
      return SectionOf(input.isOnScreen ? TubeSection::Screen : TubeSection::Ribbon, pixels);
    constexpr double MostFacing = TubeSections[2].mostPixels;
    const bool isThin = pixels <= TubeSections[0].mostPixels * coarseness;
    if (input.isOpen || pixels > MostFacing * coarseness || (!isThin && IsEndOn(p_block)))
      return SectionOf(TubeSection::Closed, pixels / coarseness);
    return SectionOf(TubeSection::Facing, pixels / coarseness);
  }
  std::uint8_t LevelFor(std::size_t p_block, double p_pixelsPerUnit) const {
    const TubeLevels::Block& block = input.lines->Blocks()[p_block];
    const double most = Error * coarseness / p_pixelsPerUnit;
    for (std::size_t level = TubeLevels::Coarser; level > 0; --level) {
      if (static_cast<double>(block.errors[level - 1]) > most)
        continue;
      const double length = static_cast<double>(block.length) * TubeLevels::Steps[level] / block.segments;
      if (!input.values || length * p_pixelsPerUnit <= coarseness)
        return static_cast<std::uint8_t>(level);
      const TubeLevels::ValueErrors& errors = (*input.values)[p_block];
      const float error = input.isLogarithmic ? errors.logarithmic[level - 1] : errors.linear[level - 1];
      if (static_cast<double>(error) <= ValueError * coarseness * input.span)
        return static_cast<std::uint8_t>(level);
    }
    return 0;
  }

  Choice OfBlock(std::size_t p_block) const {
    const TubeLevels::Block& block = input.lines->Blocks()[p_block];
    if (!MaySee(block.center, block.reach))
      return {};
    const double pixels = PixelsAt(block.center, block.reach);
    return {SectionFor(block, pixels), LevelFor(p_block, pixels)};
  }
  Choice OfCap(std::size_t p_cap) const {
    const auto& [position, radius, rotation] = input.lines->Stations()[input.lines->Caps()[p_cap].station];
    const Vector center(static_cast<double>(position[0]), static_cast<double>(position[1]),
                        static_cast<double>(position[2]));
    const auto reach = static_cast<double>(radius);
    const double pixels = 2 * reach * PixelsAt(center, reach);
    if (!MaySee(center, reach) || pixels <= TubeSections[0].mostPixels * coarseness)
      return {};
    return {SectionOf(TubeSection::Closed, pixels / coarseness), 0};
  }

  const Input& input;
  double coarseness;
  Plane depth; ///< clip coordinate w
  std::array<Plane, 6> sides;
  Vector eye; ///< homogeneous; the direction of the sight in parallel projections
  double eyeW = 0;
};

bool TubeSelection::Update(Input p_input) {
  const bool isSame = p_input.lines == _input.lines && p_input.values == _input.values && p_input.span == _input.span &&
                      p_input.isLogarithmic == _input.isLogarithmic && p_input.isFlat == _input.isFlat &&
                      p_input.isOnScreen == _input.isOnScreen && p_input.isOpen == _input.isOpen &&
                      p_input.mostVertices == _input.mostVertices && p_input.hasSamples == _input.hasSamples &&
                      p_input.sizing == _input.sizing && p_input.view == _input.view;
  if (isSame)
    return false;
  const bool isOther = p_input.lines != _input.lines;
  _input = std::move(p_input);
  const std::vector<Choice> before = std::exchange(_choices, {});
  _step = 1;
  _isShort = false;
  const auto room = static_cast<double>(_input.mostVertices);
  Choose(1);
  _isShort = _input.mostVertices != 0 && Cost() > room;
  if (_isShort) {
    double coarseness = 8; // errors of four fifths of a pixel
    Choose(coarseness);
    constexpr std::uint32_t Few = 64; // lines: each of them is missed
    constexpr double Coarsest = 1024;
    while (_input.lines->LineCount() < Few && Cost() > room && coarseness < Coarsest)
      Choose(coarseness *= 2);
    const double cost = Cost();
    while (_input.lines->LineCount() >= Few && cost / static_cast<double>(_step) > room &&
           _step < _input.lines->LineCount())
      _step *= 2;
    for (std::size_t i = 0; i < _choices.size(); ++i)
      if (LineOf(i) % _step != 0)
        _choices[i] = {};
  }
  if (!isOther && _choices == before)
    return false;
  Count();
  return true;
}

std::size_t TubeSelection::LineOf(std::size_t p_item) const {
  const std::size_t blocks = _input.lines->Blocks().size();
  return p_item < blocks ? _input.lines->Blocks()[p_item].line : _input.lines->Caps()[p_item - blocks].line;
}

void TubeSelection::Choose(double p_coarseness) {
  const Rules rules(_input, p_coarseness);
  const std::size_t blocks = _input.lines->Blocks().size();
  const bool hasCaps = !_input.isFlat && !_input.isOnScreen;
  _choices.assign(blocks + _input.lines->Caps().size(), {});
  constexpr std::size_t AtOnce = 2048;
  const std::size_t count = hasCaps ? _choices.size() : blocks;
  Utility::RunBlocks(Utility::Threads::All(), (count + AtOnce - 1) / AtOnce, [&](std::size_t p_part) {
    for (std::size_t i = p_part * AtOnce; i < std::min((p_part + 1) * AtOnce, count); ++i)
      _choices[i] = i < blocks ? rules.OfBlock(i) : rules.OfCap(i - blocks);
  });
}

/// Whether a block goes on by a segment in its neighbour before or behind, which has a coarser section: rings of
/// different sections do not meet everywhere.
bool TubeSelection::Overlaps(std::size_t p_block, bool p_isBefore) const {
  const std::vector<TubeLevels::Block>& blocks = _input.lines->Blocks();
  if (p_isBefore ? p_block == 0 : p_block + 1 == blocks.size())
    return false;
  const std::size_t other = p_isBefore ? p_block - 1 : p_block + 1;
  const TubeLevels::Block& before = blocks[std::min(p_block, other)];
  const bool areJoined = before.first + before.segments == blocks[std::max(p_block, other)].first;
  return areJoined && _choices[other].section < _choices[p_block].section;
}

std::size_t TubeSelection::RingsOf(std::size_t p_block) const {
  const std::size_t step = TubeLevels::Steps[_choices[p_block].level];
  return (_input.lines->Blocks()[p_block].segments + step - 1) / step + 1;
}

/// The time that drawing takes, in vertices of glyphs.
double TubeSelection::Cost() const {
  constexpr double OfVertex = 0.6, WithSamples = 2; // triangles of tubes share theirs, but most of them are longer
  double vertices = 0;
  for (std::size_t i = 0; i < _input.lines->Blocks().size(); ++i)
    if (_choices[i].section != LeftOut)
      vertices += static_cast<double>(RingsOf(i) * TubeSections[_choices[i].section].Vertices());
  return (_input.hasSamples && !_isShort ? WithSamples : OfVertex) * vertices;
}

/// Finds where each block and cap is written.
void TubeSelection::Count() {
  const std::size_t blocks = _input.lines->Blocks().size();
  _firstVertex.assign(_choices.size(), 0);
  _firstIndex.assign(_choices.size(), 0);
  _vertices = _indices = 0;
  _ranges = {};
  for (std::size_t i = 0; i < _choices.size(); ++i) {
    if (_choices[i].section == LeftOut)
      continue;
    const std::size_t around = TubeSections[_choices[i].section].Vertices(),
                      strips = TubeSections[_choices[i].section].strips;
    const bool isCap = i >= blocks;
    const std::size_t rings = isCap ? 0 : RingsOf(i) + (Overlaps(i, true) ? 1U : 0U) + (Overlaps(i, false) ? 1U : 0U);
    const std::size_t indices = isCap ? 3 * around : 6 * strips * (rings - 1);
    _firstVertex[i] = static_cast<std::uint32_t>(_vertices);
    _firstIndex[i] = static_cast<std::uint32_t>(_ranges[_choices[i].section].count); // in its section
    _vertices += isCap ? around + 1 : rings * around;
    _ranges[_choices[i].section].count += indices;
  }
  for (Range& range : _ranges) {
    range.first = _indices;
    _indices += range.count;
  }
  for (std::size_t i = 0; i < _choices.size(); ++i)
    if (_choices[i].section != LeftOut)
      _firstIndex[i] += static_cast<std::uint32_t>(_ranges[_choices[i].section].first);
}

namespace {

TubeVertex VertexOf(std::size_t p_station, std::size_t p_code) {
  const auto byte = [](std::size_t p_number) { return static_cast<std::uint8_t>(p_number & 255U); };
  return {byte(p_station), byte(p_station >> 8U), byte(p_station >> 16U), byte(p_code)};
}

} // namespace

void TubeSelection::WriteBlock(std::size_t p_block, TubeVertex* p_vertices, std::uint32_t* p_indices) const {
  const TubeLevels::Block& block = _input.lines->Blocks()[p_block];
  const TubeSection& section = TubeSections[_choices[p_block].section];
  const std::uint32_t around = section.Vertices(), step = TubeLevels::Steps[_choices[p_block].level];
  TubeVertex* vertex = p_vertices + _firstVertex[p_block];
  std::uint32_t* index = p_indices + _firstIndex[p_block];
  const std::uint32_t before = Overlaps(p_block, true) ? 1 : 0, after = Overlaps(p_block, false) ? 1 : 0;
  const std::uint32_t own = static_cast<std::uint32_t>(RingsOf(p_block)), rings = own + before + after;
  for (std::uint32_t ring = 0; ring < rings; ++ring) {
    const bool isBehind = ring == before + own;
    const std::uint32_t station = ring < before ? block.first - 1
                                  : isBehind    ? block.first + block.segments + 1
                                                : block.first + std::min((ring - before) * step, block.segments);
    for (std::uint32_t i = 0; i < around; ++i)
      *vertex++ = VertexOf(station, i);
    const std::uint32_t first = _firstVertex[p_block] + ring * around;
    for (std::uint32_t i = 0; ring + 1 < rings && i < section.strips; ++i) {
      const std::uint32_t a = first + i, b = first + (i + 1) % around;
      // The last vertex of each triangle, which has the number for picking, is at the further end.
      for (const std::uint32_t corner : {a, b, b + around, a, b + around, a + around})
        *index++ = corner;
    }
  }
}

void TubeSelection::WriteCap(std::size_t p_cap, TubeVertex* p_vertices, std::uint32_t* p_indices) const {
  const std::size_t item = _input.lines->Blocks().size() + p_cap;
  const TubeLevels::Cap& cap = _input.lines->Caps()[p_cap];
  const std::uint32_t around = TubeSections[_choices[item].section].Vertices(), first = _firstVertex[item];
  const unsigned int code = unsigned{CodeOfCap} | (cap.isStart ? unsigned{CodeOfStart} : 0U);
  TubeVertex* vertex = p_vertices + first;
  std::uint32_t* index = p_indices + _firstIndex[item];
  *vertex++ = VertexOf(cap.station, code | unsigned{CodeOfCenter});
  for (std::uint32_t i = 0; i < around; ++i) {
    *vertex++ = VertexOf(cap.station, code | i);
    const std::uint32_t a = first + 1 + i, b = first + 1 + (i + 1) % around;
    for (const std::uint32_t corner : {first, cap.isStart ? b : a, cap.isStart ? a : b})
      *index++ = corner;
  }
}

void TubeSelection::Write(TubeVertex* p_vertices, std::uint32_t* p_indices) const {
  constexpr std::size_t AtOnce = 1024;
  const std::size_t blocks = _input.lines->Blocks().size();
  Utility::RunBlocks(Utility::Threads::All(), (_choices.size() + AtOnce - 1) / AtOnce, [&](std::size_t p_part) {
    for (std::size_t i = p_part * AtOnce; i < std::min((p_part + 1) * AtOnce, _choices.size()); ++i)
      if (_choices[i].section != LeftOut && i < blocks)
        WriteBlock(i, p_vertices, p_indices);
      else if (_choices[i].section != LeftOut)
        WriteCap(i - blocks, p_vertices, p_indices);
  });
}

} // namespace Vek::Chart::Scene::Private

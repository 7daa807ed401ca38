#include "library/private/color/ColorAtlasImpl.h"

#include "platform/debug/Check.h"

#include <algorithm>
#include <cmath>

namespace Vek::Chart::Library::Private {

namespace {

using Pixel = ColorCoords::Pixel;
using IndexSpan = Span<unsigned int>;

#define VEK_ATLAS "Vek::Chart::Library::Private::ColorAtlasImpl::"
#define VEK_PIXEL "class Vek::Chart::Ogl::Vec2<unsigned int>"
#define VEK_SPAN "class Vek::Chart::Types::Span<unsigned int>"
#define VEK_CALL "operator ()(class " VEK_ATLAS "AtlasTraversalState &,class " VEK_ATLAS "AtlasTraversalState *)"

const char* const CopyColorsSignature =
    "void __cdecl " VEK_ATLAS "InstanceCoordinateMapper::CopyColors(const " VEK_SPAN " &,const " VEK_PIXEL " &)";
const char* const OverwriteSignature =
    "void __cdecl " VEK_ATLAS "InstanceCoordinateMapper::OverwritePixelSpan(const " VEK_PIXEL
    " &,const class QColor &,unsigned int)";
const char* const ProcessInstancesSignature =
    "void __cdecl " VEK_ATLAS "InstanceCoordinateMapper::ProcessInstances(unsigned int,const " VEK_SPAN " &)";

/// The texel of an index: row by row.
Pixel PixelOf(std::uint64_t p_index, const ImageBuilder& p_image) {
  return {static_cast<unsigned int>(p_index % p_image.Width()), static_cast<unsigned int>(p_index / p_image.Width())};
}

unsigned int LengthOf(const IndexSpan& p_span) {
  return p_span.last - p_span.first + 1;
}

} // namespace

/// Visits all colours of the roots' sub-trees depth first, parents before children. `Enter` gets the id of a colour and
/// answers its slot, or NoSlot to leave its sub-tree out; `Leave` runs after the whole sub-tree of that slot. Levels
/// are kept on a stack of our own: a tree may be a million levels deep.
template <class Visitor>
void ColorAtlasImpl::Walk(const std::vector<unsigned int>& p_roots, Visitor& p_visitor) const {
  struct Level {
    const std::vector<unsigned int>* ids;
    std::size_t next;
    std::uint32_t owner; ///< the slot whose children these are
  };
  std::vector<Level> levels{{&p_roots, 0, ColorAtlas::NoSlot}};
  while (!levels.empty()) {
    Level& level = levels.back();
    if (level.next == level.ids->size()) {
      const std::uint32_t owner = level.owner;
      levels.pop_back();
      if (owner != ColorAtlas::NoSlot)
        p_visitor.Leave(owner);
      continue;
    }
    const std::uint32_t slot = p_visitor.Enter((*level.ids)[level.next++]);
    if (slot != ColorAtlas::NoSlot)
      levels.push_back({&_atlas._nodes[slot].children, 0, slot});
  }
}

/// Gives each colour the next index; the span of a colour ends with the last index of its sub-tree.
class ColorAtlasImpl::SpanBuilder {
public:
  explicit SpanBuilder(ColorAtlas& p_atlas)
      : _atlas(p_atlas) {}

  std::uint32_t Enter(unsigned int p_id) {
    const std::uint32_t slot = _atlas.FindSlot(p_id);
    if (slot == ColorAtlas::NoSlot)
      return slot;
    IndexSpan& span = _atlas._spans[slot];
    // A colour that was numbered already is in the tree twice, or above itself.
    if (!VEK_ENSURE_TEXT(span.first == ColorAtlas::NoParent, "query.second",
                         "void __cdecl " VEK_ATLAS "SpanBuilder::" VEK_CALL))
      return ColorAtlas::NoSlot;
    span.first = _next++;
    return slot;
  }

  void Leave(std::uint32_t p_slot) { _atlas._spans[p_slot].last = _next - 1; }

private:
  ColorAtlas& _atlas;
  unsigned int _next = 0;
};

/// Writes each colour at the texel of its index.
class ColorAtlasImpl::CoordinateMapper {
public:
  CoordinateMapper(ColorAtlas& p_atlas, ImageBuilder& p_image)
      : _atlas(p_atlas)
      , _image(p_image) {}

  std::uint32_t Enter(unsigned int p_id) {
    const std::uint32_t slot = _atlas.FindSlot(p_id);
    if (slot == ColorAtlas::NoSlot || !CheckSpan(slot, "void __cdecl " VEK_ATLAS "CoordinateMapper::" VEK_CALL))
      return ColorAtlas::NoSlot;
    return Place(slot, _atlas._spans[slot]) ? slot : ColorAtlas::NoSlot;
  }

  void Leave(std::uint32_t) {}

protected:
  bool CheckSpan(std::uint32_t p_slot, const char* p_signature) const {
    return VEK_ENSURE_TEXT(_atlas._spans[p_slot].first != ColorAtlas::NoParent, "spanPos != _spans.end()", p_signature);
  }

  /// False when the colour had been placed before.
  bool Place(std::uint32_t p_slot, const IndexSpan& p_span) {
    ColorAtlas::ColorNode& node = _atlas._nodes[p_slot];
    WriteColor(node, p_span);
    if (!VEK_ENSURE_TEXT(!node.coords.Defined(),
                         "query.second && \"Coordinate p_spans must not have already been added\"",
                         "void __cdecl " VEK_ATLAS "CoordinateMapper::MapSpan(unsigned int,struct "
                         "Vek::Chart::Library::ColorAtlas::ColorNode &,const " VEK_SPAN " &)"))
      return false;
    node.coords = ColorCoords(p_span, _image.Width());
    return true;
  }

  ColorAtlas& _atlas;
  ImageBuilder& _image;

private:
  void WriteColor(const ColorAtlas::ColorNode& p_node, const IndexSpan& p_span) {
    const char* const signature = "void __cdecl " VEK_ATLAS "CoordinateMapper::WriteColor(unsigned int,const struct "
                                  "Vek::Chart::Library::ColorAtlas::ColorNode &,const " VEK_SPAN " &)";
    const Pixel pixelCoordFirst = PixelOf(p_span.first, _image);
    if (VEK_ENSURE_TEXT(pixelCoordFirst.y < static_cast<unsigned int>(_image.MaxHeight()),
                        "pixelCoordFirst.y < _image.MaxHeight()", signature))
      _image.WriteUniquePixel(pixelCoordFirst, p_node.color.rgba());
  }
};

/// Writes colours as CoordinateMapper does, and after the sub-tree of an instanced colour its copies. Copies take
/// indices of their own, so everything behind them moves on by a growing shift.
class ColorAtlasImpl::InstanceCoordinateMapper : private CoordinateMapper {
public:
  InstanceCoordinateMapper(ColorAtlas& p_atlas, ImageBuilder& p_image)
      : CoordinateMapper(p_atlas, p_image) {}

  std::uint32_t Enter(unsigned int p_id) {
    const std::uint32_t slot = _atlas.FindSlot(p_id);
    const char* const signature = "void __cdecl " VEK_ATLAS "InstanceCoordinateMapper::" VEK_CALL;
    if (slot == ColorAtlas::NoSlot || !CheckSpan(slot, signature))
      return ColorAtlas::NoSlot;
    const ColorAtlas::ColorNode& current = _atlas._nodes[slot];
    IndexSpan span(_atlas._spans[slot].first + _shift, _atlas._spans[slot].last + _shift);
    if (current.instanceCount > 0) {
      VEK_ENSURE_TEXT(current.parent == _atlas.RootAtlasId(), "current.parent == _atlas.RootAtlasId()", signature);
      MoveToNextRow(span);
    }
    if (!Place(slot, span))
      return ColorAtlas::NoSlot;
    if (current.instanceCount > 0)
      _open.push_back(span);
    return slot;
  }

  void Leave(std::uint32_t p_slot) {
    if (_atlas._nodes[p_slot].instanceCount == 0)
      return;
    const IndexSpan span = _open.back();
    _open.pop_back();
    ProcessInstances(p_slot, span);
  }

private:
  /// A span of at most half a row that would be broken over two rows starts on the next one.
  void MoveToNextRow(IndexSpan& p_span) {
    const Pixel first = PixelOf(p_span.first, _image);
    const Pixel last = PixelOf(p_span.last, _image);
    if (static_cast<double>(LengthOf(p_span)) > std::floor(_image.Width() * 0.5) || first.y == last.y)
      return;
    const unsigned int rest = _image.Width() - first.x;
    _shift += rest;
    p_span.first += rest;
    p_span.last += rest;
  }

  void ProcessInstances(std::uint32_t p_slot, const IndexSpan& p_span);
  void CopyColors(const IndexSpan& p_span, std::uint64_t p_start);
  void ReplaceColors(const ColorAtlas::Instance& p_instance, const IndexSpan& p_unshifted, std::uint64_t p_start);
  void OverwritePixelSpan(std::uint64_t p_start, QRgb p_color, std::uint64_t p_count);

  unsigned int _shift = 0;
  std::vector<IndexSpan> _open; ///< the placed spans of the instanced colours whose sub-trees are being visited
};

void ColorAtlasImpl::InstanceCoordinateMapper::ProcessInstances(std::uint32_t p_slot, const IndexSpan& p_span) {
  const std::int64_t width = _image.Width();
  const std::int64_t length = LengthOf(p_span);
  const Pixel first = PixelOf(p_span.first, _image);
  const Pixel last = PixelOf(p_span.last, _image);
  const std::int64_t rows = static_cast<std::int64_t>(last.y) - first.y + 1;
  // Half a row is not short enough here, although MoveToNextRow moves spans of exactly half a row: both are meant.
  const bool oneRow = first.y == last.y && length < width / 2;

  const unsigned int id = _atlas._ids[p_slot];
  const auto dataIt = _atlas._instanceData.find(id);
  if (!VEK_ENSURE_TEXT(dataIt != _atlas._instanceData.end(), "dataIt != _instanceData.end()",
                       ProcessInstancesSignature))
    return;
  std::int64_t dx = 0;
  std::int64_t dy = 0;
  for (const unsigned int instanceId : dataIt->second) {
    const auto mapIt = _atlas._instances.find(instanceId);
    if (!VEK_ENSURE_TEXT(mapIt != _atlas._instances.end(), "mapIt != _instances.end()", ProcessInstancesSignature))
      continue;
    if (!oneRow) { // as many rows lower, in the same columns
      _shift += static_cast<unsigned int>(width * rows);
      dy += rows;
    } else if (first.x + dx + 2 * length >= width) { // at the left of the next row
      _shift += static_cast<unsigned int>(width - dx - first.x);
      dx = -static_cast<std::int64_t>(first.x);
      dy += rows;
    } else { // behind the one before
      _shift += static_cast<unsigned int>(length);
      dx += length;
    }
    const std::uint64_t start = static_cast<std::uint64_t>((first.y + dy) * width + first.x + dx);
    ColorAtlas::Instance& instance = mapIt->second;
    CopyColors(p_span, start);
    ReplaceColors(instance, _atlas._spans[p_slot], start);
    VEK_ENSURE_TEXT(!instance.offset.Defined(), "!instance.Defined()", ProcessInstancesSignature);
    instance.offset = Ogl::Vec2<unsigned int>{static_cast<unsigned int>(dx), static_cast<unsigned int>(dy)};
  }
}

void ColorAtlasImpl::InstanceCoordinateMapper::CopyColors(const IndexSpan& p_span, std::uint64_t p_start) {
  for (std::uint64_t i = 0, length = LengthOf(p_span); i < length; ++i) {
    const Pixel destPixel = PixelOf(p_start + i, _image);
    if (VEK_ENSURE_TEXT(destPixel.y < static_cast<unsigned int>(_image.MaxHeight()), "destPixel.y < _image.MaxHeight()",
                        CopyColorsSignature))
      _image.WriteUniquePixel(destPixel, _image.ColorOf(PixelOf(p_span.first + i, _image)));
  }
}

/// Paints the runs of the replaced colours over a copy. Sub-trees are nested or apart, so a sweep over the runs in the
/// order of their starts paints each texel once, with the deepest replacement that covers it.
void ColorAtlasImpl::InstanceCoordinateMapper::ReplaceColors(const ColorAtlas::Instance& p_instance,
                                                             const IndexSpan& p_unshifted, std::uint64_t p_start) {
  struct Run {
    std::uint64_t first;
    std::uint64_t end;
    QRgb color;
  };
  std::vector<Run> runs;
  const unsigned int base = p_unshifted.first;
  for (const auto& [id, color] : p_instance.colors) {
    const std::uint32_t slot = _atlas.SlotOf(id);
    const bool placed = slot != ColorAtlas::NoSlot && _atlas._nodes[slot].coords.Defined();
    if (!VEK_ENSURE_TEXT(placed, "node.coords.Defined()", ProcessInstancesSignature))
      continue;
    const IndexSpan subcolor = _atlas._spans[slot];
    if (VEK_ENSURE(subcolor.first >= base, ProcessInstancesSignature) &&
        VEK_ENSURE_TEXT(subcolor.last <= p_unshifted.last, "subcolor.last <= last", ProcessInstancesSignature))
      runs.push_back({subcolor.first - base, std::uint64_t{subcolor.last} - base + 1, color.rgba()});
  }
  std::sort(runs.begin(), runs.end(), [](const Run& p_a, const Run& p_b) { return p_a.first < p_b.first; });

  std::vector<Run> open; // the runs around the place of the sweep, the deepest last
  std::uint64_t place = 0;
  const auto sweepTo = [&](std::uint64_t p_end) {
    for (; !open.empty() && place < p_end;) {
      const std::uint64_t end = std::min(p_end, open.back().end);
      OverwritePixelSpan(p_start + place, open.back().color, end - place);
      place = end;
      while (!open.empty() && open.back().end <= place)
        open.pop_back();
    }
    place = std::max(place, p_end);
  };
  for (const Run& run : runs) {
    sweepTo(run.first);
    open.push_back(run);
  }
  if (!open.empty())
    sweepTo(open.front().end);
}

void ColorAtlasImpl::InstanceCoordinateMapper::OverwritePixelSpan(std::uint64_t p_start, QRgb p_color,
                                                                  std::uint64_t p_count) {
  for (std::uint64_t i = 0; i < p_count; ++i) {
    const Pixel next = PixelOf(p_start + i, _image);
    if (VEK_ENSURE_TEXT(next.y < static_cast<unsigned int>(_image.MaxHeight()), "next.y < _image.MaxHeight()",
                        OverwriteSignature))
      _image.OverwritePixel(next, p_color);
  }
}

void ColorAtlasImpl::NumberColors() {
  SpanBuilder builder(_atlas);
  Walk(_atlas._plainRoots, builder);
  Walk(_atlas._instancedRoots, builder);
}

void ColorAtlasImpl::MapColors(ImageBuilder& p_image) {
  CoordinateMapper plain(_atlas, p_image);
  Walk(_atlas._plainRoots, plain);
  InstanceCoordinateMapper instanced(_atlas, p_image);
  Walk(_atlas._instancedRoots, instanced);
}

} // namespace Vek::Chart::Library::Private

#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace Vek::Chart::Library::Private {

/// The vertices of a mesh whose corners name position, texture coordinates and normal apart. Each combination becomes
/// one vertex: the first one of a position has the number of the position, further ones are copies.
class CornerVertices {
public:
  static constexpr std::uint32_t None = std::numeric_limits<std::uint32_t>::max();
  /// Marks the number of a copy until that of all positions is known.
  static constexpr std::uint32_t CopyBit = std::uint32_t(1) << 31;

  struct Attributes {
    std::uint32_t texCoord = None;
    std::uint32_t normal = None; ///< None only for a position that no corner has used
  };
  struct Copy {
    std::uint32_t position;
    Attributes attributes;
  };

  void AddPositions(std::size_t p_count) { _positions += p_count; }
  std::size_t Positions() const { return _positions; }
  /// The attributes of the first vertex of a position.
  Attributes operator[](std::size_t p_position) const {
    return p_position < _attributes.size() ? _attributes[p_position] : Attributes();
  }
  /// Sets those of a position without copies.
  void SetFirst(std::uint32_t p_position, const Attributes& p_attributes) { First(p_position) = p_attributes; }
  const std::vector<Copy>& Copies() const { return _copies; }

  /// The vertex of a corner: the number of its position, or that of a copy with CopyBit. The normal is not None.
  std::uint32_t Vertex(std::uint32_t p_position, std::uint32_t p_texCoord, std::uint32_t p_normal) {
    Attributes& first = First(p_position);
    if (first.normal == p_normal && first.texCoord == p_texCoord)
      return p_position;
    if (first.normal == None) {
      first = {p_texCoord, p_normal};
      return p_position;
    }
    return CopyBit | FindCopy({p_position, {p_texCoord, p_normal}});
  }

  /// The final number of a vertex.
  std::uint32_t Number(std::uint32_t p_vertex) const {
    return (p_vertex & CopyBit) == 0 ? p_vertex : static_cast<std::uint32_t>(_positions) + (p_vertex & ~CopyBit);
  }

private:
  Attributes& First(std::uint32_t p_position) {
    if (p_position >= _attributes.size())
      _attributes.resize(_positions);
    return _attributes[p_position];
  }

  std::size_t Slot(const Copy& p_copy) const {
    std::uint64_t hash = p_copy.position * 0x9E3779B97F4A7C15u;
    hash = (hash ^ (hash >> 29) ^ p_copy.attributes.texCoord) * 0xBF58476D1CE4E5B9u;
    hash = (hash ^ (hash >> 32) ^ p_copy.attributes.normal) * 0x94D049BB133111EBu;
    std::size_t slot = std::size_t(hash >> 32) & (_slots.size() - 1);
    for (; _slots[slot] != None; slot = (slot + 1) & (_slots.size() - 1)) {
      const Copy& other = _copies[_slots[slot]];
      if (other.position == p_copy.position && other.attributes.texCoord == p_copy.attributes.texCoord &&
          other.attributes.normal == p_copy.attributes.normal)
        break;
    }
    return slot;
  }

  std::uint32_t FindCopy(const Copy& p_copy) {
    if (2 * (_copies.size() + 1) > _slots.size())
      Grow();
    std::uint32_t& slot = _slots[Slot(p_copy)];
    if (slot == None) {
      slot = static_cast<std::uint32_t>(_copies.size());
      _copies.push_back(p_copy);
    }
    return slot;
  }

  void Grow() {
    const std::size_t size = _slots.empty() ? 64 : 2 * _slots.size();
    _slots.clear();
    _slots.resize(size, None);
    for (std::size_t i = 0; i < _copies.size(); ++i)
      _slots[Slot(_copies[i])] = static_cast<std::uint32_t>(i);
  }

  std::size_t _positions = 0;
  std::vector<Attributes> _attributes; ///< of the first vertex of each position that has any
  std::vector<Copy> _copies;
  std::vector<std::uint32_t> _slots; ///< a hash table of copies, a power of two, at most half full
};

} // namespace Vek::Chart::Library::Private

#pragma once

#include "library/StreamWriter.h"
#include "library/private/memory/HugePages.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <type_traits>
#include <vector>

namespace Vek::Chart::Library::Private {

/// Fills an empty vector up to a given size, with one allocation. It behaves as a ContainerDataWriter over a vector of
/// that many zeros, but touches memory only once: elements written in sequence, as nearly all are, are constructed by
/// the write itself.
template <class E>
class GrowingDataWriter {
public:
  /// An empty vector, which must outlive the writer, and its final size.
  struct Destination {
    std::vector<E>& elements;
    std::size_t count;
  };

  explicit GrowingDataWriter(const Destination& p_dest)
      : _dest(p_dest.elements)
      , _count(p_dest.count) {
    ReserveLarge(_dest, _count);
  }

  /// As ContainerDataWriter.
  template <class S>
  void WriteData(const S* p_data, std::uint64_t p_scalarCount) {
    const std::uint64_t count = p_scalarCount / N;
    if (_full || p_data == nullptr || count == 0 || count > _count - _dest.size())
      return Full().WriteData(p_data, p_scalarCount);
    if constexpr (std::is_same_v<S, Scalar>)
      _dest.insert(_dest.end(), reinterpret_cast<const E*>(p_data), reinterpret_cast<const E*>(p_data) + count);
    else
      for (std::uint64_t done = 0; done < count;) {
        const std::uint64_t part = std::min<std::uint64_t>(Zeros.size(), count - done);
        Algorithms::ConvertTuples(p_data + done * N, part, Append(part));
        done += part;
      }
  }
  /// As ContainerDataWriter.
  void AdvanceWriteIndex(std::uint64_t p_count) { Full().AdvanceWriteIndex(p_count); }
  /// The position of the next write, in elements.
  std::uint64_t CurrentIndex() const { return _full ? _full->CurrentIndex() : _dest.size(); }

  /// Fills the rest with zeros.
  void Finish() {
    while (_dest.size() < _count)
      Append(std::min(Zeros.size(), _count - _dest.size()));
  }

private:
  using Scalar = typename Algorithms::TupleTraits<E>::Scalar;
  using FullWriter = ContainerDataWriter<E, std::vector<E>, ContainerOperations::StaticContainer>;
  static constexpr std::size_t N = Algorithms::TupleTraits<E>::Count;
  static constexpr std::array<E, 16384 / sizeof(E)> Zeros{};

  /// Appends at most one block of zeros. A vector's own resize constructs small elements one by one, bytes ten times as
  /// slowly.
  E* Append(std::size_t p_count) { return &*_dest.insert(_dest.end(), Zeros.data(), Zeros.data() + p_count); }

  /// The writer over the vector in its full size, from the first write on that leaves a gap or does not fit.
  FullWriter& Full() {
    if (!_full) {
      const std::uint64_t position = _dest.size();
      Finish();
      _full.emplace(_dest);
      _full->AdvanceWriteIndex(position);
    }
    return *_full;
  }

  std::vector<E>& _dest;
  std::size_t _count;
  std::optional<FullWriter> _full;
};

} // namespace Vek::Chart::Library::Private

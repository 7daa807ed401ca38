#pragma once

#include <cstdint>
#include <utility>

namespace Vek::Chart::Types {

/// A value with two state bits: changed since its last use, and ever set.
///
/// Assigning a different value, or any value to a property that is not set, stores it and sets both bits. Assigning an
/// equal value to a set property changes nothing.
template <class T>
class Property {
public:
  /// The state of a property.
  enum StateBits : std::uint8_t {
    ChangedBit = 1, ///< changed since its last use
    SetBit = 2,     ///< was assigned
  };

  /// A value-initialised value, marked changed but not set.
  Property()
      : Property(T(), ChangedBit) {}
  /// A value that is set and changed.
  Property(T p_value) // NOLINT: implicit, so that a property reads like its value
      : Property(std::move(p_value), ChangedBit | SetBit) {}
  /// A value with both state bits given.
  Property(T p_value, unsigned p_state)
      : _value(std::move(p_value))
      , _state(static_cast<std::uint8_t>(p_state & (ChangedBit | SetBit))) {}

  /// Stores the value and sets both bits, unless it is set and equal already.
  Property& operator=(T p_value) {
    if (Defined() && _value == p_value)
      return *this;
    _value = std::move(p_value);
    _state = ChangedBit | SetBit;
    return *this;
  }

  ///@{
  /// The value, set or not.
  const T& Value() const { return _value; }
  operator const T&() const { return _value; } // NOLINT: implicit, as above
  ///@}

  /// Whether it changed since `ClearChanged`.
  bool Changed() const { return (_state & ChangedBit) != 0; }
  /// Whether it was ever set.
  bool Defined() const { return (_state & SetBit) != 0; }
  /// Both StateBits.
  unsigned State() const { return _state; }
  /// Marks the value as used: clears the changed bit.
  void ClearChanged() { _state = static_cast<std::uint8_t>(_state & ~ChangedBit); }

private:
  T _value;
  std::uint8_t _state;
};

} // namespace Vek::Chart::Types

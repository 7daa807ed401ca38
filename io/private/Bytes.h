#pragma once

#include <boost/endian/conversion.hpp>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <type_traits>

namespace Vek::Chart::Io::Private {

/// The unsigned integer of 1, 2, 4 or 8 bytes.
template <std::size_t Bytes>
using Unsigned = std::conditional_t<
    Bytes == 1, std::uint8_t,
    std::conditional_t<Bytes == 2, std::uint16_t, std::conditional_t<Bytes == 4, std::uint32_t, std::uint64_t>>>;

/// A number with its bytes in the reverse order.
template <class T>
T Reversed(T p_value) {
  Unsigned<sizeof(T)> bits;
  std::memcpy(&bits, &p_value, sizeof bits);
  bits = boost::endian::endian_reverse(bits);
  std::memcpy(&p_value, &bits, sizeof bits);
  return p_value;
}

/// Whether numbers of that byte order are not in that of the machine.
inline bool IsForeign(bool p_bigEndian) {
  return p_bigEndian != (boost::endian::order::native == boost::endian::order::big);
}

/// The number of type T at the start of some bytes.
template <class T>
T Load(const char* p_bytes, bool p_bigEndian) {
  T value;
  std::memcpy(&value, p_bytes, sizeof value);
  return IsForeign(p_bigEndian) ? Reversed(value) : value;
}

/// The number of type T with the least byte first, at the start of bytes that are long enough.
template <class T>
T LoadLittle(std::string_view p_bytes) {
  return Load<T>(p_bytes.data(), false);
}

} // namespace Vek::Chart::Io::Private

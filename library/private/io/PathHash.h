#pragma once

#include <cstdint>
#include <string>

namespace Vek::Chart::Library::Private {

/// The hash of a path or another short string: 0 to 2147483646, and 0 for the empty string. Bytes are signed; products
/// and sums wrap at 32 bits; remainders have the sign of the dividend.
inline std::int32_t PathHash(const std::string& p_text) {
  constexpr std::int32_t Modulus = 2147483647;
  constexpr std::uint32_t B = 27183;
  std::int32_t a = 31415;
  std::int32_t hash = 0;
  for (const char byte : p_text) {
    // Unsigned, so that wrapping is defined.
    const std::uint32_t c = static_cast<std::uint32_t>(static_cast<signed char>(byte));
    hash = static_cast<std::int32_t>(c + static_cast<std::uint32_t>(hash) * static_cast<std::uint32_t>(a)) % Modulus;
    a = static_cast<std::int32_t>(B * static_cast<std::uint32_t>(a)) % (Modulus - 1);
  }
  return hash < 0 ? hash + Modulus : hash;
}

} // namespace Vek::Chart::Library::Private

#pragma once

#include "platform/debug/Check.h"
#include "platform/debug/TypeName.h"

namespace Vek::Chart::Types::Math {

/// p_min if p_min > p_value, else p_max if p_value > p_max, else p_value (so NaN passes through). Reports
/// "p_min <= p_max" if p_min > p_max.
template <class T>
T Clamp(T p_value, T p_min, T p_max) {
  if (p_min > p_max) {
    const std::string type = vekdebug::TypeName<T>::Text();
    vekdebug::fail_ensure("p_min <= p_max", type + " __cdecl Vek::Chart::Types::Math::Clamp<" + type + ">(const " +
                                                type + ",const " + type + ",const " + type + ")");
  }
  return p_min > p_value ? p_min : p_value > p_max ? p_max : p_value;
}

} // namespace Vek::Chart::Types::Math

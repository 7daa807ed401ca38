#pragma once

#include "platform/ogl/GlTypes.h"

#include <array>
#include <cstddef>

namespace Vek::Chart::Testing::Recording {

using namespace Ogl;

/// A state variable of GL: its initial value and the attribute groups that save it.
struct StateVariable {
  GlEnum name = 0;
  GlBitfield groups = 0;
  bool client = false;  ///< saved by PushClientAttrib; display lists never hold it
  bool perUnit = false; ///< exists once per texture unit
  std::size_t count = 0;
  std::array<double, 4> initial{};
};

/// Null for an unknown name.
const StateVariable* FindStateVariable(GlEnum p_name);

} // namespace Vek::Chart::Testing::Recording

#pragma once

#include "platform/ogl/GlTypes.h"

#include <array>
#include <cstddef>

namespace Vek::Chart::Ogl::Recording {

/// A state variable of GL: the attribute groups that save it, and what it is at first.
struct StateVariable {
  GlEnum name = 0;
  GlBitfield groups = 0;
  bool client = false;  ///< saved by PushClientAttrib; display lists never hold it
  bool perUnit = false; ///< exists once per texture unit
  std::size_t count = 0;
  std::array<double, 4> initial{};
};

/// Null for a name that the recorder does not know.
const StateVariable* FindStateVariable(GlEnum p_name);

} // namespace Vek::Chart::Ogl::Recording

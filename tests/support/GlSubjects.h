#pragma once

#include "tests/support/Test.h"

namespace Vek::Test {

using Handle = Utility::Unscoped<Rgl>;
/// Uses an object that it owns.
using Use = std::function<void(Scope&)>;

/// What one class does with GL.
struct Subject {
  const char* name;
  std::function<Use(const Handle&)> make; ///< the object, and what uses it
  bool degrades = false;                  ///< after a failure it does with less, for good
};

/// Uses of every class that uses GL.
const std::vector<Subject>& GlSubjects();

} // namespace Vek::Test

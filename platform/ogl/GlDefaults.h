#pragma once

#include "platform/ogl/GlTypes.h"

#include <algorithm>

namespace Vek::Chart::Ogl {

/// Every GL function, doing nothing and returning 0; object names that should come back are 0. Stands in for functions
/// that a table or a context lacks.
struct GlDefaults {
#define VEK_GL(p_result, p_name, p_parameters, p_arguments)                                                            \
  p_result p_name p_parameters {                                                                                       \
    Nothing p_arguments;                                                                                               \
    return static_cast<p_result>(0);                                                                                   \
  }
#include "platform/ogl/GlFunctionList.h"

private:
  template <class... Arguments>
  void Nothing(const Arguments&...) {}
  void Nothing(int p_count, unsigned int* p_names) {
    std::fill_n(p_names, std::max(0, p_count), 0U);
  }
};

} // namespace Vek::Chart::Ogl

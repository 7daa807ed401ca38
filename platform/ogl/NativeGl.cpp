#include "platform/ogl/GlFunctions.h"

#include <epoxy/gl.h> // before GLU's header, which must not bring in another GL header

#include <GL/glu.h>

#include <type_traits>

namespace Vek::Chart::Ogl {
namespace {

template <class T>
T ToGlu(T p_value) {
  return p_value;
}
GLUquadric* ToGlu(GlQuadric* p_quadric) {
  return reinterpret_cast<GLUquadric*>(p_quadric);
}

/// A GLU function that takes and returns our opaque type for GLU's.
template <class Function>
struct GluCall {
  Function* function;

  template <class... Arguments>
  auto operator()(Arguments... p_arguments) const {
    if constexpr (std::is_same_v<decltype(function(ToGlu(p_arguments)...)), GLUquadric*>)
      return reinterpret_cast<GlQuadric*>(function(ToGlu(p_arguments)...));
    else
      return function(ToGlu(p_arguments)...);
  }
};
template <class Function>
GluCall(Function*) -> GluCall<Function>;

// Each entry calls through, since libepoxy's own pointers change when they are first used.
GlFunctions MakeNativeGl() {
  GlFunctions table;
#define VEK_GL(p_result, p_name, p_parameters, p_arguments)                                                            \
  table.p_name = [] p_parameters -> p_result { return gl##p_name p_arguments; };
#define VEK_GLU(p_result, p_name, p_parameters, p_arguments)                                                           \
  table.p_name = [] p_parameters -> p_result { return GluCall{&glu##p_name} p_arguments; };
#include "platform/ogl/GlFunctionList.h"
  return table;
}

} // namespace

const GlFunctions& NativeGl() {
  static const GlFunctions Table = MakeNativeGl();
  return Table;
}

} // namespace Vek::Chart::Ogl

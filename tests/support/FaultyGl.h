#pragma once

#include "platform/ogl/Rgl.h"

#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <string>
#include <utility>

namespace Vek::Test {

/// A GL over another one (a recorder's or a real one) whose calls can be made to fail as a driver fails them: object
/// names are 0, uploads and reads do nothing and queue GL_OUT_OF_MEMORY, frame buffers are incomplete, mappings null,
/// shaders and programs do not compile or link.
class FaultyGl {
public:
  /// Which calls fail, counted from 1 over those that can.
  struct Plan {
    std::size_t first = 0;
    bool onwards = false; ///< every later one, too
  };

  explicit FaultyGl(const Chart::Utility::Unscoped<Chart::Rgl>& p_real);
  ~FaultyGl();
  FaultyGl(const FaultyGl&) = delete;
  FaultyGl& operator=(const FaultyGl&) = delete;

  const Chart::Utility::Unscoped<Chart::Rgl>& Handle() const { return _handle; }

  void Arm(const Plan& p_plan);
  /// Ends all failures. Returns the name of the first call that failed since Arm; empty when none did.
  std::string Disarm();

  /// Whether an injected error still waits for GetError; it is forgotten.
  bool TakePendingError() { return std::exchange(_pending, false); }

private:
  friend struct FaultyTable;
  template <class Result, class Call, class... Arguments>
  Result Run(const char* p_name, Call p_call, Arguments... p_arguments);
  bool Fails(const std::string& p_name);

  Chart::Utility::Unscoped<Chart::Rgl> _real;
  boost::shared_ptr<const Chart::Ogl::GlFunctions> _table;
  Chart::Utility::Unscoped<Chart::Rgl> _handle;
  FaultyGl* _previous = nullptr;
  Plan _plan;
  std::size_t _calls = 0;
  std::string _failed;
  bool _pending = false;
};

/// Lets an allocation of this project's own code fail; those of Qt, of drivers and of the calls that a FaultyGl passes
/// on succeed. The program's operator new calls Allocate.
class FailingAllocations {
public:
  /// The allocation of that number fails, counted from 1.
  static void Arm(std::size_t p_number);
  /// Returns whether it has failed since.
  static bool Disarm();
  /// Null where the allocation is to fail. `p_caller`: an address in the code that asks for memory.
  static void* Allocate(std::size_t p_bytes, const void* p_caller);

  /// Allocations succeed, and are not counted, while one lives.
  class Pause {
  public:
    Pause();
    ~Pause();
    Pause(const Pause&) = delete;
    Pause& operator=(const Pause&) = delete;
  };
};

} // namespace Vek::Test

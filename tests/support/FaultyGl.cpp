#include "tests/support/FaultyGl.h"

#include <boost/make_shared.hpp>

#include <link.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <regex>
#include <tuple>
#include <type_traits>
#include <vector>

namespace Vek::Test {

using namespace Chart;
using namespace Chart::Ogl;

namespace {

/// The object whose table's calls are under way. Tests run on one thread, and the last that was made is meant.
FaultyGl* current = nullptr;

constexpr Ogl::GlEnum FramebufferIncomplete = 0x8CD6;

/// What a driver can refuse: calls that need memory, and answers. Attaching, restoring and deleting need none.
bool CanFail(const std::string& p_name) {
  static const std::regex Names(
      "(Gen|Create)[A-Z].*|NewQuadric|GenerateMipmap|TexImage.*|BufferData|(Un)?[mM]apBuffer.*|ReadPixels|"
      "(Compile|Link)[A-Z].*|BlitFramebuffer|CheckFramebufferStatus|Draw(Arrays|Elements).*|"
      "Renderbuffer.*");
  return std::regex_match(p_name, Names);
}

template <class Names>
void ForgetNames(int p_count, Names p_names) {
  if constexpr (std::is_same_v<Names, unsigned int*>)
    std::fill_n(p_names, std::max(0, p_count), 0U);
}
template <class... Arguments>
void ForgetNames(const Arguments&...) {}

} // namespace

bool FaultyGl::Fails(const std::string& p_name) {
  if (_plan.first == 0 || !CanFail(p_name))
    return false;
  ++_calls;
  const bool fails = _calls == _plan.first || (_plan.onwards && _calls > _plan.first);
  if (fails && _failed.empty())
    _failed = p_name;
  return fails;
}

template <class Result, class Call, class... Arguments>
Result FaultyGl::Run(const char* p_name, Call p_call, Arguments... p_arguments) {
  const FailingAllocations::Pause pause;
  const std::string name = p_name;
  if (name == "GetError" && TakePendingError())
    if constexpr (std::is_same_v<Result, Ogl::GlEnum>)
      return RGL_OUT_OF_MEMORY;
  if (!Fails(name))
    return p_call(p_arguments...);
  // A compiler's and a linker's failure is no error of GL.
  _pending = _pending || !(name == "CompileShader" || name == "LinkProgram" || name == "CheckFramebufferStatus");
  ForgetNames(p_arguments...);
  if (name == "UnmapBuffer") // it is unmapped, but what was written is lost
    p_call(p_arguments...);
  if constexpr (std::is_same_v<Result, Ogl::GlEnum>)
    return name == "CheckFramebufferStatus" ? FramebufferIncomplete : 0;
  else if constexpr (!std::is_void_v<Result>)
    return Result{};
}

/// The entries of the table: plain functions, which find their object through `current`.
struct FaultyTable {
  template <class Result, class Call, class... Arguments>
  static Result Run(const char* p_name, Call p_call, Arguments... p_arguments) {
    return current->Run<Result>(p_name, p_call, p_arguments...);
  }
  static const Ogl::GlFunctions& Real() { return *current->_real.Object()->Functions(); }

  static boost::shared_ptr<const Ogl::GlFunctions> Make() {
    const auto table = boost::make_shared<Ogl::GlFunctions>();
#define VEK_GL(p_result, p_name, p_parameters, p_arguments)                                                            \
  table->p_name = [] p_parameters -> p_result {                                                                        \
    const auto call = [](auto... p_all) { return Real().p_name(p_all...); };                                           \
    const auto run = [&](auto... p_all) { return Run<p_result>(#p_name, call, p_all...); };                            \
    return run p_arguments;                                                                                            \
  };
#include "platform/ogl/GlFunctionList.h"
    return table;
  }
};

FaultyGl::FaultyGl(const Utility::Unscoped<Rgl>& p_real)
    : _real(p_real)
    , _table(FaultyTable::Make())
    , _handle(boost::make_shared<Rgl>(
          _table, [this] { _real.Object()->ScopeBegin(); }, [this] { _real.Object()->ScopeEnd(); }))
    , _previous(std::exchange(current, this)) {}

FaultyGl::~FaultyGl() {
  current = _previous;
}

void FaultyGl::Arm(const Plan& p_plan) {
  _plan = p_plan;
  _calls = 0;
  _failed.clear();
  _pending = false;
}

std::string FaultyGl::Disarm() {
  _plan = {};
  return _failed;
}

namespace {

std::size_t allocationToFail = 0;
std::size_t allocations = 0;
int pauses = 0;

/// The code of the project's libraries and of the standard library, which allocates for them.
const std::vector<std::pair<std::uintptr_t, std::uintptr_t>>& OwnCode() {
  static const auto Ranges = [] {
    std::vector<std::pair<std::uintptr_t, std::uintptr_t>> ranges;
    dl_iterate_phdr(
        [](dl_phdr_info* p_module, std::size_t, void* p_ranges) {
          if (std::strstr(p_module->dlpi_name, "/libvek-") == nullptr &&
              std::strstr(p_module->dlpi_name, "/libstdc++") == nullptr)
            return 0;
          for (int i = 0; i < p_module->dlpi_phnum; ++i)
            if (const auto& part = p_module->dlpi_phdr[i]; part.p_type == PT_LOAD && (part.p_flags & PF_X) != 0)
              static_cast<decltype(ranges)*>(p_ranges)->emplace_back(p_module->dlpi_addr + part.p_vaddr,
                                                                     p_module->dlpi_addr + part.p_vaddr + part.p_memsz);
          return 0;
        },
        &ranges);
    return ranges;
  }();
  return Ranges;
}

} // namespace

void* FailingAllocations::Allocate(std::size_t p_bytes, const void* p_caller) {
  if (allocationToFail != 0 && pauses == 0) {
    const auto caller = reinterpret_cast<std::uintptr_t>(p_caller);
    for (const auto& [first, last] : OwnCode())
      if (caller >= first && caller < last && ++allocations == allocationToFail)
        return nullptr;
  }
  return std::malloc(std::max<std::size_t>(p_bytes, 1));
}

void FailingAllocations::Arm(std::size_t p_number) {
  OwnCode();
  allocations = 0;
  allocationToFail = p_number;
}

bool FailingAllocations::Disarm() {
  const std::size_t number = std::exchange(allocationToFail, 0);
  return number != 0 && allocations >= number;
}

FailingAllocations::Pause::Pause() {
  ++pauses;
}
FailingAllocations::Pause::~Pause() {
  --pauses;
}

} // namespace Vek::Test

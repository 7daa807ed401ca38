#include "platform/ogl/private/ContextStore.h"

#include <utility>

namespace Vek::Chart::Ogl {
namespace {

/// The innermost open scope of this thread, by number. A scope in which another context's scope is open is not
/// innermost: its own context may not be current.
thread_local std::uint64_t innermostScope = 0;

std::uint64_t NewNumber() {
  static std::atomic<std::uint64_t> last{0};
  return ++last;
}

} // namespace

ContextStore::Owner ContextStore::NewOwner() {
  return NewNumber();
}

void* ContextStore::Find(Owner p_owner) const {
  const std::lock_guard<std::mutex> lock(_mutex);
  const auto found = _values.find(p_owner);
  return found == _values.end() ? nullptr : found->second.get();
}

void* ContextStore::Keep(Owner p_owner, boost::shared_ptr<void> p_value) {
  const std::lock_guard<std::mutex> lock(_mutex);
  return _values.emplace(p_owner, std::move(p_value)).first->second.get();
}

// Releasing takes no memory, since destructors call it: the nodes change maps.
void ContextStore::Release(Owner p_owner) {
  {
    const std::lock_guard<std::mutex> lock(_mutex);
    if (auto node = _values.extract(p_owner))
      _orphans.insert(std::move(node));
  }
  if (IsInnermost())
    FreeOrphans();
}

void ContextStore::ReleaseAll() {
  OrphanAll();
  if (IsInnermost())
    FreeOrphans();
}

void ContextStore::FreeAll() {
  OrphanAll();
  FreeOrphans();
}

void ContextStore::OrphanAll() {
  const std::lock_guard<std::mutex> lock(_mutex);
  _orphans.merge(_values);
}

void ContextStore::FreeOrphans() {
  decltype(_orphans) freed;
  do { // the end of a value may release others
    while (!freed.empty())
      freed.erase(freed.begin()); // in the order in which the owners were first used
    const std::lock_guard<std::mutex> lock(_mutex);
    freed.swap(_orphans);
  } while (!freed.empty());
}

std::size_t ContextStore::Size() const {
  const std::lock_guard<std::mutex> lock(_mutex);
  return _values.size() + _orphans.size();
}

void ContextStore::EnterScope() {
  _outerScope = innermostScope;
  innermostScope = _scope = NewNumber();
  FreeOrphans();
}

void ContextStore::LeaveScope() {
  if (IsInnermost()) {
    FreeOrphans();
    innermostScope = _outerScope;
  }
  _scope = 0;
}

bool ContextStore::IsInnermost() const {
  return innermostScope != 0 && innermostScope == _scope;
}

} // namespace Vek::Chart::Ogl

#pragma once

#include <boost/shared_ptr.hpp>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>

namespace Vek::Chart::Ogl {

/// The values of all `PerContext` objects in one context; owned by its `Rgl`.
///
/// A released value becomes an orphan, which is freed as soon as the context is known to be current. Values are freed
/// on the context's thread; all other operations may be called on any thread.
class ContextStore {
public:
  /// A `PerContext` object, by a number that is never reused.
  using Owner = std::uint64_t;
  static Owner NewOwner();

  /// The value of an owner; null without one.
  void* Find(Owner p_owner) const;
  /// Keeps the value of an owner, or the one that it has already, and returns it.
  void* Keep(Owner p_owner, boost::shared_ptr<void> p_value);
  /// Releases the value of an owner, and frees it if the context's scope is the innermost one of this thread.
  void Release(Owner p_owner);
  /// Releases and frees likewise the values of all owners.
  void ReleaseAll();
  /// Frees all values. The context must be current.
  void FreeAll();
  /// The number of values that are not freed yet.
  std::size_t Size() const;

  ///@{
  /// The context's outermost scope opens, with the context current, and is about to close. Both free the orphans.
  void EnterScope();
  void LeaveScope();
  ///@}

private:
  void OrphanAll();
  void FreeOrphans();
  bool IsInnermost() const;

  mutable std::mutex _mutex;
  std::map<Owner, boost::shared_ptr<void>> _values;
  std::multimap<Owner, boost::shared_ptr<void>> _orphans;
  std::atomic<std::uint64_t> _scope{0}; // the number of the open scope; 0 for none
  std::uint64_t _outerScope = 0;        // the innermost scope of the thread when this one was opened
};

} // namespace Vek::Chart::Ogl

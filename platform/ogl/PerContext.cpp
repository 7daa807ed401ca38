#include "platform/ogl/PerContext.h"

#include "platform/ogl/private/ContextStore.h"

#include <algorithm>

namespace Vek::Chart::Ogl {

ContextValues::~ContextValues() {
  Reset();
}

ContextValues::ContextValues(const ContextValues&) {}

ContextValues::ContextValues(ContextValues&& p_other) noexcept
    : _owner(std::exchange(p_other._owner, 0))
    , _stores(std::exchange(p_other._stores, {})) {}

ContextValues& ContextValues::operator=(const ContextValues& p_other) {
  if (this != &p_other)
    Reset();
  return *this;
}

ContextValues& ContextValues::operator=(ContextValues&& p_other) noexcept {
  if (this != &p_other) {
    Reset();
    _owner = std::exchange(p_other._owner, 0);
    _stores = std::exchange(p_other._stores, {});
  }
  return *this;
}

void* ContextValues::Find(const Rgl& p_gl) const {
  return _owner == 0 ? nullptr : p_gl._store->Find(_owner);
}

void* ContextValues::Keep(const Rgl& p_gl, boost::shared_ptr<void> p_value) {
  if (_owner == 0)
    _owner = ContextStore::NewOwner();
  // Contexts come and go, so those that ended, and this one, are removed before it is added.
  const auto isUnneeded = [&](const boost::weak_ptr<ContextStore>& p_known) {
    return p_known.expired() || p_known.lock() == p_gl._store;
  };
  _stores.erase(std::remove_if(_stores.begin(), _stores.end(), isUnneeded), _stores.end());
  _stores.push_back(p_gl._store);
  return p_gl._store->Keep(_owner, std::move(p_value));
}

void ContextValues::Release(const Rgl& p_gl) {
  p_gl._store->Release(_owner);
}

void ContextValues::Reset() {
  for (const boost::weak_ptr<ContextStore>& known : std::exchange(_stores, {}))
    if (const boost::shared_ptr<ContextStore> store = known.lock())
      store->Release(_owner);
}

void ContextValues::ReleaseAll(const Rgl& p_gl) {
  p_gl._store->ReleaseAll();
}

void Release(const Utility::Scoped<Rgl>& p_gl) {
  ContextValues::ReleaseAll(*p_gl);
}

} // namespace Vek::Chart::Ogl

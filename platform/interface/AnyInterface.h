#pragma once

#include "platform/interface/InterfaceID.h"
#include "platform/interface/UnknownInterface.h"

#include <type_traits>

namespace Vek::SupportedInterface {

/// A reference to an object under one of its interfaces; the result of `ISupportedInterface::QuerySupportedInterface`.
///
/// It does not own the object and must not outlive it. Access is by exactly that interface: a base or a derived class
/// of it is another interface.
///
/// \snippet DataSnippets.cpp AnyInterface
/// \ingroup data
class AnyInterface {
public:
  /// Refers to nothing.
  AnyInterface() = default;
  /// Refers to `p_object` as a W. W is always given explicitly, so that it is never deduced as the object's own class.
  template <class W>
  static AnyInterface Of(std::common_type_t<W>& p_object) {
    static_assert(std::is_class_v<W> && !std::is_const_v<W>, "an interface is a class that is not const");
    AnyInterface result;
    result._object = &p_object;
    result._id = InterfaceID::Of<W>();
    return result;
  }

  /// Whether it refers to nothing.
  bool Empty() const { return _object == nullptr; }
  /// The interface of the reference; that of `void` when it refers to nothing.
  const InterfaceID& ID() const { return _id; }

  /// The object as a W; null for another interface.
  template <class W>
  W* As() const {
    return _id == InterfaceID::Of<W>() ? static_cast<W*>(_object) : nullptr;
  }
  /// The object as a W; throws UnknownInterface for another interface.
  template <class W>
  W& Get() const {
    if (W* const object = As<W>())
      return *object;
    throw UnknownInterface(InterfaceID::Of<W>());
  }

private:
  void* _object = nullptr; // was a W* for the W of _id, and is cast back to that only
  InterfaceID _id = InterfaceID::Of<void>();
};

} // namespace Vek::SupportedInterface

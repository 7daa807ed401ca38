#pragma once

#include "platform/data/QuantityUnit.h"
#include "platform/interface/AnyInterface.h"
#include "platform/interface/UnknownInterface.h"

#include <utility>

namespace Vek::Chart::Library::Private {

/// An object of the interface W, and of no other.
template <class W>
class OneInterface : public W {
public:
  bool IsSupportedInterface(const SupportedInterface::InterfaceID& p_id) const override {
    return p_id == SupportedInterface::InterfaceID::Of<W>();
  }
  SupportedInterface::AnyInterface QuerySupportedInterface(const SupportedInterface::InterfaceID& p_id) override {
    if (p_id == SupportedInterface::InterfaceID::Of<W>())
      return SupportedInterface::AnyInterface::Of<W>(*this);
    throw SupportedInterface::UnknownInterface(p_id);
  }
};

/// The same with quantity and unit; `Base` is made from one argument.
template <class Base>
class WithUnit : public Base, public DataInterface::QuantityUnit {
public:
  template <class Argument>
  WithUnit(const Argument& p_argument, DataInterface::QuantityUnitPair p_unit)
      : Base(p_argument)
      , _unit(std::move(p_unit)) {}

  DataInterface::QuantityUnitPair GetQuantityUnit() const override { return _unit; }

  bool IsSupportedInterface(const SupportedInterface::InterfaceID& p_id) const override {
    return p_id == SupportedInterface::InterfaceID::Of<DataInterface::QuantityUnit>() ||
           Base::IsSupportedInterface(p_id);
  }
  SupportedInterface::AnyInterface QuerySupportedInterface(const SupportedInterface::InterfaceID& p_id) override {
    if (p_id == SupportedInterface::InterfaceID::Of<DataInterface::QuantityUnit>())
      return SupportedInterface::AnyInterface::Of<DataInterface::QuantityUnit>(*this);
    return Base::QuerySupportedInterface(p_id);
  }

private:
  DataInterface::QuantityUnitPair _unit;
};

} // namespace Vek::Chart::Library::Private

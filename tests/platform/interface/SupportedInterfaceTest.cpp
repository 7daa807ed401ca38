#include "platform/interface/ISupportedInterface.h"
#include "tests/support/Test.h"

using namespace Vek::SupportedInterface;

namespace {

struct Weight : virtual ISupportedInterface {};
struct Tint : virtual ISupportedInterface {};
struct Smell : virtual ISupportedInterface {};

/// Supports two of the three interfaces.
class Apple : public Weight, public Tint {
public:
  explicit Apple(bool& p_alive)
      : _alive(p_alive = true) {}
  ~Apple() override { _alive = false; }
  bool IsSupportedInterface(const InterfaceID& p_id) const override {
    return p_id == InterfaceID::Of<Weight>() || p_id == InterfaceID::Of<Tint>();
  }
  AnyInterface QuerySupportedInterface(const InterfaceID& p_id) override {
    if (p_id == InterfaceID::Of<Weight>())
      return AnyInterface::Of<Weight>(*this);
    if (p_id == InterfaceID::Of<Tint>())
      return AnyInterface::Of<Tint>(*this);
    throw UnknownInterface(p_id);
  }

private:
  bool& _alive;
};

} // namespace

TEST(InterfaceID, ComparesAndOrdersByInterface) {
  const InterfaceID weight = InterfaceID::Of<Weight>();
  EXPECT_EQ(weight, InterfaceID(typeid(Weight)));
  const std::set<InterfaceID> ids{weight, InterfaceID::Of<Tint>(), InterfaceID::Of<Smell>(), weight};
  EXPECT_EQ(ids.size(), 3u);
  const UnknownInterface error(InterfaceID::Of<ISupportedInterface>());
  EXPECT_EQ(error.ID(), InterfaceID::Of<ISupportedInterface>());
  EXPECT_STREQ(error.what(), "unknown interface Vek::SupportedInterface::ISupportedInterface");
}

TEST(AnyInterface, YieldsTheObjectUnderItsOwnInterfaceOnly) {
  bool alive = false;
  Apple apple(alive);
  const AnyInterface any = apple.QuerySupportedInterface(InterfaceID::Of<Tint>());
  EXPECT_EQ(any.ID(), InterfaceID::Of<Tint>());
  EXPECT_EQ(any.As<Tint>(), static_cast<Tint*>(&apple)); // not the object's address: Tint is the second base
  EXPECT_EQ(&any.Get<Tint>(), any.As<Tint>());
  // Neither another interface of the object, nor its class, nor its base.
  EXPECT_FALSE(any.As<Weight>() || any.As<Apple>() || any.As<ISupportedInterface>());
  EXPECT_THROW(any.Get<Weight>(), UnknownInterface);
  EXPECT_TRUE(AnyInterface().Empty() && !AnyInterface().As<Weight>());
  EXPECT_THROW(AnyInterface().Get<Weight>(), UnknownInterface);
}

TEST(QueryInterface, SharesOwnershipOfTheObject) {
  bool alive = false;
  boost::shared_ptr<ISupportedInterface> object = boost::make_shared<Apple>(alive);
  boost::shared_ptr<Weight> weight = QueryInterface<Weight>(object);
  ASSERT_TRUE(weight);
  EXPECT_FALSE(QueryInterface<Smell>(object));
  EXPECT_FALSE(QueryInterface<Weight>({}));
  object.reset();
  EXPECT_TRUE(alive);
  weight.reset();
  EXPECT_FALSE(alive);
}

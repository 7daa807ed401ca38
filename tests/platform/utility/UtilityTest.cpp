#include "platform/utility/Scope.h"
#include "platform/utility/VersionNo.h"

#include <gtest/gtest.h>

#include <boost/make_shared.hpp>
#include <boost/weak_ptr.hpp>

#include <stdexcept>
#include <string>

using namespace Vek::Chart::Utility;

namespace {

struct Interface {
  void ScopeBegin() { log += '('; }
  void ScopeEnd() { log += ')'; }
  void Call(char p_name) { log += p_name; }
  std::string log;
};

void Draw(const Unscoped<Interface>& p_handle) {
  const Scoped<Interface> scope(p_handle);
  scope->Call('d');
}

} // namespace

TEST(Scoped, OpensAndClosesAroundItsCalls) {
  const Unscoped<Interface> handle(boost::make_shared<Interface>());
  const std::string& log = handle.Object()->log;
  EXPECT_EQ(log, "");
  {
    const Scoped<Interface> outer(handle);
    outer->Call('a');
    Draw(outer.Handle());
    (*outer).Call('b');
  }
  EXPECT_EQ(log, "(a(d)b)");
}

TEST(Scoped, ClosesWhenACallThrows) {
  const Unscoped<Interface> handle(boost::make_shared<Interface>());
  EXPECT_THROW(
      {
        const Scoped<Interface> scope(handle);
        throw std::runtime_error("draw");
      },
      std::runtime_error);
  EXPECT_EQ(handle.Object()->log, "()");
}

TEST(Scoped, KeepsItsObjectAlive) {
  boost::shared_ptr<Interface> object = boost::make_shared<Interface>();
  const boost::weak_ptr<Interface> watch = object;
  {
    const Scoped<Interface> scope{Unscoped<Interface>(std::move(object))};
    EXPECT_FALSE(watch.expired());
  }
  EXPECT_TRUE(watch.expired());
}

TEST(VersionNo, OrdersByItsPartsFromLeftToRight) {
  const VersionNo rising[] = {{}, {0, 0, 1}, {0, 1, 0}, {0, 9, 9}, {1, 0, 0}, {1, 2, 0}, {1, 10, 0}, {2, 0, 0}};
  for (const VersionNo& a : rising) {
    for (const VersionNo& b : rising) {
      EXPECT_EQ(a < b, &a < &b);
      EXPECT_EQ(a > b, &a > &b);
      EXPECT_EQ(a <= b, &a <= &b);
      EXPECT_EQ(a >= b, &a >= &b);
      EXPECT_EQ(a == b, &a == &b);
      EXPECT_EQ(a != b, &a != &b);
    }
  }
}

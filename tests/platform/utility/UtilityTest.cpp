#include "platform/utility/Scope.h"
#include "platform/utility/VersionNo.h"
#include "tests/support/Test.h"

#include <boost/weak_ptr.hpp>

using namespace Vek::Chart::Utility;

namespace {

struct Interface {
  void ScopeBegin() { log += '('; }
  void ScopeEnd() { log += ')'; }
  void Call(char p_name) { log += p_name; }
  std::string log;
};

} // namespace

TEST(Scoped, OpensAndClosesAroundItsCalls) {
  boost::shared_ptr<Interface> object = boost::make_shared<Interface>();
  const boost::weak_ptr<Interface> watch = object;
  try {
    const Scoped<Interface> outer{Unscoped<Interface>(object)};
    EXPECT_EQ(watch.use_count(), 2);
    outer->Call('a');
    Scoped<Interface>(outer.Handle())->Call('d');
    (*outer).Call('b');
    throw std::runtime_error("draw");
  } catch (const std::runtime_error&) {
  }
  EXPECT_EQ(object->log, "(a(d)b)");
  EXPECT_EQ(watch.use_count(), 1);
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

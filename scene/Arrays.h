#pragma once

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>

#include <utility>
#include <vector>

namespace Vek::Chart::Scene {

/// Hands the elements of a vector over with shared ownership, as vertex arrays take them.
template <class T>
boost::shared_ptr<const void> Shared(std::vector<T> p_values) {
  const auto values = boost::make_shared<const std::vector<T>>(std::move(p_values));
  return boost::shared_ptr<const void>(values, values->data());
}

} // namespace Vek::Chart::Scene

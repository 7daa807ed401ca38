#pragma once

#include "platform/debug/TypeName.h"

#include <boost/array.hpp>

#include <cstddef>
#include <string>
#include <vector>

// In the signatures of templates over standard and boost containers.

/// The name of an array.
template <class T, std::size_t N>
struct vekdebug::TypeName<boost::array<T, N>> {
  /// As it stands in a signature.
  static std::string Text() { return "class boost::array<" + TypeName<T>::text() + "," + std::to_string(N) + ">"; }
};
/// The name of a vector with its allocator.
template <class T>
struct vekdebug::TypeName<std::vector<T>> {
  /// As it stands in a signature.
  static std::string Text() {
    const std::string element = TypeName<T>::Text();
    return "class std::vector<" + element + ",class std::allocator<" + element + (element.back() == '>' ? " " : "") +
           "> >";
  }
};

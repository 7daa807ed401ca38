#pragma once

#include "platform/debug/TypeName.h"

#include <boost/array.hpp>

#include <cstddef>
#include <string>
#include <vector>

// Names of standard and boost containers in signatures.

/// Type name of an array.
template <class T, std::size_t N>
struct vekdebug::TypeName<boost::array<T, N>> {
  /// The name.
  static std::string Text() { return "class boost::array<" + TypeName<T>::Text() + "," + std::to_string(N) + ">"; }
};
/// Type name of a vector with its allocator.
template <class T>
struct vekdebug::TypeName<std::vector<T>> {
  /// The name.
  static std::string Text() {
    const std::string element = TypeName<T>::Text();
    return "class std::vector<" + element + ",class std::allocator<" + element + (element.back() == '>' ? " " : "") +
           "> >";
  }
};

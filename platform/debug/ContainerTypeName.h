#pragma once

#include "platform/debug/TypeName.h"

#include <boost/array.hpp>

#include <cstddef>
#include <string>
#include <vector>

// The names of standard and boost containers, for the signatures of templates over them.

template <class T, std::size_t N>
struct vekdebug::TypeName<boost::array<T, N>> {
  static std::string text() { return "class boost::array<" + TypeName<T>::text() + "," + std::to_string(N) + ">"; }
};
template <class T>
struct vekdebug::TypeName<std::vector<T>> {
  static std::string text() {
    const std::string element = TypeName<T>::text();
    return "class std::vector<" + element + ",class std::allocator<" + element + (element.back() == '>' ? " " : "") +
           "> >";
  }
};

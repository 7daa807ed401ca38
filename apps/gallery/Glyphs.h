#pragma once

#include "platform/model/Symbol.h"

#include <string>
#include <vector>

namespace Vek::Chart::Gallery {

/// The name of a built-in glyph, such as "Arrow3D"; empty for a number that is none.
std::string ShapeName(Model::Symbol::Shape p_shape);

/// The names of the glyphs of a list whose elements have a member `shape`.
template <class List>
std::vector<std::string> ShapeNames(const List& p_list) {
  std::vector<std::string> names;
  for (const auto& element : p_list)
    names.push_back(ShapeName(element.shape));
  return names;
}

} // namespace Vek::Chart::Gallery

#pragma once

#include "platform/ogl/ShaderProgram.h"

#include <map>

namespace Vek::Chart::Scene::Private {

/// Programs by what their texts are made of.
template <class Key>
using Programs = std::map<Key, Ogl::ShaderProgram>;

/// The program of a key, made by `p_make` if there is none yet; null, after a report, if it cannot be linked. The next
/// call tries again then.
template <class Key, class Make>
const Ogl::ShaderProgram* ProgramOf(Programs<Key>& p_programs, const Key& p_key, const Make& p_make) {
  auto found = p_programs.find(p_key);
  if (found == p_programs.end()) {
    const Ogl::ShaderProgram program = p_make();
    if (!program.Linked())
      return nullptr;
    found = p_programs.emplace(p_key, program).first;
  }
  return &found->second;
}

} // namespace Vek::Chart::Scene::Private

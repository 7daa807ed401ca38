#pragma once

#include <QString>

#include <cstddef>
#include <vector>

namespace Vek::Chart::Scene::Private {

/// The name of things that are counted: "point" and "points".
struct Noun {
  const char* one;
  const char* many;
};

/// A number for readers: thousands in groups of three.
inline QString Grouped(std::size_t p_number) {
  QString digits = QString::number(p_number);
  for (int at = static_cast<int>(digits.size()) - 3; at > 0 && p_number >= 10000; at -= 3)
    digits.insert(at, ',');
  return digits;
}

/// Adds "1 point missing" or "12 points missing"; nothing for 0.
inline void AddCount(std::vector<QString>& p_notes, std::size_t p_count, const Noun& p_noun, const char* p_state) {
  if (p_count != 0)
    p_notes.push_back(Grouped(p_count) + ' ' + QLatin1String(p_count == 1 ? p_noun.one : p_noun.many) + ' ' +
                      QLatin1String(p_state));
}

/// "every 8th arrow is drawn while moving"; empty for every one.
inline QString StepNote(std::size_t p_step, const Noun& p_noun) {
  if (p_step < 2)
    return {};
  const bool isTeen = p_step % 100 / 10 == 1; // 512th
  const QLatin1String ending(isTeen             ? "th"
                             : p_step % 10 == 1 ? "st"
                             : p_step % 10 == 2 ? "nd"
                             : p_step % 10 == 3 ? "rd"
                                                : "th");
  return "every " + Grouped(p_step) + ending + ' ' + QLatin1String(p_noun.one) + " is drawn while moving";
}

} // namespace Vek::Chart::Scene::Private

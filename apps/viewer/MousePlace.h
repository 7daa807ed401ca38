#pragma once

#include <QPointF>

namespace Vek::Chart::Viewer {

namespace Private {

template <class Event>
auto MousePlace(const Event& p_event, int) -> decltype(p_event.position()) {
  return p_event.position();
}
template <class Event>
QPointF MousePlace(const Event& p_event, long) {
  return p_event.localPos();
}

} // namespace Private

/// Where in its widget a mouse event happened; Qt 5 and Qt 6 have other names for it.
template <class Event>
QPointF MousePlace(const Event& p_event) {
  return Private::MousePlace(p_event, 0);
}

} // namespace Vek::Chart::Viewer

#include "scene/private/OffscreenApplication.h"

namespace Vek::Chart::Scene::Private {

OffscreenApplication::OffscreenApplication() {
  if (QCoreApplication::instance() == nullptr)
    _application.emplace(_count, _arguments);
}

} // namespace Vek::Chart::Scene::Private

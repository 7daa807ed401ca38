#pragma once

#include "scene/TextStyle.h"

#include <QString>

namespace Vek::Chart::Scene::Private {

/// The string, if wider than `p_width`, with an ellipsis in its middle: names often differ at their ends.
QString Elided(const QString& p_text, double p_width, const TextStyle& p_style, double p_pointSize);

} // namespace Vek::Chart::Scene::Private

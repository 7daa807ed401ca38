#pragma once

#include "scene/TextRenderer.h"
#include "scene/Theme.h"

#include <QString>

namespace Vek::Chart::Scene::Private {

/// Breaks a string at blanks into lines that are at most `p_width` wide, where words are not wider.
inline QString Wrapped(const QString& p_text, const TextStyle& p_style, double p_width, double p_pointSize) {
  QString lines, line;
  for (const QString& word : p_text.split(' ')) {
    const QString longer = line.isEmpty() ? word : line + ' ' + word;
    if (!line.isEmpty() && TextRenderer::Size(longer, p_style, p_pointSize).width() > p_width) {
      lines += line + '\n';
      line = word;
    } else {
      line = longer;
    }
  }
  return lines + line;
}

} // namespace Vek::Chart::Scene::Private

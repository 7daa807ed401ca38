#include "scene/private/Elided.h"

#include "scene/TextRenderer.h"

namespace Vek::Chart::Scene::Private {

QString Elided(const QString& p_text, double p_width, const TextStyle& p_style, double p_pointSize) {
  const auto fits = [&](const QString& p_string) {
    return TextRenderer::Size(p_string, p_style, p_pointSize).width() <= p_width;
  };
  const auto shortened = [&](int p_kept) {
    QString left = p_text.left((p_kept + 1) / 2), right = p_text.right(p_kept / 2);
    if (!left.isEmpty() && left.at(left.size() - 1).isHighSurrogate())
      left.chop(1);
    if (!right.isEmpty() && right.at(0).isLowSurrogate())
      right.remove(0, 1);
    return left + QStringLiteral("\u2026") + right;
  };
  if (fits(p_text))
    return p_text;
  int kept = 0;
  for (int above = static_cast<int>(p_text.size()); above - kept > 1;) {
    const int middle = (kept + above) / 2;
    (fits(shortened(middle)) ? kept : above) = middle;
  }
  return shortened(kept);
}

} // namespace Vek::Chart::Scene::Private

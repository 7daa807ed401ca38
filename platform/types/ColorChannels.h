#pragma once

#include <QColor>

#include <algorithm>
#include <array>

namespace Vek::Chart::Types {

/// Red, green, blue and alpha of a colour in [0, 1], in double precision as in Qt 5; Qt 6 itself rounds to single.
inline std::array<double, 4> ColorChannels(const QColor& p_color) {
  if (p_color.spec() == QColor::ExtendedRgb) // half floats, which are exact in either precision
    return {p_color.redF(), p_color.greenF(), p_color.blueF(), p_color.alphaF()};
  const QRgba64 channels = p_color.rgba64();
  return {channels.red() / 65535.0, channels.green() / 65535.0, channels.blue() / 65535.0, channels.alpha() / 65535.0};
}

/// The colour of these channels, rounded to 16 bits each. Values outside of [0, 1] are treated as by QColor::fromRgbF.
inline QColor ColorOfChannels(const std::array<double, 4>& p_channels) {
  const auto [red, green, blue, alpha] = p_channels;
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
  if (std::all_of(p_channels.begin(), p_channels.end(), [](double p_value) { return p_value >= 0 && p_value <= 1; })) {
    const auto bits = [](double p_value) { return static_cast<quint16>(p_value * 65535.0 + 0.5); };
    return QColor::fromRgba64(bits(red), bits(green), bits(blue), bits(alpha));
  }
  return QColor::fromRgbF(static_cast<float>(red), static_cast<float>(green), static_cast<float>(blue),
                          static_cast<float>(alpha));
#else
  return QColor::fromRgbF(red, green, blue, alpha);
#endif
}

} // namespace Vek::Chart::Types

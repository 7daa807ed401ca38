#pragma once

#include "library/Export.h"
#include "library/Texture.h"
#include "platform/ogl/Rgl.h"

#include <boost/shared_ptr.hpp>

#include <QColor>
#include <QImage>

#include <string>
#include <type_traits>
#include <vector>

namespace Vek::Chart::Library {

/// A colour gradient: turns an ordered list of colours into one row of texels, looks up colours by index or by a value
/// in [0, 1], and binds the row as a texture.
///
/// Shape: `Size()` × 1 texels, at most `GradientResolutionMax`, from the first colour on the left to the last on the
/// right. Each colour gets a rounded number of texels; their sum need not be 4096: three equal bands make 4095 texels.
/// A wider row is scaled down smoothly. One colour makes one texel. The scaling is
/// Qt's: between Qt 5 and Qt 6, scaled texels differ, by one level mostly, by more where colours are translucent.
///
/// Ownership: a map is complete when it is constructed and never changes. Copies share the texels and, once the map
/// was bound, the texture, which lives as long as a map or another holder of `Handle()`. Its last holder must release
/// it while the context that made it is current. Rendering thread only.
///
/// Errors are reported, and the map is built from what remains: "size == p_weightings.size()" (a missing weight counts
/// as 0, a surplus one is ignored), "(p_weightings[i] >= 0) && "Invalid color weight specified."" as a warning (the
/// colour is dropped), "size > 0" for a list without colours (twice, once by each builder). Such a map is empty: its
/// size is 0, all its look-ups give the transparent colour (0, 0, 0, 0), and binding it uploads nothing. Binding treats
/// the host's state and failures as `Texture` does; a map beyond the device's limit is reported at the first bind.
///
/// \snippet ColorSnippets.cpp ColorMap
/// \image html wind.jpg
/// \ingroup colours
class VEK_LIBRARY_API ColorMap {
public:
  /// How the colours fill the gradient. Any number is allowed; all but 1 make bands.
  enum Style : int {
    Discrete = 0,     ///< each colour fills a band whose width follows its weight
    Interpolated = 1, ///< neighbouring colours are blended linearly across the segment between them
  };

  /// The resolution of a gradient and the largest width that one keeps, in texels.
  static constexpr int GradientResolutionMax = 4096;

  /// The width of a colour's band follows its weight. A segment between two blended colours takes half the weight of
  /// each. Colours whose weight is 0, negative or NaN are dropped; if none is left, all colours have equal weights.
  ColorMap(const std::vector<QColor>& p_colors, const std::vector<double>& p_weightings, ColorMap::Style p_style);
  /// All colours weigh 1.
  ColorMap(const std::vector<QColor>& p_colors, ColorMap::Style p_style);
  /// The map of `NamedColors` with that name, at its published resolution. Throws std::invalid_argument for an unknown
  /// name; its message lists the known ones.
  static ColorMap Named(const std::string& p_name, ColorMap::Style p_style = Interpolated);
  ~ColorMap();
  /// Shares texels and texture.
  ColorMap(const ColorMap&) = default;
  /// Copy assignment; shares texels and texture.
  ColorMap& operator=(const ColorMap&) = default;

  /// Binds the gradient on the texture unit `p_unit` (a token: RGL_TEXTURE0 + n), which becomes the active one, with
  /// nearest filtering, clamped, and enables 2-D texturing there. The first call creates and uploads the texture.
  void operator()(Utility::Scoped<Rgl>& p_gl, unsigned int p_unit) const;

  /// Binds as the call operator does and sets the texture environment of the unit; a number without an enumerator
  /// leaves that unchanged. Releasing the guard restores the active unit and, of all units, enables, bindings,
  /// environments and texture parameters; it must be released in the same rendering scope. It occupies one level of the
  /// attribute stack.
  ///
  /// \snippet ColorSnippets.cpp ColorMapBind
  boost::shared_ptr<void> Bind(Utility::Scoped<Rgl>& p_gl, unsigned int p_unit = RGL_TEXTURE0,
                               Texture::Environment p_environment = Texture::Modulate) const;

  /// The texel at `p_index`, taken as unsigned 32-bit, modulo `Size()`: −1 is the last texel of 4096, but not of 4095.
  QColor Color(int p_index) const;
  /// The same for every other integer type.
  template <class Integer, std::enable_if_t<std::is_integral_v<Integer> && !std::is_same_v<Integer, int>, int> = 0>
  QColor Color(Integer p_index) const {
    return Color(static_cast<int>(static_cast<unsigned int>(p_index)));
  }
  /// The texel for a value, clamped to [0, 1]. Its position is rounded down, so that only 1 gives the last texel; NaN
  /// gives the first.
  QColor Color(double p_value) const;

  /// The texture; empty before the map is bound for the first time.
  boost::shared_ptr<Ogl::Texture> Handle() const { return _handle; }
  /// The number of texels.
  int Size() const { return static_cast<int>(_size); }
  /// The weights of the gradient: those above 0, or all 1. Empty for a map of fewer than two colours.
  const std::vector<double>& Weightings() const { return _weightings; }
  /// The gradient: `Size()` × 1, format ARGB32.
  const QImage& GetImage() { return _image; }

  /// Resamples a list to `p_count` colours, evenly spaced from its first to its last colour and blended between
  /// neighbours. An empty list counts as white; a list of `p_count` colours is returned unchanged.
  static std::vector<QColor> GenerateColorList(const std::vector<QColor>& p_colors, int p_count);
  /// Resamples the weights to `p_count` bins, preserving their sum. Without weights, all are 1.
  static std::vector<double> GenerateWeightList(const std::vector<double>& p_weights, int p_count);

private:
  void CreateLinearMap(const std::vector<QColor>& p_colors, ColorMap::Style p_style);
  void CreateNonLinearMap(const std::vector<QColor>& p_colors, const std::vector<double>& p_weightings,
                          ColorMap::Style p_style);
  void CreateNonLinearMap(const std::vector<QColor>& p_colors, const std::vector<double>& p_weightings,
                          ColorMap::Style p_style, unsigned int p_resolution);

  mutable boost::shared_ptr<Ogl::Texture> _handle;
  unsigned int _size = 0;
  QImage _image;
  std::vector<double> _weightings;
};

} // namespace Vek::Chart::Library

#pragma once

#include "library/ColorMap.h"
#include "library/Export.h"
#include "platform/ogl/Text.h"
#include "platform/types/ColorMap.h"
#include "platform/types/FillStyle.h"
#include "platform/types/LineStyle.h"
#include "platform/types/SymbolStyle.h"
#include "platform/types/TextStyle.h"
#include "platform/utility/Scope.h"

#include <boost/function.hpp>
#include <boost/shared_ptr.hpp>

#include <type_traits>

namespace Vek::Chart::Library {

/// Visibility of styles, and drawing with them. Only the effective values of a style's properties count.
///
/// \snippet ColorSnippets.cpp Style
/// \image html styles.jpg
/// \ingroup colours
class VEK_LIBRARY_API Style {
public:
  ///@{
  /// Whether an area would show: the pattern is not 0, and the colour not transparent. A colour map, when there is one
  /// that is not empty, stands in for the colour.
  static bool HasFill(const Types::FillStyle& p_style);
  static bool HasFill(const Types::FillStyle& p_style, const boost::shared_ptr<ColorMap>& p_map);
  ///@}
  ///@{
  /// Whether a line would show: as above, and the width is above 0 (NaN is not).
  static bool HasLine(const Types::LineStyle& p_style);
  static bool HasLine(const Types::LineStyle& p_style, const boost::shared_ptr<ColorMap>& p_map);
  ///@}
  ///@{
  /// Whether a symbol would show: neither shape nor size is 0, and a colour is not transparent. A colour map, when
  /// there is one that is not empty, stands in for both colours.
  static bool HasSymbol(const Types::SymbolStyle& p_style);
  static bool HasSymbol(const Types::SymbolStyle& p_style, const boost::shared_ptr<ColorMap>& p_map);
  ///@}

  /// Whether the map blends: at least two colours and the gradient flag.
  static bool HasColorMapGradient(const Types::ColorMap& p_map);
  /// Whether the map has usable weights: at least two colours and as many weights.
  static bool HasColorMapWeightings(const Types::ColorMap& p_map);

  /// Copies both colours, the flag and the size (clamped to 2 to 96) to the text where they differ. An empty pointer
  /// is reported.
  static void ApplyStyle(boost::shared_ptr<Ogl::Text>& p_text, const Types::TextStyle& p_style);

  /// Calls `p_draw` with the style's colour and stipple set: for a pattern with a visible second colour first with that
  /// colour and unstippled, then with the colour and stippled. A pattern whose second colour is transparent is drawn
  /// solid. Enables, polygon state and the current colour are restored when the call returns or throws. The mask of the
  /// polygon stipple stays; it has no effect while stippling is off. The host's pixel store does not reach the mask. An
  /// empty function throws boost::bad_function_call.
  static void DrawInternal(const Types::FillStyle& p_style, Utility::Scoped<Rgl>& p_gl,
                           boost::function<void(Utility::Scoped<Rgl>&)>& p_draw);
  /// As above for lines, whose stipple is restored with the line state; dashes grow with the width. A negative or NaN
  /// width has the stipple factor 0.
  static void DrawInternal(const Types::LineStyle& p_style, Utility::Scoped<Rgl>& p_gl,
                           boost::function<void(Utility::Scoped<Rgl>&)>& p_draw);

  /// `DrawInternal` with any callable, which is not copied. It is called with the scope or, if it takes no argument,
  /// without. `p_style`: a FillStyle or LineStyle.
  template <class Record, class Function>
  static void Draw(const Record& p_style, Utility::Scoped<Rgl>& p_gl, Function&& p_draw) {
    boost::function<void(Utility::Scoped<Rgl>&)> draw = Reference(p_draw);
    DrawInternal(p_style, p_gl, draw);
  }
  /// As `Draw`, but the gaps of a pattern are left out where the second colour is transparent, instead of the pattern
  /// being drawn solid.
  template <class Record, class Function>
  static void DrawWithGaps(const Record& p_style, Utility::Scoped<Rgl>& p_gl, Function&& p_draw) {
    boost::function<void(Utility::Scoped<Rgl>&)> draw = Reference(p_draw);
    DrawGaps(p_style, p_gl, draw);
  }

private:
  /// A function of one word, which boost::function holds without memory of its own.
  template <class Function>
  static auto Reference(Function& p_draw) {
    return [&p_draw](Utility::Scoped<Rgl>& p_gl) {
      if constexpr (std::is_invocable_v<Function&, Utility::Scoped<Rgl>&>)
        p_draw(p_gl);
      else
        p_draw();
    };
  }
  static void DrawGaps(const Types::FillStyle& p_style, Utility::Scoped<Rgl>& p_gl,
                       boost::function<void(Utility::Scoped<Rgl>&)>& p_draw);
  static void DrawGaps(const Types::LineStyle& p_style, Utility::Scoped<Rgl>& p_gl,
                       boost::function<void(Utility::Scoped<Rgl>&)>& p_draw);
};

} // namespace Vek::Chart::Library

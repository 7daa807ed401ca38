#pragma once

#include "library/Export.h"
#include "library/Texture.h"
#include "platform/assets/ImageCache.h"
#include "platform/assets/Resource.h"
#include "platform/utility/Scope.h"

#include <boost/shared_ptr.hpp>

#include <cstdint>

namespace Vek::Chart::Library {

/// Maps pattern numbers to GL's line stipples, polygon stipples and point-sprite textures. Any number is allowed; those
/// without an enumerator are solid (for points: the rectangle).
///
/// \snippet ColorSnippets.cpp Pattern
/// \image html styles.jpg
/// \ingroup colours
class VEK_LIBRARY_API Pattern {
public:
  /// Line stipples; sixteen pixels at a line width of 1, then again.
  enum LinePattern : std::uint32_t {
    LineNone = 0,         ///< draws nothing (solid as a stipple)
    LineSolid = 1,        ///< no gaps
    LineDense = 2,        ///< three of four
    LineDots = 3,         ///< every other
    LineSparse = 4,       ///< one of four
    LineShort = 5,        ///< two on, two off
    LineMedium = 6,       ///< four on, four off
    LineLong = 7,         ///< eight on, eight off
    LineDotDash = 8,      ///< a dot, a dash
    LineDotsDash = 9,     ///< two dots, a dash
    LineLongDotDash = 10, ///< a dot, two dashes of four
  };
  /// Polygon stipples of 32 × 32 pixels, fixed to the window.
  enum FillPattern : std::uint32_t {
    FillNone = 0,         ///< draws nothing (solid as a stipple)
    FillSolid = 1,        ///< no gaps
    FillDense = 2,        ///< three of four bits
    FillHalf = 3,         ///< checkerboard
    FillSparse = 4,       ///< one of four bits
    FillHorizontal = 5,   ///< a line every fourth row
    FillVertical = 6,     ///< a line every fourth column
    FillGrid = 7,         ///< both
    FillDiagonal = 8,     ///< one way
    FillBackDiagonal = 9, ///< the other way
    FillCrossHatch = 10,  ///< both diagonals
    FillWeave = 11,       ///< pairs of bits, moved by two from row to row
    FillBackWeave = 12,   ///< the same, moved by one row
  };
  /// Point sprites; the name of the image follows after "symbol_".
  enum PointPattern : std::uint32_t {
    PointNone = 0,      ///< draws nothing (the rectangle as a sprite)
    PointRectangle = 1, ///< "rect"
    PointEllipse = 2,   ///< "ellipse"
    PointDiamond = 3,   ///< "diamond"
    PointHexagon = 4,   ///< "hexagon"
    PointTriangle = 5,  ///< "triangle"
    PointCross = 6,     ///< "cross"
    PointXCross = 7,    ///< "xCross"
    PointStar = 8,      ///< "star"
  };

  /// The 16 bits for glLineStipple; the least significant bit is drawn first.
  static unsigned short LineStipplePattern(LinePattern p_pattern);
  /// The 128 bytes for glPolygonStipple: 32 rows of 32 bits, the bottom row first. The leftmost bit is the most
  /// significant one of a row's first byte; GL reads it so under the initial pixel store or `Ogl::ImageUnpackScope`.
  /// Owned by the library, valid until the program ends.
  static const unsigned char* PolygonStipplePattern(FillPattern p_pattern);
  /// A new texture of the image "symbol_" + shape, found through the resource and read through the cache, in the
  /// environment mode modulate, so that the current colour tints it. A missing image is reported by the cache and by
  /// the texture.
  static boost::shared_ptr<Texture> PointSpritePattern(PointPattern p_pattern, const Assets::Resource& p_resource,
                                                       Assets::ImageCache& p_cache, Utility::Scoped<Rgl>& p_gl);
};

} // namespace Vek::Chart::Library

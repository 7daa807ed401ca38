#pragma once

#include "library/Export.h"
#include "platform/types/Vector.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Vek::Chart::Library {

/// Divides a polygon in space into triangles, by its corners only: three indices of corners for each of its n - 2
/// triangles, wound as the polygon.
///
/// The polygon may be concave and need not be planar: it is divided in the plane of its Newell normal (I. Sutherland,
/// R. Sproull and R. Schumacker, "A characterization of ten hidden-surface algorithms", 1974). Strictly convex polygons
/// become fans around their first corner. Others are divided by ear clipping (G. Meisters, "Polygons have ears", 1975).
/// Triangles without area only arise where corners coincide or where nothing else is left. Holes may be joined to the
/// outline by an edge that is used twice.
///
/// A polygon without area, with a coordinate that is not finite, or that crosses itself also gets n - 2 triangles,
/// which may overlap; so does one that would take more than about 2^24 + 64 n tests. Fewer than three corners have
/// none. A null array counts as empty. Nothing is reported. Thread-safe.
///
/// \snippet GlyphSnippets.cpp TriangulatePolygon
/// \ingroup glyphs
VEK_LIBRARY_API std::vector<std::uint32_t> TriangulatePolygon(const Types::Vector3_Base<double>* p_corners,
                                                              std::size_t p_count);

} // namespace Vek::Chart::Library

#pragma once

#include "library/Export.h"
#include "library/ObjModel.h"
#include "platform/ogl/Vec.h"
#include "platform/types/Vector.h"
#include "platform/utility/Threads.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Vek::Chart::Library {

/// Computes smooth normals for a triangle mesh, one for each position, at unit length.
///
/// A normal is the mean of the normals of the triangles around a vertex, weighted by their angles at it (G. Thürmer and
/// C. A. Wüthrich, "Computing vertex normals from polygonal facets", 1998). So it depends on the surface, not on how
/// that is cut into triangles: the normal at a corner of a cube points along the diagonal, however the faces are
/// divided.
///
/// `p_indices` has three zero-based indices for a triangle, counter-clockwise seen from outside; one or two left over
/// are ignored. Only vertices with the same index are smoothed together: a mesh has an edge where it repeats positions.
///
/// Left out are triangles without area (about 1e-7 times the square of their longest edge, or less), with a coordinate
/// that is not finite, or with an index past the end of the positions. A vertex without a triangle gets (0, 0, 1), as
/// does one whose triangles cancel out. A null array counts as empty. Computed in double precision, in time linear in
/// the mesh. Nothing is reported. Thread-safe. The number of threads changes no bit of the result; fewer than 100,000
/// triangles start none.
///
/// \snippet GlyphSnippets.cpp ComputeNormals
/// \ingroup glyphs
VEK_LIBRARY_API std::vector<Types::Vector3_Base<double>>
ComputeNormals(const Types::Vector3_Base<double>* p_positions, std::size_t p_positionCount,
               const std::uint32_t* p_indices, std::size_t p_indexCount, Utility::Threads p_threads = {});

/// ComputeNormals of float positions; the normals are narrowed at the end.
///
/// \ingroup glyphs
VEK_LIBRARY_API std::vector<Ogl::Vec3<float>> ComputeNormals(const Ogl::Vec3<float>* p_positions,
                                                             std::size_t p_positionCount,
                                                             const std::uint32_t* p_indices, std::size_t p_indexCount,
                                                             Utility::Threads p_threads = {});

/// Gives a model of triangles the smooth normals of all its groups together, in place of those that it has: in a new
/// array, so that copies of the model keep theirs. A model of another primitive type stays unchanged, and false is
/// returned. Null arrays and groups count as empty.
///
/// \ingroup glyphs
VEK_LIBRARY_API bool ComputeNormals(ObjModel& p_model, Utility::Threads p_threads = {});

} // namespace Vek::Chart::Library

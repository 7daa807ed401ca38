#pragma once

#include "library/private/mesh/GlyphMesh.h"

namespace Vek::Chart::Library::Private {

/// Parameters of a built-in glyph.
struct GlyphSize {
  unsigned int resolution; ///< segments around round shapes; a multiple of 4, at least 4
  double length;           ///< z of the tip
};

///@{
/// Adds the mesh of a built-in glyph to an empty mesh. Triangles run counter-clockwise seen from outside; their normals
/// are not set.
void BuildPoint(const GlyphSize& p_size, GlyphMesh& p_mesh);
void BuildArrowHead1D(const GlyphSize& p_size, GlyphMesh& p_mesh);
void BuildArrow1D(const GlyphSize& p_size, GlyphMesh& p_mesh);
void BuildArrowHead2D(const GlyphSize& p_size, GlyphMesh& p_mesh);
void BuildArrow2D(const GlyphSize& p_size, GlyphMesh& p_mesh);
void BuildPlane(const GlyphSize& p_size, GlyphMesh& p_mesh);
void BuildArrowHead3D(const GlyphSize& p_size, GlyphMesh& p_mesh);
void BuildArrow3D(const GlyphSize& p_size, GlyphMesh& p_mesh);
void BuildCylinder(const GlyphSize& p_size, GlyphMesh& p_mesh);
void BuildCone(const GlyphSize& p_size, GlyphMesh& p_mesh);
void BuildCircularArrow(const GlyphSize& p_size, GlyphMesh& p_mesh);
void BuildCrosshair(const GlyphSize& p_size, GlyphMesh& p_mesh);
void BuildCube(const GlyphSize& p_size, GlyphMesh& p_mesh);
void BuildSphere(const GlyphSize& p_size, GlyphMesh& p_mesh);
///@}

} // namespace Vek::Chart::Library::Private

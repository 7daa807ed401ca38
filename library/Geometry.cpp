#include "library/Geometry.h"

#include "library/TexturedCube.h"
#include "library/private/gl/QuadricDraw.h"
#include "library/private/mesh/CircularArrowMesh.h"

namespace Vek::Chart::Library {

namespace {

namespace Signature {
#define VEK_RECORDER(p_name)                                                                                           \
  "void __cdecl `anonymous-namespace'::" p_name "(class Vek::Chart::Utility::Scoped<class Vek::Chart::Ogl::Rgl> &)"
constexpr const char* DrawCone = VEK_RECORDER("DrawCone");
constexpr const char* DrawCylinder = VEK_RECORDER("DrawCylinder");
constexpr const char* DrawDisk = VEK_RECORDER("DrawDisk");
constexpr const char* DrawSphere = VEK_RECORDER("DrawSphere");
#undef VEK_RECORDER
} // namespace Signature

void DrawCone(Utility::Scoped<Rgl>& p_gl) {
  if (const auto quadric = Private::MakeQuadric(p_gl, RGLU_FILL, Signature::DrawCone))
    p_gl->Cylinder(quadric.get(), 0.5, 0.0, 1.0, 16, 16);
}

void DrawCylinder(Utility::Scoped<Rgl>& p_gl) {
  if (const auto quadric = Private::MakeQuadric(p_gl, RGLU_FILL, Signature::DrawCylinder))
    p_gl->Cylinder(quadric.get(), 0.5, 0.5, 1.0, 16, 16);
}

void DrawDisk(Utility::Scoped<Rgl>& p_gl) {
  if (const auto quadric = Private::MakeQuadric(p_gl, RGLU_FILL, Signature::DrawDisk))
    p_gl->Disk(quadric.get(), 0.0, 0.5, 16, 16);
}

void DrawSphere(Utility::Scoped<Rgl>& p_gl) {
  if (const auto quadric = Private::MakeQuadric(p_gl, RGLU_FILL, Signature::DrawSphere))
    p_gl->Sphere(quadric.get(), 0.5, 16, 16);
}

// The positions and normals of each face's four vertices.
//
//        7-------6      z
//       /|      /|      |  y
//      4-------5 |      | /
//      | 3-----|-2      |/
//      |/      |/       0---- x
//      0-------1
struct CubeVertex {
  float position[3];
  float normal[3];
};
constexpr float H = 0.5f;
constexpr CubeVertex CubeFaces[6][4] = {
    // 0 3 2 1, down
    {{{-H, -H, -H}, {0, 0, -1}}, {{-H, H, -H}, {0, 0, -1}}, {{H, H, -H}, {0, 0, -1}}, {{H, -H, -H}, {0, 0, -1}}},
    // 0 1 5 4, front
    {{{-H, -H, -H}, {0, -1, 0}}, {{H, -H, -H}, {0, -1, 0}}, {{H, -H, H}, {0, -1, 0}}, {{-H, -H, H}, {0, -1, 0}}},
    // 1 2 6 5, right
    {{{H, -H, -H}, {1, 0, 0}}, {{H, H, -H}, {1, 0, 0}}, {{H, H, H}, {1, 0, 0}}, {{H, -H, H}, {1, 0, 0}}},
    // 2 3 7 6, back
    {{{H, H, -H}, {0, 1, 0}}, {{-H, H, -H}, {0, 1, 0}}, {{-H, H, H}, {0, 1, 0}}, {{H, H, H}, {0, 1, 0}}},
    // 0 4 7 3, left
    {{{-H, -H, -H}, {-1, 0, 0}}, {{-H, -H, H}, {-1, 0, 0}}, {{-H, H, H}, {-1, 0, 0}}, {{-H, H, -H}, {-1, 0, 0}}},
    // 4 5 6 7, up
    {{{-H, -H, H}, {0, 0, 1}}, {{H, -H, H}, {0, 0, 1}}, {{H, H, H}, {0, 0, 1}}, {{-H, H, H}, {0, 0, 1}}},
};

void DrawCube(Utility::Scoped<Rgl>& p_gl) {
  p_gl->Begin(RGL_QUADS);
  for (const auto& face : CubeFaces) {
    p_gl->Normal(face[0].normal[0], face[0].normal[1], face[0].normal[2]); // equal for all four
    for (const CubeVertex& vertex : face)
      p_gl->Vertex(vertex.position[0], vertex.position[1], vertex.position[2]);
  }
  p_gl->End();
}

/// Centres the mesh in y and scales its thickness to 1, in the single precision of the table. Normals stay valid: each
/// is parallel or perpendicular to z.
void DrawCircularArrow(Utility::Scoped<Rgl>& p_gl) {
  const Private::CircularArrowMesh& mesh = Private::CircularArrowMesh::Instance();
  p_gl->Begin(RGL_TRIANGLES);
  for (const std::int32_t index : mesh.indices) {
    const auto& [nx, ny, nz] = mesh.normals.at(static_cast<std::size_t>(index));
    const auto& [x, y, z] = mesh.positions.at(static_cast<std::size_t>(index));
    const float centred = y - 0.5f;
    const float scaled = z / Private::CircularArrowMesh::Thickness - 0.5f;
    p_gl->Normal(nx, ny, nz);
    p_gl->Vertex(x, centred, scaled);
  }
  p_gl->End();
}

/// Records nothing: charts rely on the empty list.
void DrawRing(Utility::Scoped<Rgl>&) {}

void DrawVoxel(Utility::Scoped<Rgl>& p_gl) {
  TexturedCube cube(0);
  cube(p_gl);
}

boost::shared_ptr<Ogl::DisplayList> Record(Utility::Scoped<Rgl>& p_gl, void (*p_draw)(Utility::Scoped<Rgl>&)) {
  const boost::shared_ptr<Ogl::DisplayList> list = p_gl->GenDisplayList();
  if (!list)
    return {};
  const boost::shared_ptr<void> recording = list->Compile();
  p_draw(p_gl);
  return list;
}

/// Draws nothing for a shape whose list could not be made.
void Replay(const boost::shared_ptr<Ogl::DisplayList>& p_list) {
  if (p_list)
    (*p_list)();
}

} // namespace

Geometry::Geometry(const Utility::Unscoped<Rgl>& p_gl) {
  Utility::Scoped<Rgl> gl(p_gl);
  _cube = Record(gl, DrawCube);
  _sphere = Record(gl, DrawSphere);
  _cone = Record(gl, DrawCone);
  _cylinder = Record(gl, DrawCylinder);
  _disk = Record(gl, DrawDisk);
  _circularArrow = Record(gl, DrawCircularArrow);
  _ring = Record(gl, DrawRing);
  _voxel = Record(gl, DrawVoxel);
}

Geometry::~Geometry() = default;

void Geometry::Cube(const Utility::Scoped<Rgl>&) const {
  Replay(_cube);
}
void Geometry::Sphere(const Utility::Scoped<Rgl>&) const {
  Replay(_sphere);
}
void Geometry::Cylinder(const Utility::Scoped<Rgl>&) const {
  Replay(_cylinder);
}
void Geometry::Disk(const Utility::Scoped<Rgl>&) const {
  Replay(_disk);
}
void Geometry::Cone(const Utility::Scoped<Rgl>&) const {
  Replay(_cone);
}
void Geometry::CircularArrow(const Utility::Scoped<Rgl>&) const {
  Replay(_circularArrow);
}
void Geometry::Ring(const Utility::Scoped<Rgl>&) const {
  Replay(_ring);
}
void Geometry::Voxel(const Utility::Scoped<Rgl>&) const {
  Replay(_voxel);
}

} // namespace Vek::Chart::Library

#pragma once

#include "scene/GpuMesh.h"
#include "scene/private/MeshData.h"
#include "scene/private/ModelTexture.h"
#include "scene/private/PlacedContent.h"

#include <vector>

namespace Vek::Chart::Scene::Private {

class MeshContent : public PointsContent {
public:
  explicit MeshContent(MeshData p_data);

  void ColorByFile();
  void UpdatePositions(const Array3& p_positions);

  void ValuesChanged() override;
  bool IsSurface() const override { return true; }
  bool IsPeeled() const override { return true; }
  void Draw(Utility::Scoped<Rgl>& p_gl, const Frame& p_frame) override;
  void DrawPick(Utility::Scoped<Rgl>& p_gl, const Frame& p_frame, const PickPass& p_pass) override;
  Picked Identify(std::optional<std::uint32_t> p_number, const Point& p_scene) const override;
  std::vector<QString> Notes() const override;

private:
  bool IsUsed(std::size_t p_index) const override { return _isUsed[p_index]; }
  Box PlaceChanged(const Changes& p_changes) override;
  void ReleaseParts(const Utility::Scoped<Rgl>& p_gl) const override;
  Noun Names() const override { return {"vertex", "vertices"}; }
  void PlaceVertices();
  void PlaceColors();

  std::vector<Point> _normals; ///< of the file; none to compute them
  std::vector<MeshPart> _parts;
  std::vector<ModelTexture> _textures; ///< one a part
  std::size_t _unreadTextures = 0;
  std::vector<bool> _isUsed; ///< whether a triangle has the vertex
  bool _isByFile = true;     ///< whether the colours of the file count

  // What was placed.
  std::vector<bool> _isShown;   ///< one a vertex
  Box _box;                     ///< of the vertices in the scene
  double _opacity = 1;          ///< of the colours of the file
  std::vector<GpuMesh> _meshes; ///< one a part
  std::vector<Point> _scene;    ///< of the vertices
  /// Of each part, the vertices of its triangles that are shown, three each.
  std::vector<std::vector<std::uint32_t>> _triangles;
};

} // namespace Vek::Chart::Scene::Private

#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace Vek::Bench {

/// Glyphs of vtkGlyph3DMapper in an off-screen window of VTK, to be compared with. The view is that of the plane z = 0
/// from above, a unit in a pixel. Needs an X server.
class VtkGlyphs {
public:
  using Points = std::vector<std::array<double, 3>>;
  /// Arrows of vtkArrowSource along `p_directions`; spheres of vtkSphereSource without directions. Values are 0 to 1.
  VtkGlyphs(int p_width, int p_height, int p_samples, const Points& p_positions, const Points& p_directions,
            const std::vector<double>& p_sizes, const std::vector<double>& p_values);
  ~VtkGlyphs();
  VtkGlyphs(const VtkGlyphs&) = delete;
  VtkGlyphs& operator=(const VtkGlyphs&) = delete;

  /// Draws a frame and waits for it; the camera is `p_shift` units to the left.
  void Draw(double p_shift);
  /// Of a glyph.
  std::size_t Vertices() const;
  /// The renderer of GL.
  std::string Renderer();
  void Save(const std::string& p_path);

private:
  struct State;
  std::unique_ptr<State> _state;
};

} // namespace Vek::Bench

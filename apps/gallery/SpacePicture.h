#pragma once

#include "apps/gallery/Picture.h"
#include "scene/Canvas.h"
#include "scene/TextRenderer.h"

#include "library/ColorMap.h"

#include <optional>
#include <vector>

namespace Vek::Chart::Gallery {

/// A picture in space: a background, the world as the camera sees it, and legends over it. What derives from it says
/// what these are; the order of drawing, the surfaces to point at and the exchange of colours are common to all.
class SpacePicture : public Picture {
public:
  void Draw(Utility::Scoped<Rgl>& p_gl, const View& p_view) final;
  bool HasSurfaces() const final { return true; }
  void DrawSurfaces(Utility::Scoped<Rgl>& p_gl, const View& p_view) final;
  bool TakesColors() const final { return _colors.has_value(); }
  void SetColors(const std::vector<QColor>& p_colors) final;

protected:
  /// A picture whose colours tell no values.
  SpacePicture() = default;
  /// Values are shown in these colours, interpolated, until others are set.
  explicit SpacePicture(const std::vector<QColor>& p_colors);

  const Library::ColorMap& Colors() const { return *_colors; }

  /// Makes GL objects; called once, before anything is drawn.
  virtual void Prepare(Utility::Scoped<Rgl>&) {}
  /// Draws into the part of the view that shows surfaces, which `p_world` is, under its camera.
  virtual void DrawWorld(Utility::Scoped<Rgl>& p_gl, const View& p_world) = 0;
  /// Draws the surfaces under the same camera, each pixel of which gets its packed depth (see Picture::DrawSurfaces).
  virtual void DrawDepths(Utility::Scoped<Rgl>& p_gl) = 0;
  virtual void DrawLegends(Utility::Scoped<Rgl>& p_gl, const View& p_view, Canvas& p_canvas) = 0;

private:
  void PrepareOnce(Utility::Scoped<Rgl>& p_gl);

  bool _prepared = false;
  std::vector<QColor> _ownColors;
  std::optional<Library::ColorMap> _colors;
  TextRenderer _text;
};

} // namespace Vek::Chart::Gallery

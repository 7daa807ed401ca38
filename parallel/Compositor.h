#pragma once

#include "parallel/Export.h"
#include "parallel/Processes.h"

#include "platform/types/Geometry.h"
#include "platform/types/Size.h"
#include "scene/Figure.h"

#include <QImage>

#include <memory>

namespace Vek::Chart::Parallel {

/// Draws one image of figures in several processes, each of which has a share of the data: sort-last compositing over
/// MPI by IceT (K. Moreland, "IceT Users' Guide and Reference", 2011; icet.sandia.gov).
///
/// Every process makes the same figure with its own data: same plots, extent, colour range and view, as a
/// FigureDescription gives them. Each draws its plots off-screen. Opaque plots are composited by their depths, sample
/// by sample, so that the image has the pixels that one process with all data would draw. (Surfaces at equal depths may
/// hide each other in another order.) Then half-transparent plots and volumes are drawn behind nothing that is opaque
/// in any process, and blended in the order in which the boxes of the processes lie before each other
/// (VisibilityOrder). Glyphs that reach beyond the box of their process are blended with it. Process 0 draws axes,
/// legends and notes, of its figure, once. The camera is that of process 0.
///
/// Images: as `Figure::Image`, with half-transparent plots at twice the size. Memory for the image: about 70 bytes a
/// pixel, and in process 0 as many again.
///
/// \snippet ParallelSnippets.cpp Compositor
/// \ingroup parallel
class VEK_PARALLEL_API Compositor {
public:
  /// Collective; a communicator will do.
  explicit Compositor(const Processes& p_processes);
  ~Compositor();
  Compositor(const Compositor&) = delete;
  Compositor& operator=(const Compositor&) = delete;

  /// Collective. Needs a QGuiApplication, as Figure::Layout does. A figure without plots, or with a plot of no
  /// elements, has nothing to draw.
  ///
  /// Throws ProcessError in all processes if one of them fails.
  ///
  /// \param p_figure with the share of this process; released afterwards
  /// \param p_block the box of that share in data units, which others may touch but not overlap; empty for none. Only
  ///   the order of half-transparent plots depends on it.
  /// \param p_size in pixels
  /// \param p_samples of a pixel
  /// \return the image in process 0, a null image in the others
  QImage Image(Scene::Figure& p_figure, const Types::BoundingBox_Base<double>& p_block,
               Types::Size p_size = {1200, 800}, int p_samples = 4) const;

  /// The processes.
  const Processes& Group() const { return _processes; }

private:
  struct Engine;
  Processes _processes;
  std::unique_ptr<Engine> _engine;
};

} // namespace Vek::Chart::Parallel

#pragma once

#include "examples/scene/Scene.h"

#include <QComboBox>
#include <QToolBar>

#include <vector>

namespace Vek::Chart::Viewer {

/// The choices that some scenes offer: by which colour map values are coloured, and by which glyph they are shown. Each
/// is there only for a scene that has it, and begins with the scene's own.
class Choosers : public QToolBar {
  Q_OBJECT
public:
  explicit Choosers(QWidget* p_parent = nullptr);

  /// Offers what the scene has; null: nothing. Nobody is told of that.
  void Offer(const Gallery::Scene* p_scene);

signals:
  /// An empty list for the scene's own.
  void ColorsChosen(const std::vector<QColor>& p_colors);
  void ShapeChosen(std::size_t p_index);

private:
  QComboBox* AddChooser(const QString& p_label, const QString& p_name, QList<QAction*>& p_actions);

  QList<QAction*> _colorActions; ///< the label and its box, which appear and go together
  QList<QAction*> _shapeActions;
  QComboBox* _colors;
  QComboBox* _shapes;
};

} // namespace Vek::Chart::Viewer

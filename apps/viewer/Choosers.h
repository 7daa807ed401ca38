#pragma once

#include "apps/gallery/Picture.h"

#include <QComboBox>
#include <QToolBar>

#include <vector>

namespace Vek::Chart::Viewer {

/// The choices that some pictures offer: by which colour map values are coloured, and by which glyph they are shown.
/// Each is there only for a picture that has it, and begins with the picture's own.
class Choosers : public QToolBar {
  Q_OBJECT
public:
  explicit Choosers(QWidget* p_parent = nullptr);

  /// Offers what the picture has; null: nothing. Nobody is told of that.
  void Offer(const Gallery::Picture* p_picture);

signals:
  /// An empty list for the picture's own.
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

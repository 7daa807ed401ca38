#pragma once

#include "platform/types/Size.h"

#include <QCheckBox>
#include <QDialog>
#include <QSpinBox>

namespace Vek::Chart::Viewer {

/// Asks how large an image is to be, and whether it has a background. The file is asked for afterwards.
class SaveDialog : public QDialog {
  Q_OBJECT
public:
  /// With a size to start from.
  explicit SaveDialog(Types::Size p_size, QWidget* p_parent = nullptr);

  Types::Size Size() const { return {_width->value(), _height->value()}; }
  bool IsTransparent() const { return _isTransparent->isChecked(); }

private:
  QSpinBox* _width;
  QSpinBox* _height;
  QCheckBox* _isTransparent;
};

} // namespace Vek::Chart::Viewer

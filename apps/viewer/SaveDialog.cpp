#include "apps/viewer/SaveDialog.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QPushButton>

#include <algorithm>

namespace Vek::Chart::Viewer {

SaveDialog::SaveDialog(Types::Size p_size, QWidget* p_parent)
    : QDialog(p_parent)
    , _width(new QSpinBox(this))
    , _height(new QSpinBox(this))
    , _isTransparent(new QCheckBox("Without background", this)) {
  setWindowTitle("Save image");
  constexpr int Least = 64, Most = 8192;
  for (QSpinBox* const side : {_width, _height}) {
    side->setRange(Least, Most);
    side->setSuffix(" pixels");
  }
  _width->setObjectName("width");
  _height->setObjectName("height");
  _isTransparent->setObjectName("transparent");
  _width->setValue(p_size.width);
  _height->setValue(p_size.height);
  _isTransparent->setToolTip("PNG files only; PDF files keep it");
  auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Save | QDialogButtonBox::Cancel, this);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  auto* const rows = new QFormLayout(this);
  rows->addRow("Width", _width);
  rows->addRow("Height", _height);
  rows->addRow(_isTransparent);
  rows->addRow(buttons);
}

} // namespace Vek::Chart::Viewer

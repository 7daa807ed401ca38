#include "apps/viewer/RawDialog.h"

#include <QDialogButtonBox>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QPushButton>

#include <algorithm>
#include <cmath>

namespace Vek::Chart::Viewer {

namespace {

constexpr std::array<int, 8> TypeBytes{1, 1, 2, 2, 4, 4, 4, 8}; ///< in the order of Io::Volume::Type

template <class Box>
QWidget* RowOf(const std::array<Box*, 3>& p_boxes) {
  auto* const widget = new QWidget;
  auto* const row = new QHBoxLayout(widget);
  row->setContentsMargins(0, 0, 0, 0);
  for (Box* const box : p_boxes)
    row->addWidget(box);
  return widget;
}

} // namespace

RawDialog::RawDialog(const QString& p_path, QWidget* p_parent)
    : QDialog(p_parent)
    , _fileBytes(static_cast<double>(QFileInfo(p_path).size()))
    , _isCompressed(p_path.endsWith(".gz", Qt::CaseInsensitive))
    , _channels(new QSpinBox(this))
    , _header(new QSpinBox(this))
    , _type(new QComboBox(this))
    , _isBigEndian(new QCheckBox("Most significant byte first", this))
    , _bytes(new QLabel(this)) {
  setWindowTitle(QFileInfo(p_path).fileName());
  constexpr int MostVoxels = 1 << 16, MostChannels = 16, MostHeader = 1 << 30;
  constexpr double MostSpacing = 1e6, LeastSpacing = 1e-6;
  const int side = std::max(static_cast<int>(std::cbrt(_fileBytes)), 1); // of a cube of bytes
  const auto changed = QOverload<int>::of(&QSpinBox::valueChanged);
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const QString name(QChar('x' + static_cast<int>(axis)));
    _size[axis] = new QSpinBox(this);
    _size[axis]->setObjectName(name);
    _size[axis]->setRange(1, MostVoxels);
    _size[axis]->setValue(side);
    connect(_size[axis], changed, this, &RawDialog::Check);
    _spacing[axis] = new QDoubleSpinBox(this);
    _spacing[axis]->setRange(LeastSpacing, MostSpacing);
    _spacing[axis]->setDecimals(6);
    _spacing[axis]->setValue(1);
  }
  _type->addItems({"8 bits", "8 bits with sign", "16 bits", "16 bits with sign", "32 bits", "32 bits with sign",
                   "float", "double"});
  _type->setObjectName("type");
  _channels->setRange(1, MostChannels);
  _header->setObjectName("header");
  _isBigEndian->setObjectName("bigEndian");
  _header->setRange(0, MostHeader);
  _header->setSuffix(" bytes");
  connect(_type, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &RawDialog::Check);
  connect(_channels, changed, this, &RawDialog::Check);
  connect(_header, changed, this, &RawDialog::Check);
  auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Open | QDialogButtonBox::Cancel, this);
  _open = buttons->button(QDialogButtonBox::Open);
  _open->setObjectName("open");
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  auto* const rows = new QFormLayout(this);
  rows->addRow("Voxels along x, y, z", RowOf(_size));
  rows->addRow("Spacing", RowOf(_spacing));
  rows->addRow("Values", _type);
  rows->addRow(_isBigEndian);
  rows->addRow("Values of a voxel", _channels);
  rows->addRow("Header", _header);
  rows->addRow(_bytes);
  rows->addRow(buttons);
  Check();
}

Io::RawLayout RawDialog::Layout() const {
  Io::RawLayout layout;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    layout.size[axis] = static_cast<std::size_t>(_size[axis]->value());
    layout.spacing[axis] = _spacing[axis]->value();
  }
  layout.type = static_cast<Io::Volume::Type>(_type->currentIndex());
  layout.channels = static_cast<std::size_t>(_channels->value());
  layout.bigEndian = _isBigEndian->isChecked();
  layout.headerBytes = static_cast<std::uint64_t>(_header->value());
  return layout;
}

void RawDialog::Check() {
  if (_open == nullptr)
    return;
  double bytes = TypeBytes[static_cast<std::size_t>(_type->currentIndex())] * static_cast<double>(_channels->value());
  for (const QSpinBox* size : _size)
    bytes *= size->value();
  bytes += _header->value();
  _bytes->setText(QString("%L1 bytes of %L2%3")
                      .arg(bytes, 0, 'f', 0)
                      .arg(_fileBytes, 0, 'f', 0)
                      .arg(_isCompressed ? " compressed ones" : ""));
  _open->setEnabled(_isCompressed || bytes <= _fileBytes);
}

} // namespace Vek::Chart::Viewer

#pragma once

#include "io/ReadVolume.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QSpinBox>

#include <array>

namespace Vek::Chart::Viewer {

/// Asks what a file of raw values holds. Accepts only what fits into the file, unless that is compressed.
class RawDialog : public QDialog {
  Q_OBJECT
public:
  explicit RawDialog(const QString& p_path, QWidget* p_parent = nullptr);

  Io::RawLayout Layout() const;

private:
  /// Compares the layout with the file.
  void Check();

  double _fileBytes;
  bool _isCompressed;
  std::array<QSpinBox*, 3> _size{};
  std::array<QDoubleSpinBox*, 3> _spacing{};
  QSpinBox* _channels;
  QSpinBox* _header;
  QComboBox* _type;
  QCheckBox* _isBigEndian;
  QLabel* _bytes;
  QPushButton* _open = nullptr;
};

} // namespace Vek::Chart::Viewer

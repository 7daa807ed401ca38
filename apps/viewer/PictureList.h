#pragma once

#include "apps/viewer/ShownPicture.h"

#include <QListWidget>

#include <optional>

namespace Vek::Chart::Viewer {

/// What can be shown, one row each: the name, and two lines of its caption, which a tip shows as a whole. Below the
/// pictures of the gallery follow the files that were opened.
class PictureList : public QListWidget {
  Q_OBJECT
public:
  explicit PictureList(QWidget* p_parent = nullptr);

  int Add(const ShownPicture& p_picture);
  const ShownPicture& At(int p_row) const { return _pictures[static_cast<std::size_t>(p_row)]; }
  /// The row of that caption, which is unlike all others; −1 when there is none.
  int Find(const std::string& p_caption) const;
  /// Selects a row without telling anyone.
  void Mark(int p_row);

signals:
  /// The user wants to see it.
  void Chosen(int p_row);

private:
  std::vector<ShownPicture> _pictures;
};

} // namespace Vek::Chart::Viewer

#pragma once

#include "examples/viewer/ShownScene.h"

#include <QListWidget>

#include <optional>

namespace Vek::Chart::Viewer {

/// What can be shown, one row each: the name, and two lines of its caption, which a tip shows as a whole. Below the
/// scenes of the gallery follow the files that were opened.
class SceneList : public QListWidget {
  Q_OBJECT
public:
  explicit SceneList(QWidget* p_parent = nullptr);

  int Add(const ShownScene& p_scene);
  const ShownScene& At(int p_row) const { return _scenes[static_cast<std::size_t>(p_row)]; }
  /// The row of that caption, which is unlike all others; −1 when there is none.
  int Find(const std::string& p_caption) const;
  /// Selects a row without telling anyone.
  void Mark(int p_row);

signals:
  /// The user wants to see it.
  void Chosen(int p_row);

private:
  std::vector<ShownScene> _scenes;
};

} // namespace Vek::Chart::Viewer

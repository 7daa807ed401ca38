#include "apps/gallery/PictureFunctions.h"

#include <QFileInfo>

namespace Vek::Chart::Gallery {

QString NameOfFile(const std::string& p_path) {
  return QFileInfo(QString::fromStdString(p_path)).fileName();
}

QString VolumeName(const std::string& p_path, const VoxelGrid& p_volume) {
  const auto [x, y, z] = p_volume.Size();
  return QString("%1, %2 × %3 × %4 voxels").arg(NameOfFile(p_path)).arg(x).arg(y).arg(z);
}

QString ValueTitle(const VoxelGrid& p_volume) {
  const QString name = p_volume.name.isEmpty() ? QString("Value") : p_volume.name;
  return p_volume.unit.isEmpty() ? name : name + " in " + p_volume.unit;
}

} // namespace Vek::Chart::Gallery

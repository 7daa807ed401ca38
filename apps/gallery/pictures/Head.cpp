// A volume that is looked through: a CT of a head, or a volume of the user's own.

#include "apps/gallery/PictureFunctions.h"

#include "io/ReadVolume.h"

namespace Vek::Chart::Gallery {

Figure HeadFigure(const Inputs& p_inputs) {
  if (!p_inputs.volume.empty()) {
    const VoxelGrid volume = Io::ReadVolume(p_inputs.volume);
    Figure figure("A volume, looked through", VolumeName(p_inputs.volume, volume));
    figure.Volume(volume).ColorTitle(ValueTitle(volume));
    return figure;
  }
  const VoxelGrid head = Io::ReadVolume(p_inputs.head);
  Figure figure("CT of a head", "Skin and bone; the soft tissue between them is left out");
  figure.SetAxisTitles("x in mm", "y in mm", "z in mm").SetLimits(0, -90, 90).SetLimits(1, -100, 100).Look(215, 10);
  figure.Volume(head)
      .OpacityBy({{250, 0}, {450, 0.3}, {650, 0}, {1150, 0}, {1350, 0.1}, {2000, 0.5}})
      .LayerThickness(0.01)
      .ColorMap({QColor(0xC98A70), QColor(0xD89A7C), QColor(0xC46A50), QColor(0xF0DFC0), QColor(0xFFFFFF)})
      .ColorRange(200, 2600)
      .ColorTitle("Scanner units");
  return figure;
}

} // namespace Vek::Chart::Gallery

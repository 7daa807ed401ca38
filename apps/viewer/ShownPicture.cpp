#include "apps/viewer/ShownPicture.h"

namespace Vek::Chart::Viewer {

ShownPicture GalleryPicture(const Gallery::PictureEntry& p_entry, const Gallery::Inputs& p_inputs) {
  return {p_entry.name, p_entry.caption, p_entry.truePixels,
          [load = p_entry.load, p_inputs](Gallery::Loading& p_loading) { return load(p_inputs, p_loading); }};
}

} // namespace Vek::Chart::Viewer

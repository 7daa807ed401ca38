#include "platform/assets/Resource.h"

namespace Vek::Chart::Assets {

Resource::Resource(const vekfile::filepath& p_folder)
    : _folder(p_folder) {}

Resource::~Resource() = default;

vekfile::filepath Resource::ImageFile(const std::string& p_name) const {
  return _folder + vekfile::filepath(p_name + ".png");
}

} // namespace Vek::Chart::Assets

#pragma once

#include "apps/gallery/Picture.h"

#include <filesystem>
#include <string>
#include <vector>

namespace Vek::Chart::Gallery {

/// An HTML page without files of others: a grid of the pictures NAME.png with title and caption. A click shows one in
/// the size of the window, where the arrow keys turn the pages; without scripts it opens the file. A source is linked
/// as sources/FILE if `p_hasSources`, otherwise it is named.
std::string IndexPage(const std::vector<PictureEntry>& p_entries, bool p_hasSources);

/// Copies the sources of pictures from a data folder (see DataFolder) to `p_out`/sources, and returns whether they
/// all are there: an installation may lack them.
bool CopySources(const std::vector<PictureEntry>& p_entries, const std::filesystem::path& p_folder,
                 const std::filesystem::path& p_out);

} // namespace Vek::Chart::Gallery

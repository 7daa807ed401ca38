#pragma once

#include "library/VolumeImage.h"
#include "platform/file/FilePath.h"

#include <boost/shared_ptr.hpp>

#include <iosfwd>

namespace Vek::Chart::Library::Private {

// The loader of TextArray files; see VolumeImage::LoadFromFile for what is read and reported.

boost::shared_ptr<VolumeImage> LoadTextArray(const vekfile::filepath& p_filename);
boost::shared_ptr<VolumeImage> LoadTextArray(std::istream& p_stream);

} // namespace Vek::Chart::Library::Private

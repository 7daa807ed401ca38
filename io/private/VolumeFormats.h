#pragma once

#include "io/ReadVolume.h"
#include "io/private/ByteSource.h"

#include <functional>
#include <string>
#include <string_view>

namespace Vek::Chart::Io::Private {

// Readers of volumes, one a format; see ReadVolume.

bool IsNrrd(std::string_view p_start);
bool IsNifti(std::string_view p_start);

Volume ReadNrrd(PeekSource& p_source, const std::string& p_name, const VolumeOptions& p_options,
                Utility::Threads p_threads);
Volume ReadNifti(PeekSource& p_source, const std::string& p_name, const VolumeOptions& p_options,
                 Utility::Threads p_threads);

Volume ReadNetCdfVolume(std::istream& p_stream, const std::string& p_name, const VolumeOptions& p_options);

/// Whether there is a file p_other in the folder of the file p_name.
bool ExistsBeside(const std::string& p_name, const std::string& p_other);
/// Calls p_read with that file and its path. Throws FileError if it cannot be opened.
void WithFileBeside(const std::string& p_name, const std::string& p_other, const Progress& p_progress,
                    const std::function<void(ByteSource&, const std::string& p_path)>& p_read);

} // namespace Vek::Chart::Io::Private

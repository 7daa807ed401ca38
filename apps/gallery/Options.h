#pragma once

#include "apps/gallery/CommandLine.h"
#include "apps/gallery/Picture.h"

#include "platform/types/Size.h"

#include <string>
#include <vector>

namespace Vek::Chart::Gallery {

/// What the command line asks for.
struct Options {
  bool help = false;
  std::string out = "gallery";
  std::vector<std::string> only; ///< names of pictures; empty for all
  Types::Size size{1600, 1000};
  std::string data; ///< the folder with the gallery's own files; empty for the one that belongs to the program
  Inputs inputs;
};

/// Reads the arguments after the program's name; `p_defaults` holds what they do not set. Throws UsageError.
Options ParseOptions(const std::vector<std::string>& p_arguments, const Options& p_defaults);
/// A step of time, from 0. Throws UsageError.
std::size_t ParseTime(const std::string& p_text);
/// The text that --help prints.
std::string HelpText();

} // namespace Vek::Chart::Gallery

#pragma once

#include "scene/Figure.h"

#include "platform/types/Size.h"

#include <QImage>

#include <cstddef>
#include <string>
#include <vector>

namespace Vek::Chart::Gallery {

using namespace Scene;

/// The files that pictures read.
struct Inputs {
  std::string winds;
  std::string relief;
  std::string quakes;
  std::string symbols;  ///< the folder of the built-in glyph models
  std::string salinity; ///< of the ocean, a TextArray volume
  std::string head;     ///< a CT of a head, NRRD
  std::string volume;   ///< a volume of the user's; may be empty
  std::string hdr;      ///< an image with high dynamic range
  std::string sprites;  ///< the folder of the point sprites
  std::string model;    ///< a mesh of the user's; may be empty
  std::string flow;     ///< a vector grid of the user's; may be empty
  std::size_t time = 0; ///< the step of winds in a file with several
  std::string folder;   ///< the gallery's own, with data/, symbols/ and sprites/

  /// Whether a file is the gallery's own, so that its contents are known.
  bool IsOwn(const std::string& p_path) const {
    return !folder.empty() && p_path.compare(0, folder.size(), folder) == 0;
  }
};

/// How a picture is listed.
struct PictureEntry {
  std::string name;    ///< of the picture file, and of the option --only
  std::string title;   ///< a few words
  std::string caption; ///< one or two sentences for the reader of the gallery
  std::string source;  ///< the file that makes it, from the root of the project
  /// The figure of a picture that is one. Needs no GL. Throws std::runtime_error, one line, for a file that is not what
  /// the picture needs.
  Scene::Figure (*figure)(const Inputs& p_inputs) = nullptr;
  /// A picture that is made of parts or of several figures, at a size. Throws as `figure`.
  QImage (*image)(const Inputs& p_inputs, Types::Size p_size) = nullptr;
};

/// All pictures, in the order of the gallery.
const std::vector<PictureEntry>& Pictures();

} // namespace Vek::Chart::Gallery

#pragma once

#include "platform/types/Range.h"
#include "platform/types/Size.h"

#include <QString>
#include <QStringList>

#include <array>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace Vek::Chart::Apps {

/// What vek-parallel draws, as its command line states it.
struct FieldOptions {
  enum class Kind { Arrows, Slices, Volume };

  std::string path;                           ///< of the NetCDF file
  QString image;                              ///< of the image, to be written
  Kind kind = Kind::Arrows;                   ///< what is drawn
  std::vector<std::string> variables;         ///< of the file; empty for those that are found
  std::size_t time = 0;                       ///< the step
  std::size_t every = 0;                      ///< every k-th arrow along each axis; 0 for as many as are legible
  std::vector<std::pair<int, double>> slices; ///< axes and positions; empty for the middle of each axis
  Types::Size size{1200, 800};
  std::string colorMap = "viridis";
  Types::MinMax_Base<double> range; ///< of the colours; empty for all values
  std::array<double, 2> look{-30, 30};
  double opacity = 1;
  QString title;
  bool isHelp = false;
};

/// Reads the arguments of the program, its name first. Throws std::invalid_argument with what was expected.
FieldOptions ParseOptions(const QStringList& p_arguments);
/// The options, line by line.
QString HelpText();

} // namespace Vek::Chart::Apps

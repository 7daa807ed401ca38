#include "apps/gallery/Options.h"

#include "apps/gallery/FormatHelp.h"

#include <algorithm>
#include <charconv>

namespace Vek::Chart::Gallery {

namespace {

int ParseSide(const std::string& p_text) {
  constexpr int Largest = 4096;
  int side = 0;
  const auto [end, error] = std::from_chars(p_text.data(), p_text.data() + p_text.size(), side);
  const bool whole = error == std::errc() && end == p_text.data() + p_text.size();
  return whole && side >= 16 && side <= Largest ? side : 0;
}

Types::Size ParseSize(const std::string& p_text) {
  const std::size_t cross = std::min(p_text.find('x'), p_text.size());
  const Types::Size size(ParseSide(p_text.substr(0, cross)),
                         ParseSide(p_text.substr(std::min(cross + 1, p_text.size()))));
  if (size.width == 0 || size.height == 0)
    throw UsageError("--size takes WIDTHxHEIGHT with sides from 16 to 4096, not '" + p_text + "'");
  return size;
}

std::string CheckedName(const std::string& p_name) {
  std::string names;
  for (const PictureEntry& entry : Pictures()) {
    if (entry.name == p_name)
      return p_name;
    names += (names.empty() ? "" : ", ") + entry.name;
  }
  throw UsageError("there is no picture '" + p_name + "'; there are: " + names);
}

/// An option and what it does with its value.
struct Option {
  const char* name;
  const char* value;
  const char* help;
  void (*take)(Options&, const std::string&);
};

constexpr Option AllOptions[] = {
    {"out", "DIR", "where the pictures and index.html go (gallery)",
     [](Options& p_options, const std::string& p_value) { p_options.out = p_value; }},
    {"only", "NAME", "make this picture only; may be given again",
     [](Options& p_options, const std::string& p_value) { p_options.only.push_back(CheckedName(p_value)); }},
    {"size", "WxH", "pixels of a picture (1600x1000)",
     [](Options& p_options, const std::string& p_value) { p_options.size = ParseSize(p_value); }},
    {"data", "FOLDER", "the folder with data/, symbols/ and sprites/ (found from the program's own place)",
     [](Options& p_options, const std::string& p_value) { p_options.data = p_value; }},
    {"winds", "FILE",
     "winds of your own: columns lon,lat,u,v or longitude,latitude,dir,speed (dir: where from), or "
     "NetCDF",
     [](Options& p_options, const std::string& p_value) { p_options.inputs.winds = p_value; }},
    {"time", "STEP", "the step of time in a NetCDF file of winds, from 0",
     [](Options& p_options, const std::string& p_value) { p_options.inputs.time = ParseTime(p_value); }},
    {"quakes", "FILE", "earthquakes of your own: a table with the columns lon,lat,depth_km,mag",
     [](Options& p_options, const std::string& p_value) { p_options.inputs.quakes = p_value; }},
    {"relief", "FILE",
     "heights for the maps and the surface: \"nx ny x0 dx y0 dy\", then ny rows of nx metres; an ESRI ASCII grid; a "
     "table with the columns lon,lat,height; or NetCDF",
     [](Options& p_options, const std::string& p_value) { p_options.inputs.relief = p_value; }},
    {"hdr", "FILE", "a panorama of your own: Radiance, PFM or OpenEXR",
     [](Options& p_options, const std::string& p_value) { p_options.inputs.hdr = p_value; }},
    {"volume", "FILE", "a volume of your own: NRRD, NIfTI, NetCDF or TextArray",
     [](Options& p_options, const std::string& p_value) { p_options.inputs.volume = p_value; }},
    {"model", "FILE", "a mesh of your own, shown among the symbols: OBJ, PLY, STL or glTF",
     [](Options& p_options, const std::string& p_value) { p_options.inputs.model = p_value; }},
    {"flow", "FILE",
     "a flow in space of your own: a table with the columns x,y,z,u,v,w; \"# dims nx ny nz origin x y z spacing dx dy "
     "dz\", then a table with the columns u,v,w, x fastest; or NetCDF",
     [](Options& p_options, const std::string& p_value) { p_options.inputs.flow = p_value; }},
};

} // namespace

std::size_t ParseTime(const std::string& p_text) {
  std::size_t time = 0;
  const auto [end, error] = std::from_chars(p_text.data(), p_text.data() + p_text.size(), time);
  if (error != std::errc() || end != p_text.data() + p_text.size())
    throw UsageError("--time takes a step from 0, not '" + p_text + "'");
  return time;
}

Options ParseOptions(const std::vector<std::string>& p_arguments, const Options& p_defaults) {
  std::vector<CommandLine::Option> known;
  for (const Option& option : AllOptions)
    known.push_back({option.name, option.value});
  const CommandLine line(p_arguments, known);
  if (!line.Files().empty())
    throw UsageError("unknown option '" + line.Files().front() + "'; --help lists what there is");
  Options options = p_defaults;
  options.help = line.Help();
  for (const Option& option : AllOptions)
    for (const std::string& value : line.Values(option.name))
      option.take(options, value);
  return options;
}

std::string HelpText() {
  std::string text = "Usage: vek-gallery [option...]\n"
                     "Draws the pictures of the gallery off-screen and writes them with an index.html.\n\n";
  const auto add = [&text](const std::string& p_option, const std::string& p_help) {
    text += "  " + p_option + std::string(std::max<std::size_t>(20, p_option.size() + 1) - p_option.size(), ' ') +
            p_help + "\n";
  };
  for (const Option& option : AllOptions)
    add("--" + std::string(option.name) + " " + option.value, option.help);
  add("--help", "this text");
  text += "\nPictures:\n";
  for (const PictureEntry& entry : Pictures())
    add(entry.name, entry.source);
  return text + FormatHelp();
}

} // namespace Vek::Chart::Gallery

#include "library/private/io/ObjMaterials.h"

#include "library/private/io/ByteSource.h"
#include "library/private/io/NumberText.h"
#include "library/private/io/ObjSceneReader.h"

#include <boost/lexical_cast.hpp>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace Vek::Chart::Library::Private {

namespace {

namespace fs = std::filesystem;
using Material = ObjScene::Material;

constexpr std::size_t LongestLine = 65536;
constexpr std::size_t MostMaterials = 65536;

constexpr std::string_view Blanks = " \t\r\v\f";

std::string_view Trimmed(std::string_view p_text) {
  const std::size_t first = p_text.find_first_not_of(Blanks);
  return first == std::string_view::npos ? std::string_view()
                                         : p_text.substr(first, p_text.find_last_not_of(Blanks) + 1 - first);
}

/// Takes the first word off a trimmed text.
std::string_view TakeWord(std::string_view& p_text) {
  const std::string_view word = p_text.substr(0, p_text.find_first_of(Blanks));
  p_text = Trimmed(p_text.substr(word.size()));
  return word;
}

bool ToFloat(std::string_view p_text, float& p_value) {
  try {
    p_value = static_cast<float>(DoubleFromText(p_text));
    return true;
  } catch (const boost::bad_lexical_cast&) {
    return false;
  }
}

/// One number is that of all three components.
bool ReadColor(std::string_view p_text, std::array<float, 3>& p_color) {
  std::array<float, 3> color{};
  if (!ToFloat(TakeWord(p_text), color[0]))
    return false;
  color[1] = color[2] = color[0];
  if (!p_text.empty() && !(ToFloat(TakeWord(p_text), color[1]) && ToFloat(TakeWord(p_text), color[2])))
    return false;
  p_color = color;
  return true;
}

bool ReadOpacity(std::string_view p_text, float& p_opacity) {
  if (p_text.substr(0, 5) == "-halo")
    TakeWord(p_text);
  return ToFloat(TakeWord(p_text), p_opacity);
}

/// Takes the options in front of the name of a texture. Those with up to three numbers have at least one.
void TakeTextureOptions(std::string_view& p_text) {
  struct Option {
    std::string_view name;
    int least;
    int most;
  };
  constexpr Option Options[] = {{"-blendu", 1, 1}, {"-blendv", 1, 1},    {"-bm", 1, 1},      {"-boost", 1, 1},
                                {"-cc", 1, 1},     {"-clamp", 1, 1},     {"-imfchan", 1, 1}, {"-mm", 2, 2},
                                {"-o", 1, 3},      {"-s", 1, 3},         {"-t", 1, 3},       {"-texres", 1, 1},
                                {"-type", 1, 1},   {"-colorspace", 1, 1}};
  for (;;) {
    std::string_view rest = p_text;
    const std::string_view name = TakeWord(rest);
    const auto option = std::find_if(std::begin(Options), std::end(Options),
                                     [&](const Option& p_option) { return p_option.name == name; });
    if (option == std::end(Options))
      return;
    for (int i = 0; i < option->most; ++i) {
      std::string_view after = rest;
      float number = 0;
      const bool isNumber = ToFloat(TakeWord(after), number);
      if (i >= option->least && !isNumber)
        break;
      rest = after;
    }
    p_text = rest;
  }
}

struct TextureLine {
  std::string_view name;
  std::string Material::*texture;
};
constexpr TextureLine Textures[] = {
    {"map_Ka", &Material::ambientTexture},  {"map_Kd", &Material::diffuseTexture},
    {"map_Ks", &Material::specularTexture}, {"map_Ke", &Material::emissionTexture},
    {"map_d", &Material::opacityTexture},   {"map_bump", &Material::bumpTexture},
    {"map_Bump", &Material::bumpTexture},   {"bump", &Material::bumpTexture},
    {"norm", &Material::bumpTexture},       {"map_kd", &Material::diffuseTexture},
    {"map_ka", &Material::ambientTexture},  {"map_ks", &Material::specularTexture},
    {"map_ke", &Material::emissionTexture}, {"map_D", &Material::opacityTexture},
};

struct ColorLine {
  std::string_view name;
  std::array<float, 3> Material::*color;
};
constexpr ColorLine Colors[] = {
    {"Ka", &Material::ambient}, {"Kd", &Material::diffuse}, {"Ks", &Material::specular}, {"Ke", &Material::emission}};

/// Reads a line of a material; returns what is wrong with it, or nothing. Lines with another keyword are ignored.
std::string ReadLine(const std::string& p_path, std::string_view p_name, std::string_view p_rest,
                     Material& p_material) {
  for (const ColorLine& line : Colors)
    if (line.name == p_name && !ReadColor(p_rest, p_material.*line.color))
      return "expected a colour";
  for (const TextureLine& line : Textures) {
    if (line.name != p_name)
      continue;
    TakeTextureOptions(p_rest);
    std::string path = FindBeside(p_path, p_rest);
    if (path.empty())
      return "there is no texture \"" + std::string(p_rest.substr(0, 255)) + "\"";
    p_material.*line.texture = std::move(path);
  }
  if (p_name == "Ns" && !ToFloat(p_rest, p_material.shininess))
    return "expected a number";
  if (p_name != "d" && p_name != "Tr")
    return {};
  float opacity = 0;
  if (!ReadOpacity(p_rest, opacity))
    return "expected a number";
  p_material.opacity = std::clamp(p_name == "d" ? opacity : 1 - opacity, 0.0f, 1.0f);
  return {};
}

} // namespace

std::string FindBeside(const std::string& p_path, std::string_view p_name) {
  constexpr std::size_t LongestName = 4096;
  if (p_name.empty() || p_name.size() > LongestName || p_name.find('\0') != std::string_view::npos)
    return {};
  std::string name(p_name);
  if (name.size() > 1 && name.front() == '"' && name.back() == '"')
    name = name.substr(1, name.size() - 2);
  std::replace(name.begin(), name.end(), '\\', '/');
  const fs::path folder = fs::path(p_path).parent_path();
  std::error_code ignored;
  for (const fs::path& path : {folder / name, folder / fs::path(name).filename()})
    if (fs::is_regular_file(path, ignored))
      return path.string();
  return {};
}

std::vector<Material> ReadObjMaterials(const std::string& p_path, ObjWarnings& p_warnings) {
  std::ifstream file(p_path, std::ios::binary);
  ByteSource source(file, p_path);
  std::vector<Material> materials;
  std::uint64_t number = 0;
  if (!file)
    p_warnings.Add(p_path, number, "the file cannot be opened");
  for (std::string text; source.GetLine(text, LongestLine);) {
    ++number;
    std::string_view line = Trimmed(text);
    if (number == 1 && line.substr(0, 3) == "\xEF\xBB\xBF")
      line = Trimmed(line.substr(3));
    const std::string_view name = TakeWord(line);
    if (text.size() > LongestLine || materials.size() > MostMaterials) {
      p_warnings.Add(p_path, number, "reading ends at a line longer than 64 KiB or behind 65536 materials");
      break;
    }
    if (name == "newmtl") {
      materials.emplace_back().name = line;
    } else if (!materials.empty() && !name.empty() && name.front() != '#') {
      const std::string fault = ReadLine(p_path, name, line, materials.back());
      if (!fault.empty())
        p_warnings.Add(p_path, number, fault);
    }
  }
  return materials;
}

} // namespace Vek::Chart::Library::Private

#include "io/private/ImageFormats.h"

#include "io/FileError.h"
#include "io/private/VolumeValues.h"
#include "io/private/Words.h"

#include <cmath>
#include <utility>

namespace Vek::Chart::Io::Private {

namespace {

/// The words of a header of text, each with one blank behind it that belongs to the header, or two in lines that end in
/// CR LF. Comments behind '#' are no words.
class HeaderWords {
public:
  HeaderWords(PeekSource& p_source, const std::string& p_name)
      : _source(p_source)
      , _name(p_name) {}

  std::string Next() {
    constexpr std::size_t Longest = 64;
    std::string word;
    for (char c = 0; word.size() < Longest && _source.Read(&c, 1) == 1;) {
      const bool blank = c == ' ' || (c >= '\t' && c <= '\r');
      if (blank && !word.empty()) {
        _wordLine = _line;
        _isCrLf |= _line == 1 && c == '\r' && _source.Peek(1) == "\n";
        if (c == '\r' && _isCrLf && _source.Peek(1) == "\n")
          _source.Read(&c, 1);
      }
      _line += c == '\n' ? 1 : 0;
      if (blank && !word.empty())
        return word;
      if (word.empty() && c == '#')
        SkipLine();
      else if (!blank)
        word += c;
    }
    throw FileError(_name, _line, "a header of words", word);
  }
  template <class T>
  T Number(const char* p_expected) {
    const std::string word = Next();
    const std::optional<T> number = Parsed<T>(WithoutPlus(word));
    if (!number || *number == 0)
      throw FileError(_name, _wordLine, p_expected, word);
    return *number;
  }

private:
  void SkipLine() {
    for (char c = 0; c != '\n' && _source.Read(&c, 1) == 1;)
      _line += c == '\n' ? 1 : 0;
  }

  PeekSource& _source;
  const std::string& _name;
  std::size_t _line = 1;
  std::size_t _wordLine = 1;
  bool _isCrLf = false; ///< the first line ends so
};

} // namespace

Image ReadPfm(PeekSource& p_source, const std::string& p_name) {
  HeaderWords words(p_source, p_name);
  const std::string kind = words.Next();
  if (kind != "PF" && kind != "Pf")
    throw FileError(p_name, 1, "PF or Pf", kind);
  ValueLayout layout;
  layout.channels = kind == "PF" ? 3 : 1;
  layout.size[0] = words.Number<std::uint32_t>("a width");
  layout.size[1] = words.Number<std::uint32_t>("a height");
  const double scale = words.Number<double>("a scale other than 0");
  ValueFormat format;
  format.type = Stored::Float32;
  format.bigEndian = scale > 0;
  Volume volume;
  ReadValues(p_source, format, layout, 0, p_name, Utility::Threads::All(), volume);
  Image image;
  image.width = volume.size[0];
  image.height = volume.size[1];
  image.channels = volume.channels;
  if (image.channels == 3)
    image.channelNames = {"R", "G", "B"};
  else
    image.channelNames = {"Y"};
  image.pixels = std::get<std::vector<float>>(std::move(volume.values));
  image.values["scale"] = NumberText(std::abs(scale));
  return image;
}

} // namespace Vek::Chart::Io::Private

#include "io/private/NrrdHeader.h"

#include "io/FileError.h"
#include "io/private/NrrdWords.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace Vek::Chart::Io::Private {

namespace {

using Header = NrrdHeader;

constexpr std::size_t MostAxes = 16;
constexpr std::size_t MostFiles = 65536;
constexpr std::size_t LongestLine = std::size_t{1} << 20;

/// Reads the lines of a header, each by a function of its own.
class Parser {
public:
  Parser(Header& p_header, PeekSource& p_source, const std::string& p_name)
      : _header(p_header)
      , _source(p_source)
      , _name(p_name) {}

  void Read();

private:
  using Field = void (Parser::*)();
  static Field FieldOf(const std::string& p_keyword);

  bool NextLine();
  void ReadField();
  void Check() const;
  [[noreturn]] void Fail(const std::string& p_expected, std::string_view p_found) const {
    throw FileError(_name, _header.lines, p_expected, p_found);
  }
  template <class T>
  T Number(std::string_view p_word) const {
    const std::optional<T> number = Parsed<T>(p_word);
    if (!number)
      Fail(std::is_integral_v<T> ? "an integer" : "a number", p_word);
    return *number;
  }
  template <class Set>
  void EachAxis(const Set& p_set);
  Header::Vector Vector(std::string_view p_word) const;
  static void SetFinite(std::optional<double>& p_number, double p_value) {
    if (std::isfinite(p_value))
      p_number = p_value;
  }

  void Ignore() {}
  void Dimension();
  void Type();
  void Sizes();
  void Endian();
  void Encoding();
  void Spacings();
  void Least();
  void Most();
  void Centers();
  void Kinds();
  void Units();
  void LineSkip() { _header.lineSkip = Number<std::uint64_t>(_value); }
  void ByteSkip();
  void Content() { _header.content = std::string(_value); }
  void SampleUnits() { _header.sampleUnit = Unquoted(_value); }
  void Space();
  void SpaceDimension();
  void SpaceUnits() { _header.spaceUnit = Unquoted(TakeWord(_value)); }
  void SpaceDirections();
  void SpaceOrigin();
  void DataFile();
  void DataFileList();
  void DataFilePattern(std::string_view p_pattern);

  Header& _header;
  PeekSource& _source;
  const std::string& _name;
  std::string _line;
  std::string_view _value; ///< behind the colon
  bool _hasType = false;
  bool _hasEncoding = false;
  bool _hasEndian = false;
  bool _ended = false;
};

Parser::Field Parser::FieldOf(const std::string& p_keyword) {
  struct Row {
    std::string_view keyword;
    Field field;
  };
  static constexpr Row Rows[] = {
      {"dimension", &Parser::Dimension},
      {"type", &Parser::Type},
      {"sizes", &Parser::Sizes},
      {"endian", &Parser::Endian},
      {"encoding", &Parser::Encoding},
      {"spacings", &Parser::Spacings},
      {"axismins", &Parser::Least},
      {"axismaxs", &Parser::Most},
      {"centers", &Parser::Centers},
      {"centerings", &Parser::Centers},
      {"kinds", &Parser::Kinds},
      {"units", &Parser::Units},
      {"lineskip", &Parser::LineSkip},
      {"byteskip", &Parser::ByteSkip},
      {"content", &Parser::Content},
      {"sampleunits", &Parser::SampleUnits},
      {"space", &Parser::Space},
      {"spacedimension", &Parser::SpaceDimension},
      {"spaceunits", &Parser::SpaceUnits},
      {"spacedirections", &Parser::SpaceDirections},
      {"spaceorigin", &Parser::SpaceOrigin},
      {"datafile", &Parser::DataFile},
  };
  const auto row =
      std::find_if(std::begin(Rows), std::end(Rows), [&](const Row& p_row) { return p_row.keyword == p_keyword; });
  return row == std::end(Rows) ? &Parser::Ignore : row->field; // labels, thicknesses and what later versions add
}

bool Parser::NextLine() {
  if (!_source.GetLine(_line, LongestLine))
    return false;
  ++_header.lines;
  if (_line.size() > LongestLine)
    Fail("a line of at most 1 MiB", _line);
  return true;
}

void Parser::Read() {
  NextLine();
  const std::string magic = _line;
  if (magic.size() != 8 || magic.compare(0, 7, "NRRD000") != 0 || magic[7] < '1' || magic[7] > '5')
    Fail("NRRD0001 to NRRD0005", magic);
  while (!_ended && NextLine() && !Trimmed(_line).empty())
    if (_line.front() != '#')
      ReadField();
  Check();
}

void Parser::ReadField() {
  const std::size_t colon = _line.find(':');
  if (colon == std::string::npos)
    Fail("a field and a colon", _line);
  if (_line.compare(colon, 2, ":=") == 0) // a key of the user
    return;
  _value = Trimmed(std::string_view(_line).substr(colon + 1));
  (this->*FieldOf(Keyword(std::string_view(_line).substr(0, colon))))();
}

void Parser::Check() const {
  const auto need = [&](bool p_has, const char* p_field) {
    if (!p_has)
      throw FileError(_name, std::string("expected the field \"") + p_field + "\" in the header of " +
                                 std::to_string(_header.lines) + " lines, got none");
  };
  need(_hasType, "type");
  need(!_header.axes.empty(), "dimension");
  need(_header.axes.front().size != 0, "sizes");
  need(_hasEncoding, "encoding");
  const bool binary = _header.encoding != Header::Encoding::Text;
  need(_hasEndian || !binary || _header.format.Bytes() == 1, "endian");
}

/// Calls p_set with each axis and its word.
template <class Set>
void Parser::EachAxis(const Set& p_set) {
  if (_header.axes.empty())
    Fail("the field \"dimension\" before this one", _line);
  for (Header::Axis& axis : _header.axes) {
    const std::string_view word = TakeWord(_value);
    if (word.empty())
      Fail("values for " + std::to_string(_header.axes.size()) + " axes", _line);
    p_set(axis, word);
  }
}

void Parser::Dimension() {
  const std::uint64_t dimension = Number<std::uint64_t>(_value);
  if (dimension < 1 || dimension > MostAxes || !_header.axes.empty())
    Fail("one dimension from 1 to 16", _line);
  _header.axes.resize(std::size_t(dimension));
}

void Parser::Type() {
  const std::optional<Stored> type = NrrdType(Keyword(_value));
  if (!type)
    Fail("a type of integers or floats", _value);
  _header.format.type = *type;
  _hasType = true;
}

void Parser::Sizes() {
  EachAxis([&](Header::Axis& p_axis, std::string_view p_word) {
    p_axis.size = Number<std::uint64_t>(p_word);
    if (p_axis.size == 0)
      Fail("sizes of 1 or more", _line);
  });
}

void Parser::Endian() {
  const std::string order = Keyword(_value);
  if (order != "little" && order != "big")
    Fail("little or big", _value);
  _header.format.bigEndian = order == "big";
  _hasEndian = true;
}

void Parser::Encoding() {
  const std::optional<Header::Encoding> encoding = NrrdEncoding(Keyword(_value));
  if (!encoding)
    Fail("the encoding raw, ascii, hex or gzip", _value);
  _header.encoding = *encoding;
  _hasEncoding = true;
}

void Parser::Spacings() {
  EachAxis([&](Header::Axis& p_axis, std::string_view p_word) {
    const double spacing = Number<double>(p_word);
    if (spacing != 0)
      SetFinite(p_axis.spacing, spacing);
  });
}

void Parser::Least() {
  EachAxis([&](Header::Axis& p_axis, std::string_view p_word) { SetFinite(p_axis.least, Number<double>(p_word)); });
}

void Parser::Most() {
  EachAxis([&](Header::Axis& p_axis, std::string_view p_word) { SetFinite(p_axis.most, Number<double>(p_word)); });
}

void Parser::Centers() {
  EachAxis([&](Header::Axis& p_axis, std::string_view p_word) { p_axis.nodes = Keyword(p_word) == "node"; });
}

void Parser::Kinds() {
  EachAxis([&](Header::Axis& p_axis, std::string_view p_word) { p_axis.role = NrrdRole(Keyword(p_word)); });
}

void Parser::Units() {
  EachAxis([&](Header::Axis& p_axis, std::string_view p_word) { p_axis.unit = Unquoted(p_word); });
}

void Parser::ByteSkip() {
  _header.byteSkip = Number<std::int64_t>(_value);
  if (_header.byteSkip < -1)
    Fail("-1 or more bytes", _value);
}

void Parser::Space() {
  const std::optional<NrrdSpace> space = FindNrrdSpace(Keyword(_value));
  if (!space)
    Fail("a space", _value);
  _header.space = space->name;
  _header.spaceDimension = space->dimension;
}

void Parser::SpaceDimension() {
  _header.spaceDimension = Number<std::size_t>(_value);
  if (_header.spaceDimension < 1 || _header.spaceDimension > 8)
    Fail("a dimension from 1 to 8", _value);
}

/// The first three components of a vector; missing ones are 0.
Header::Vector Parser::Vector(std::string_view p_word) const {
  if (_header.spaceDimension == 0)
    Fail("the field \"space\" or \"space dimension\" before this one", _line);
  if (p_word.size() < 2 || p_word.front() != '(' || p_word.back() != ')')
    Fail("a vector in parentheses", p_word);
  std::string_view numbers = p_word.substr(1, p_word.size() - 2);
  Header::Vector vector{};
  for (std::size_t i = 0; i < _header.spaceDimension; ++i) {
    const std::size_t comma = std::min(numbers.find(','), numbers.size());
    const double number = Number<double>(Trimmed(numbers.substr(0, comma)));
    if (i < 3)
      vector[i] = number;
    if ((comma == numbers.size()) != (i + 1 == _header.spaceDimension))
      Fail(std::to_string(_header.spaceDimension) + " components", p_word);
    numbers.remove_prefix(std::min(comma + 1, numbers.size()));
  }
  return vector;
}

void Parser::SpaceDirections() {
  EachAxis([&](Header::Axis& p_axis, std::string_view p_word) {
    if (Keyword(p_word) == "none")
      return;
    const Header::Vector direction = Vector(p_word);
    if (!std::all_of(direction.begin(), direction.end(), [](double p_number) { return std::isfinite(p_number); }))
      Fail("finite numbers", p_word);
    p_axis.direction = direction;
  });
}

void Parser::SpaceOrigin() {
  const Header::Vector origin = Vector(_value);
  if (std::all_of(origin.begin(), origin.end(), [](double p_number) { return std::isfinite(p_number); }))
    _header.origin = origin; // teem writes (nan,nan,nan) for none
}

void Parser::DataFile() {
  std::string_view rest = _value;
  const std::string_view first = TakeWord(rest);
  if (first == "LIST")
    DataFileList();
  else if (first.find('%') != std::string_view::npos && !Trimmed(rest).empty())
    DataFilePattern(first);
  else if (!_value.empty())
    _header.dataFiles = {std::string(_value)};
  else
    Fail("the name of a file", _line);
}

/// The rest of the header is a list of files.
void Parser::DataFileList() {
  while (NextLine() && _header.dataFiles.size() < MostFiles)
    if (!Trimmed(_line).empty())
      _header.dataFiles.emplace_back(Trimmed(_line));
  if (_header.dataFiles.empty() || _header.dataFiles.size() == MostFiles)
    Fail("a list of 1 to 65535 files", _line);
  _ended = true;
}

/// "slice%03d.raw 1 20 1": a pattern, the first and the last number and the step.
void Parser::DataFilePattern(std::string_view p_pattern) {
  std::string_view rest = _value.substr(p_pattern.size());
  const auto next = [&] { return Number<std::int32_t>(TakeWord(rest)); };
  const std::int64_t first = next(), last = next(), step = next();
  const std::size_t percent = p_pattern.find('%');
  const std::size_t end = p_pattern.find('d', percent);
  const std::string_view width = p_pattern.substr(percent + 1, end - percent - 1);
  const std::optional<std::size_t> digits = width.empty() ? 0 : Parsed<std::size_t>(width);
  if (step == 0 || (last - first) / step < 0 || (last - first) / step >= std::int64_t(MostFiles) ||
      end == std::string_view::npos || !digits || *digits > 20)
    Fail("a pattern of %d and a range of numbers", _value);
  for (std::int64_t i = first; step > 0 ? i <= last : i >= last; i += step) {
    std::string number = std::to_string(i);
    if (number.size() < *digits)
      number.insert(0, *digits - number.size(), '0');
    _header.dataFiles.push_back(std::string(p_pattern.substr(0, percent)) + number +
                                std::string(p_pattern.substr(end + 1)));
  }
}

} // namespace

NrrdHeader::NrrdHeader(PeekSource& p_source, const std::string& p_name) {
  Parser(*this, p_source, p_name).Read();
}

} // namespace Vek::Chart::Io::Private

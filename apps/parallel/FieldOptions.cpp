#include "apps/parallel/FieldOptions.h"

#include <functional>
#include <map>
#include <stdexcept>

namespace Vek::Chart::Apps {

namespace {

[[noreturn]] void Fail(const QString& p_option, const QString& p_expected, const QString& p_value) {
  throw std::invalid_argument(
      QStringLiteral("%1: expected %2, got \"%3\"").arg(p_option, p_expected, p_value).toStdString());
}

double NumberOf(const QString& p_option, const QString& p_value) {
  bool isNumber = false;
  const double number = p_value.toDouble(&isNumber);
  if (!isNumber)
    Fail(p_option, QStringLiteral("a number"), p_value);
  return number;
}

std::array<double, 2> PairOf(const QString& p_option, const QString& p_value, QChar p_separator) {
  const QStringList parts = p_value.split(p_separator);
  if (parts.size() != 2)
    Fail(p_option, QStringLiteral("two numbers with a \"%1\" between").arg(p_separator), p_value);
  return {NumberOf(p_option, parts[0]), NumberOf(p_option, parts[1])};
}

std::size_t CountOf(const QString& p_option, const QString& p_value) {
  bool isNumber = false;
  const qulonglong number = p_value.toULongLong(&isNumber);
  if (!isNumber)
    Fail(p_option, QStringLiteral("a whole number"), p_value);
  return static_cast<std::size_t>(number);
}

using Setter = std::function<void(FieldOptions&, const QString& p_option, const QString& p_value)>;

struct Row {
  const char* value;
  const char* help;
  Setter set;
};

const std::map<QString, Row>& Rows() {
  using Options = FieldOptions;
  using Kind = FieldOptions::Kind;
  using Text = const QString&;
  static const std::map<QString, Row> Table{
      {"--field",
       {"FILE", "a NetCDF file", [](Options& p_to, Text, Text p_value) { p_to.path = p_value.toStdString(); }}},
      {"--out",
       {"FILE", "the image, PNG for example", [](Options& p_to, Text, Text p_value) { p_to.image = p_value; }}},
      {"--draw",
       {"WHAT", "arrows (the default), slices or volume",
        [](Options& p_to, Text p_option, Text p_value) {
          const std::map<QString, Kind> kinds{
              {"arrows", Kind::Arrows}, {"slices", Kind::Slices}, {"volume", Kind::Volume}};
          if (kinds.count(p_value) == 0)
            Fail(p_option, "arrows, slices or volume", p_value);
          p_to.kind = kinds.at(p_value);
        }}},
      {"--variables",
       {"A,B,…", "two or three components of arrows, or one variable",
        [](Options& p_to, Text, Text p_value) {
          for (const QString& name : p_value.split(','))
            p_to.variables.push_back(name.toStdString());
        }}},
      {"--time",
       {"N", "the step of time, from 0",
        [](Options& p_to, Text p_option, Text p_value) { p_to.time = CountOf(p_option, p_value); }}},
      {"--every",
       {"K", "every k-th arrow along each axis; by default, so many that about 10,000 are drawn",
        [](Options& p_to, Text p_option, Text p_value) { p_to.every = CountOf(p_option, p_value); }}},
      {"--slice",
       {"AXIS=POSITION", "a slice across x, y or z; several are allowed",
        [](Options& p_to, Text p_option, Text p_value) {
          const int axis = p_value.size() > 2 && p_value[1] == '=' ? QStringLiteral("xyz").indexOf(p_value[0]) : -1;
          if (axis < 0)
            Fail(p_option, "x=, y= or z= and a position", p_value);
          p_to.slices.emplace_back(axis, NumberOf(p_option, p_value.mid(2)));
        }}},
      {"--size",
       {"WxH", "of the image in pixels, 1200x800 by default",
        [](Options& p_to, Text p_option, Text p_value) {
          constexpr double Most = 1 << 14;
          const auto [width, height] = PairOf(p_option, p_value, 'x');
          if (!(width >= 1 && width <= Most && height >= 1 && height <= Most))
            Fail(p_option, "1 to 16384 pixels a side", p_value);
          p_to.size = {static_cast<int>(width), static_cast<int>(height)};
        }}},
      {"--map",
       {"NAME", "of the colours, viridis by default",
        [](Options& p_to, Text, Text p_value) { p_to.colorMap = p_value.toStdString(); }}},
      {"--range",
       {"LOW,HIGH", "values of the first and the last colour",
        [](Options& p_to, Text p_option, Text p_value) {
          const auto [low, high] = PairOf(p_option, p_value, ',');
          if (!(low < high))
            Fail(p_option, "ascending numbers", p_value);
          p_to.range = {low, high};
        }}},
      {"--look",
       {"AZIMUTH,ELEVATION", "of the camera in degrees, -30,30 by default",
        [](Options& p_to, Text p_option, Text p_value) { p_to.look = PairOf(p_option, p_value, ','); }}},
      {"--opacity",
       {"SHARE", "0 to 1, 1 by default",
        [](Options& p_to, Text p_option, Text p_value) { p_to.opacity = NumberOf(p_option, p_value); }}},
      {"--title", {"TEXT", "of the image; by default the name of the file", [](Options& p_to, Text, Text p_value) {
                     p_to.title = p_value;
                   }}}};
  return Table;
}

} // namespace

FieldOptions ParseOptions(const QStringList& p_arguments) {
  FieldOptions options;
  for (int i = 1; i < p_arguments.size(); ++i) {
    const QString& option = p_arguments[i];
    if (option == "--help") {
      options.isHelp = true;
      return options;
    }
    const auto row = Rows().find(option);
    if (row == Rows().end())
      throw std::invalid_argument("unknown option \"" + option.toStdString() + "\"; --help lists all");
    if (++i == p_arguments.size())
      throw std::invalid_argument(option.toStdString() + ": expected " + row->second.value + ", got nothing");
    row->second.set(options, option, p_arguments[i]);
  }
  if (options.path.empty() || options.image.isEmpty())
    throw std::invalid_argument("expected --field FILE.nc and --out IMAGE; --help lists all");
  return options;
}

QString HelpText() {
  QString text = "usage: mpirun -n 4 vek-parallel --field FILE.nc --out IMAGE [options]\n\n"
                 "Draws a field of a NetCDF file in several processes, each of which reads a block of it.\n\n";
  constexpr int Width = 28;
  for (const auto& [option, row] : Rows())
    text += "  " + (option + " " + row.value).leftJustified(Width) + row.help + "\n";
  return text;
}

} // namespace Vek::Chart::Apps

#include "apps/gallery/CommandLine.h"

#include <QStringList>

#include <algorithm>

namespace Vek::Chart::Gallery {

namespace {

std::vector<std::string> Strings(const QStringList& p_list) {
  std::vector<std::string> strings;
  for (const QString& string : p_list)
    strings.push_back(string.toStdString());
  return strings;
}

/// The argument that gave an option, with its dashes.
std::string Argument(const std::vector<std::string>& p_arguments, const std::string& p_name) {
  const auto found = std::find_if(p_arguments.begin(), p_arguments.end(), [&](const std::string& p_argument) {
    const std::size_t start = std::min(p_argument.find_first_not_of('-'), p_argument.size());
    return start > 0 && p_argument.substr(start, p_argument.find('=') - start) == p_name;
  });
  return found == p_arguments.end() ? p_name : *found;
}

} // namespace

CommandLine::CommandLine(const std::vector<std::string>& p_arguments, const std::vector<Option>& p_options,
                         const std::string& p_noun) {
  QStringList arguments{"program"}; // whose name Qt skips
  for (const std::string& argument : p_arguments)
    arguments.push_back(QString::fromStdString(argument));
  _parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
  _parser.addOption({{"h", "help"}, {}});
  for (const Option& option : p_options)
    _parser.addOption({option.name, {}, "value"});
  const bool complete = _parser.parse(arguments);
  if (const QStringList unknown = _parser.unknownOptionNames(); !unknown.empty())
    throw UsageError("unknown " + p_noun + " '" + Argument(p_arguments, unknown.front().toStdString()) +
                     "'; --help lists what there is");
  for (const Option& option : p_options) {
    const bool missing = !complete && p_arguments.back() == "--" + std::string(option.name);
    if (missing || _parser.values(option.name).contains(QString()))
      throw UsageError("--" + std::string(option.name) + " needs a value" + (*option.value == '\0' ? "" : ": ") +
                       option.value);
  }
  if (!complete)
    throw UsageError(_parser.errorText().toStdString());
}

std::vector<std::string> CommandLine::Values(const char* p_name) const {
  return Strings(_parser.values(p_name));
}

std::vector<std::string> CommandLine::Files() const {
  return Strings(_parser.positionalArguments());
}

} // namespace Vek::Chart::Gallery

#pragma once

#include <QCommandLineParser>

#include <stdexcept>
#include <string>
#include <vector>

namespace Vek::Chart::Gallery {

/// Invalid command-line arguments. The text is one line with the reason.
class UsageError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

/// The arguments of a program, parsed by Qt: `--name value` or `--name=value`, `--help` and `-h`, and files.
class CommandLine {
public:
  /// An option and the name of its value, which messages may show: {"out", "DIR"}, {"data", ""}.
  struct Option {
    const char* name;
    const char* value;
  };

  /// Throws UsageError for unknown options, which the message calls `p_noun`, and for missing or empty values.
  CommandLine(const std::vector<std::string>& p_arguments, const std::vector<Option>& p_options,
              const std::string& p_noun = "option");

  bool Help() const { return _parser.isSet("help"); }
  /// The values of an option, in the order of the arguments.
  std::vector<std::string> Values(const char* p_name) const;
  /// The last value of an option; empty without one.
  std::string Value(const char* p_name) const { return _parser.value(p_name).toStdString(); }
  /// The arguments that belong to no option.
  std::vector<std::string> Files() const;

private:
  QCommandLineParser _parser;
};

} // namespace Vek::Chart::Gallery

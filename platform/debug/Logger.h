#pragma once

#include "platform/Export.h"

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

/// Reports of broken preconditions, unreachable code, warnings and debug output.
///
/// A report never stops the caller, which continues with a defined, harmless result. The logger's sink decides what
/// happens to reports: the default sink writes them to standard error; a host can install one that counts, shows,
/// breaks or throws. Several threads may report at once.
///
/// The default sink writes the text and, in parentheses, the detail. Of reports in a row with the same text it writes
/// the first one; the number of the others follows with the next different report, with the first repetition after a
/// second, when another sink is installed, or at the end of the process: `… 144,990 more, to line 289,981`.
namespace vekdebug {

/// The kind of a report, which determines the form of its text.
enum class severity : std::uint8_t {
  ensure,  ///< a precondition does not hold; text: "expression" - signature
  sentry,  ///< unreachable code was reached; text: signature, a blank, "@line" and the line number
  pointer, ///< a null object; text: "void*(obj)" - signature
  range,   ///< an index is outside its range; text: "expression" - signature
  error,   ///< one line of the error stream; a warning begins with "WARNING: "
  debug,   ///< one line of a debug channel
};

/// Where a report comes from and which value is at fault. A plain record of views and numbers, which takes no memory to
/// build; what is not set is not shown.
struct detail {
  std::string_view path = {};              ///< the file; empty: not set
  std::uint64_t line = 0;                  ///< the line of the file, from 1; 0: not set
  std::string_view found = {};             ///< the characters at fault; a null pointer: not set
  std::optional<std::uint64_t> index = {}; ///< the element, from 0
  std::optional<std::uint64_t> count = {}; ///< how many elements there are, or how many are concerned
  std::optional<double> value = {};        ///< the number at fault
};

/// The detail in one line, without parentheses: `sphere.obj:12, found "1.x", index 7, count 5, value -1.5`. Long
/// texts are cut, control characters become question marks. Empty when nothing is set.
VEK_PLATFORM_API std::string detail_text(const detail& p_detail);

/// One report, as it reaches the sink. All references and views are valid during the call only.
struct report {
  severity kind;              ///< the kind of failure
  const std::string& text;    ///< the fixed text, without a line end
  const std::string& channel; ///< the name of the debug channel; empty for all other kinds
  const detail& where;        ///< file, line and values, as far as they are set
};

/// Receives all reports of a logger. Several threads may call `write` at once. It may throw; the exception passes
/// through the operation that reported.
class VEK_PLATFORM_API sink {
public:
  virtual ~sink();
  /// Receives one report. A report that it makes itself calls it again.
  virtual void write(const report& p_report) = 0;
};

/// An output stream of the logger: every full line becomes one report. Without a buffer it is inactive and drops what
/// is written to it, at the cost of a test.
class VEK_PLATFORM_API dbgostream : public std::ostream {
public:
  /// Writes into `p_buffer`, which must outlive the stream; inactive for a null pointer.
  explicit dbgostream(std::streambuf* p_buffer);
  ~dbgostream() override;
  /// Whether the stream has a buffer. Test it before costly formatting.
  bool active() const { return rdbuf() != nullptr; }
};

/// Passes all reports to the sink; see `Utility::GetLogger`.
///
/// \snippet HostSnippets.cpp Reports
/// \ingroup host
class VEK_PLATFORM_API logger {
public:
  /// The logger of the process. Never destroyed, so that destructors of static objects may report.
  static logger& instance();

  logger(const logger&) = delete;
  logger& operator=(const logger&) = delete;

  /// Reports `p_text` when `p_condition` is false.
  void ensure(bool p_condition, const std::string& p_text, const detail& p_detail = {});
  /// Reports that unreachable code was reached.
  void sentry(const std::string& p_text, const detail& p_detail = {});
  /// Reports `p_text` when `p_object` is null.
  void chkptr(const void* p_object, const std::string& p_text, const detail& p_detail = {});
  /// Reports `p_text` unless p_first <= p_value < p_end. Sets the detail's index to p_value and its count to p_end.
  void chkrng(std::uint64_t p_value, std::uint64_t p_first, std::uint64_t p_end, const std::string& p_text,
              const detail& p_detail = {});
  /// Reports `p_text` on the error stream, each of its lines as one report.
  void error(const std::string& p_text, const detail& p_detail = {});

  /// The calling thread's stream for the debug channel of that name; inactive until the channel is opened.
  dbgostream& dout(const std::string& p_channel);
  /// The calling thread's error stream; always active. Warnings begin with "WARNING: ".
  dbgostream& derr();

  ///@{
  /// Opens or closes a debug channel for all threads.
  void open(const std::string& p_channel);
  void close(const std::string& p_channel);
  ///@}
  /// Whether the channel is open.
  bool is_open(const std::string& p_channel) const;

  /// Installs a sink and returns the previous one; an empty pointer restores the default sink. A report that another
  /// thread is making may still reach the previous sink.
  std::shared_ptr<sink> set_sink(std::shared_ptr<sink> p_sink);

private:
  logger();
  ~logger();
  friend class line_buffer;
  void write(severity p_kind, const std::string& p_text, const std::string& p_channel, const detail& p_detail = {});

  struct state;
  std::unique_ptr<state> _state;
};

} // namespace vekdebug

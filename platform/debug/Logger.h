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
/// Reports never stop the caller: it goes on after each of them with a defined, harmless result. What happens to a
/// report is decided by the sink of the logger: the default sink writes a line to standard error; a host engine can
/// install one that counts, shows, breaks or throws. Reports may come from several threads at once.
///
/// The default sink writes the text and, in parentheses, the detail. Of reports in a row with the same text it writes
/// the first one; the number of the others follows with the next different report, with the first repetition after a
/// second, when another sink is installed, or at the end of the process: `… 144,990 more, to line 289,981`.
namespace vekdebug {

/// What kind of report a text is.
enum class severity : std::uint8_t {
  ensure,  ///< a precondition does not hold; text: "expression" - signature
  sentry,  ///< code that must not be reached was reached; text: signature, a blank, "@line" and the line's number
  pointer, ///< a null object; text: "void*(obj)" - signature
  range,   ///< an index outside its range; text: "expression" - signature
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
  severity kind;              ///< what happened
  const std::string& text;    ///< the fixed text, without a line end
  const std::string& channel; ///< the name of the debug channel; empty for all other kinds
  const detail& where;        ///< file, line and values, as far as they are set
};

/// Receives all reports of a logger. `write` may be called from several threads at once and may throw: what it throws
/// leaves the operation that reported through its caller.
class VEK_PLATFORM_API sink {
public:
  virtual ~sink();
  /// Takes one report. What it reports itself comes back to it.
  virtual void write(const report& p_report) = 0;
};

/// An output stream of the logger. It is active when it has a buffer; items written to an inactive stream are dropped
/// and cost nothing but the test of `active()`. Every full line becomes one report.
class VEK_PLATFORM_API dbgostream : public std::ostream {
public:
  /// A stream into that buffer, which must outlive it; inactive for a null pointer.
  explicit dbgostream(std::streambuf* p_buffer);
  ~dbgostream() override;
  /// Whether items are written anywhere.
  bool active() const { return rdbuf() != nullptr; }
};

/// The one place that all reports go through; see `Utility::GetLogger`.
///
/// \snippet HostSnippets.cpp Reports
/// \ingroup host
class VEK_PLATFORM_API logger {
public:
  /// The logger of the process. It outlives every static object that uses it.
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

  /// The debug channel of that name, for the calling thread. A channel is inactive until `open` is called for it.
  dbgostream& dout(const std::string& p_channel);
  /// The error stream, for the calling thread; always active. A warning's text begins with "WARNING: ".
  dbgostream& derr();

  ///@{
  /// Switches a debug channel on or off for all threads.
  void open(const std::string& p_channel);
  void close(const std::string& p_channel);
  ///@}
  /// Whether the channel is switched on.
  bool is_open(const std::string& p_channel) const;

  /// Installs a sink and returns the one it replaces; an empty pointer restores the default sink. The old sink may
  /// still be called by a report that is under way on another thread.
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

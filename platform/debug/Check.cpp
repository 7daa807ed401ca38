#include "platform/debug/Check.h"

#include <utility>

namespace vekdebug {

namespace {

/// A message in memory that the thread's next message uses again. A message that is built while another one is
/// reported, or by destructors at the end of a thread, takes memory of its own.
class Message {
public:
  Message(std::initializer_list<std::string_view> p_parts) {
    Exchange();
    _text.clear();
    for (const std::string_view part : p_parts)
      _text += part;
  }
  ~Message() { Exchange(); }
  Message(const Message&) = delete;
  Message& operator=(const Message&) = delete;

  const std::string& Text() const { return _text; }

private:
  struct Memory {
    bool& isGone;
    std::string text;
    ~Memory() { isGone = true; }
  };
  void Exchange() {
    thread_local bool isGone = false;
    if (isGone)
      return;
    thread_local Memory memory{isGone, {}};
    _text.swap(memory.text);
  }

  std::string _text;
};

} // namespace

std::string check_text(std::string_view p_expression, std::string_view p_signature) {
  return Message({"\"", p_expression, "\" - ", p_signature}).Text();
}

bool fail_ensure(std::string_view p_expression, std::string_view p_signature, const detail& p_detail) {
  logger::instance().ensure(false, Message({"\"", p_expression, "\" - ", p_signature}).Text(), p_detail);
  return false;
}

bool fail_range(std::uint64_t p_value, std::uint64_t p_end, std::string_view p_expression, std::string_view p_signature,
                const detail& p_detail) {
  const Message message({"\"", p_expression, "\" - ", p_signature});
  logger::instance().chkrng(p_value, 0, p_end, message.Text(), p_detail);
  return false;
}

bool fail_pointer(std::string_view p_signature, const detail& p_detail) {
  logger::instance().chkptr(nullptr, Message({"\"void*(obj)\" - ", p_signature}).Text(), p_detail);
  return false;
}

bool fail_sentry(std::string_view p_signature, int p_line, const detail& p_detail) {
  logger::instance().sentry(Message({p_signature, " @line", std::to_string(p_line)}).Text(), p_detail);
  return false;
}

bool warn(std::string_view p_text, const detail& p_detail) {
  logger::instance().error(Message({"WARNING: ", p_text}).Text(), p_detail);
  return false;
}

} // namespace vekdebug

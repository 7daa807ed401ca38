#include "platform/debug/Check.h"

#include "platform/debug/Logger.h"

namespace vekdebug {

std::string check_text(const std::string& p_expression, const std::string& p_signature) {
  return "\"" + p_expression + "\" - " + p_signature;
}

bool fail_ensure(const std::string& p_expression, const std::string& p_signature) {
  logger::instance().ensure(false, check_text(p_expression, p_signature));
  return false;
}

bool fail_range(std::uint64_t p_value, std::uint64_t p_end, const std::string& p_expression,
                const std::string& p_signature) {
  logger::instance().chkrng(p_value, 0, p_end, check_text(p_expression, p_signature));
  return false;
}

bool fail_pointer(const std::string& p_signature) {
  logger::instance().chkptr(nullptr, check_text("void*(obj)", p_signature));
  return false;
}

bool fail_sentry(const std::string& p_signature, int p_line) {
  logger::instance().sentry(p_signature + " @line" + std::to_string(p_line));
  return false;
}

bool warn(const std::string& p_text) {
  logger::instance().derr() << "WARNING: " + p_text << std::endl;
  return false;
}

} // namespace vekdebug

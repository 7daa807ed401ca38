#pragma once

#include "platform/Export.h"

#include <cstdint>
#include <string>

/// Checks that report and let the caller go on.
///
/// The condition is tested first; the message is built only when it fails. Each macro is an expression of type bool,
/// true when the check passed, so that the caller can choose a harmless way on:
///
/// The message is "expression" - signature, the signature in the form that the host platform's compiler prints it.
/// Conditions are written so that NaN fails where it must (`value >= 0`, not `!(value < 0)`).
///
/// \snippet HostSnippets.cpp Check
/// \ingroup host
#define VEK_ENSURE(p_condition, p_signature) VEK_ENSURE_TEXT(p_condition, #p_condition, p_signature)

/// As VEK_ENSURE, with the text of the expression given where it differs from the condition that the code tests.
#define VEK_ENSURE_TEXT(p_condition, p_expression, p_signature)                                                        \
  (static_cast<bool>(p_condition) || ::vekdebug::fail_ensure(p_expression, p_signature))

/// Reports through the logger's range check unless 0 <= p_value < p_end; p_value is taken as unsigned.
#define VEK_CHECK_RANGE(p_value, p_end, p_expression, p_signature)                                                     \
  (static_cast<std::uint64_t>(p_value) < static_cast<std::uint64_t>(p_end) ||                                          \
   ::vekdebug::fail_range(static_cast<std::uint64_t>(p_value), static_cast<std::uint64_t>(p_end), p_expression,        \
                          p_signature))

/// Reports a null object through the logger's pointer check, with the text "void*(obj)" - signature.
#define VEK_CHECK_POINTER(p_object, p_signature) ((p_object) != nullptr || ::vekdebug::fail_pointer(p_signature))

/// Reports that a place was reached that must not be: the signature, a blank, "@line" and p_line. Always false.
#define VEK_SENTRY(p_signature, p_line) ::vekdebug::fail_sentry(p_signature, p_line)

namespace vekdebug {

/// The text of a failed check: the quoted expression, " - " and the signature.
VEK_PLATFORM_API std::string check_text(const std::string& p_expression, const std::string& p_signature);

///@{
/// The slow half of the macro of that name: reports, and returns false.
VEK_PLATFORM_API bool fail_ensure(const std::string& p_expression, const std::string& p_signature);
VEK_PLATFORM_API bool fail_range(std::uint64_t p_value, std::uint64_t p_end, const std::string& p_expression,
                                 const std::string& p_signature);
VEK_PLATFORM_API bool fail_pointer(const std::string& p_signature);
VEK_PLATFORM_API bool fail_sentry(const std::string& p_signature, int p_line);
///@}
/// Writes "WARNING: " and the text as one line of the error stream. Returns false.
VEK_PLATFORM_API bool warn(const std::string& p_text);

} // namespace vekdebug

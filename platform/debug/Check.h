#pragma once

#include "platform/Export.h"
#include "platform/debug/Logger.h"

#include <cstdint>
#include <string>
#include <string_view>

/// Checks that report and let the caller go on.
///
/// Each macro is an expression of type bool, true when the check passed, so that the caller can continue with a
/// harmless value. The condition is tested first; signature and detail are evaluated only when it fails, and the
/// message is built in memory that is used again for the next one.
///
/// The message is "expression" - signature, with the signature as the host platform's compiler prints it. Write
/// conditions so that NaN fails where it must: `value >= 0`, not `!(value < 0)`.
///
/// The macros ending in _AT take a vekdebug::detail as their last argument: path, line and values of the failure.
///
/// \snippet HostSnippets.cpp Check
/// \ingroup host
#define VEK_ENSURE(p_condition, p_signature) VEK_ENSURE_TEXT(p_condition, #p_condition, p_signature)

/// VEK_ENSURE with the expression to report where it differs from the tested condition.
#define VEK_ENSURE_TEXT(p_condition, p_expression, p_signature)                                                        \
  VEK_ENSURE_AT(p_condition, p_expression, p_signature, {})

/// VEK_ENSURE_TEXT with a detail.
#define VEK_ENSURE_AT(p_condition, p_expression, p_signature, ...)                                                     \
  (static_cast<bool>(p_condition) || ::vekdebug::fail_ensure(p_expression, p_signature, __VA_ARGS__))

/// Reports through the logger's range check unless 0 <= p_value < p_end; p_value is taken as unsigned.
#define VEK_CHECK_RANGE(p_value, p_end, p_expression, p_signature)                                                     \
  VEK_CHECK_RANGE_AT(p_value, p_end, p_expression, p_signature, {})

/// VEK_CHECK_RANGE with a detail, whose index and count become p_value and p_end.
#define VEK_CHECK_RANGE_AT(p_value, p_end, p_expression, p_signature, ...)                                             \
  (static_cast<std::uint64_t>(p_value) < static_cast<std::uint64_t>(p_end) ||                                          \
   ::vekdebug::fail_range(static_cast<std::uint64_t>(p_value), static_cast<std::uint64_t>(p_end), p_expression,        \
                          p_signature, __VA_ARGS__))

/// Reports a null object through the logger's pointer check: "void*(obj)" - signature.
#define VEK_CHECK_POINTER(p_object, p_signature) VEK_CHECK_POINTER_AT(p_object, p_signature, {})

/// VEK_CHECK_POINTER with a detail.
#define VEK_CHECK_POINTER_AT(p_object, p_signature, ...)                                                               \
  ((p_object) != nullptr || ::vekdebug::fail_pointer(p_signature, __VA_ARGS__))

/// Reports that unreachable code was reached: the signature, a blank, "@line" and p_line. Always false.
#define VEK_SENTRY(p_signature, p_line) ::vekdebug::fail_sentry(p_signature, p_line)

/// VEK_SENTRY with a detail.
#define VEK_SENTRY_AT(p_signature, p_line, ...) ::vekdebug::fail_sentry(p_signature, p_line, __VA_ARGS__)

namespace vekdebug {

/// The message of a failed check: the quoted expression, " - " and the signature.
VEK_PLATFORM_API std::string check_text(std::string_view p_expression, std::string_view p_signature);

///@{
/// The slow half of the macro of that name: reports, and returns false.
VEK_PLATFORM_API bool fail_ensure(std::string_view p_expression, std::string_view p_signature,
                                  const detail& p_detail = {});
VEK_PLATFORM_API bool fail_range(std::uint64_t p_value, std::uint64_t p_end, std::string_view p_expression,
                                 std::string_view p_signature, const detail& p_detail = {});
VEK_PLATFORM_API bool fail_pointer(std::string_view p_signature, const detail& p_detail = {});
VEK_PLATFORM_API bool fail_sentry(std::string_view p_signature, int p_line, const detail& p_detail = {});
///@}
/// Reports "WARNING: " and the text on the error stream. Returns false.
VEK_PLATFORM_API bool warn(std::string_view p_text, const detail& p_detail = {});

} // namespace vekdebug

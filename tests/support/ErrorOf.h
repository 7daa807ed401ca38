#pragma once

#include <string>

namespace Vek::Test {

/// The text of the error of this type that the call throws; empty when it throws none.
template <class Error, class Call>
std::string ErrorOf(Call p_call) {
  try {
    p_call();
  } catch (const Error& error) {
    return error.what();
  }
  return {};
}

} // namespace Vek::Test

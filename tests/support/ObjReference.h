#pragma once

#include <string>

namespace Vek::Test {

/// The text of the loader's report of that expression.
std::string ObjReport(const std::string& p_expression);

/// All that the loader makes of a text, written out: reports, then the exception or the model. Floats are exact.
std::string DescribeLoaded(const std::string& p_text);
/// The same from a reader that follows the rules line by line, without a thought of speed.
std::string DescribeReference(const std::string& p_text);

/// A small OBJ file, the same for the same seed; most have a few faults: odd numbers and indices, doubled blanks, other
/// white space and line ends, bytes changed, put in or taken away.
std::string RandomObjText(unsigned int p_seed);

} // namespace Vek::Test

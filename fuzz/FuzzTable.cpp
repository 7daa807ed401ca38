#include "fuzz/FuzzTarget.h"
#include "io/FileError.h"
#include "io/ReadTable.h"

#include <cstdlib>

int LLVMFuzzerTestOneInput(const std::uint8_t* p_bytes, std::size_t p_size) {
  using namespace Vek::Chart;
  std::istringstream input = Vek::Fuzz::Input(p_bytes, p_size);
  try {
    const Io::Table table = Io::ReadTable(input, "fuzz");
    for (const Io::Table::Column& column : table.Columns())
      if (column.numbers.size() + column.strings.size() != table.Rows())
        std::abort();
  } catch (const Io::FileError&) { // documented
  }
  return 0;
}

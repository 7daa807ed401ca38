#include "fuzz/FuzzTarget.h"
#include "io/FileError.h"
#include "io/ReadTable.h"

#include <cstdlib>

int LLVMFuzzerTestOneInput(const std::uint8_t* p_bytes, std::size_t p_size) {
  using namespace Vek::Chart;
  std::istringstream input = Vek::Fuzz::Input(p_bytes, p_size);
  try {
    const Io::Table table = Io::ReadTable(input, "fuzz");
    for (std::size_t i = 0; i < table.Columns().size(); ++i) {
      const Io::Table::Column& column = table.Columns()[i];
      if (column.numbers.size() + column.strings.size() != table.Rows())
        std::abort();
      if (table.HasTimes(i) && table.Times(i).size() != table.Rows())
        std::abort();
    }
  } catch (const Io::FileError&) { // documented
  }
  return 0;
}

#include "fuzz/FuzzTarget.h"
#include "io/FileError.h"
#include "io/ReadHeights.h"
#include "io/ReadVectorField.h"

#include <cstdlib>
#include <string_view>

// NetCDF in the classic formats, tables and height grids. HDF5 is left to its library.
int LLVMFuzzerTestOneInput(const std::uint8_t* p_bytes, std::size_t p_size) {
  using namespace Vek::Chart;
  if (std::string_view(reinterpret_cast<const char*>(p_bytes), p_size).substr(0, 4) == "\x89HDF")
    return 0;
  try {
    std::istringstream input = Vek::Fuzz::Input(p_bytes, p_size);
    const Io::VectorField field = Io::ReadVectorField(input, "fuzz");
    if (field.vectors.size() != field.axes[0].size() * field.axes[1].size() * field.axes[2].size())
      std::abort();
  } catch (const Io::FileError&) { // documented
  }
  try {
    std::istringstream input = Vek::Fuzz::Input(p_bytes, p_size);
    const Io::HeightGrid grid = Io::ReadHeights(input, "fuzz");
    if (grid.heights.size() != grid.x.size() * grid.y.size())
      std::abort();
  } catch (const Io::FileError&) { // documented
  }
  return 0;
}

#include "fuzz/FuzzTarget.h"
#include "library/ObjModel.h"

#include <boost/lexical_cast.hpp>

#include <cstdlib>
#include <stdexcept>

using namespace Vek::Chart::Library;

int LLVMFuzzerTestOneInput(const std::uint8_t* p_bytes, std::size_t p_size) {
  std::istringstream input = Vek::Fuzz::Input(p_bytes, p_size);
  try {
    const boost::shared_ptr<ObjModel> model = LoadPolygonObj(input);
    const std::size_t normals = model->Normals()->size();
    if (model->Groups()->empty() || (normals != 0 && normals != model->Vertices()->size()))
      std::abort();
  } catch (const boost::bad_lexical_cast&) { // the two that the loader may throw
  } catch (const std::out_of_range&) {
  }
  return 0;
}

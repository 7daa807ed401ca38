#include "apps/gallery/ModelFile.h"

#include "apps/gallery/ReportCounter.h"
#include "apps/gallery/TextTable.h"

#include <algorithm>
#include <exception>

namespace Vek::Chart::Gallery {

boost::shared_ptr<const Library::ObjModel> ReadModelFile(const std::string& p_path, Loading& p_loading) {
  const std::unique_ptr<std::istream> stream = p_loading.Open(p_path);
  const ReportCounter reports;
  boost::shared_ptr<const Library::ObjModel> model;
  try {
    model = Library::LoadPolygonObj(*stream);
  } catch (const std::exception& error) {
    throw InputError(p_path + ": cannot be read as an OBJ model: " + error.what());
  }
  p_loading.CheckCancelled(); // which the reader may take for the end of the file
  if (reports.Indices() != 0)
    throw InputError(p_path + ": expected an OBJ model whose faces count their vertices and normals from 1");
  const auto isEmpty = [](const auto& p_group) { return p_group->indices.empty(); };
  if (reports.Others() != 0 || model->Vertices()->empty() ||
      std::all_of(model->Groups()->begin(), model->Groups()->end(), isEmpty))
    throw InputError(p_path + ": expected an OBJ model of triangles or lines, and of nothing else");
  return model;
}

} // namespace Vek::Chart::Gallery

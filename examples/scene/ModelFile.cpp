#include "examples/scene/ModelFile.h"

#include "examples/scene/Files.h"
#include "examples/scene/ReportCounter.h"
#include "examples/scene/TextTable.h"

#include "platform/file/FilePath.h"

#include <exception>

namespace Vek::Chart::Gallery {

Mesh LoadModelFile(Library::SymbolRegistry& p_registry, const std::string& p_path) {
  OpenInput(p_path); // a missing file would be an empty model
  const ReportCounter reports;
  try {
    p_registry.LoadModel(p_path);
  } catch (const std::exception& error) {
    throw InputError(p_path + ": cannot be read as an OBJ model: " + error.what());
  }
  if (reports.Indices() != 0)
    throw InputError(p_path + ": expected an OBJ model whose faces count their vertices and normals from 1");
  if (reports.Others() != 0)
    throw InputError(p_path + ": expected an OBJ model of triangles or lines, and of nothing else");
  return {p_registry.GetVertexBuffer(p_path), p_registry.GetIndexBuffer(p_path), p_registry.GetBoundingBox(p_path)};
}

} // namespace Vek::Chart::Gallery

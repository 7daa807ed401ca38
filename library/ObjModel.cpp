#include "library/ObjModel.h"

#include "library/private/io/LineBlocks.h"
#include "library/private/io/ObjReader.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <fstream>
#include <locale>

namespace Vek::Chart::Library {

ObjModel::ObjModel()
    : _groups(boost::make_shared<GroupList>())
    , _vertices(boost::make_shared<VertexArray>())
    , _normals(boost::make_shared<VertexArray>()) {
  AddGroup();
}

ObjModel::ObjModel(const ObjModel& p_other) = default;
ObjModel& ObjModel::operator=(const ObjModel& p_other) = default;
ObjModel::~ObjModel() = default;

boost::shared_ptr<ObjModel::ObjGroup> ObjModel::AddGroup() {
  auto group = boost::make_shared<ObjGroup>();
  _groups->push_back(group);
  return group;
}

boost::shared_ptr<ObjModel::ObjGroup> ObjModel::DefaultGroup() const {
  return _groups->empty() ? boost::shared_ptr<ObjGroup>() : _groups->front();
}

boost::shared_ptr<ObjModel> LoadPolygonObjFile(const vekfile::filepath& p_path) {
  std::ifstream file;
  file.imbue(std::locale::classic());
  file.open(p_path.str());
  return LoadPolygonObj(file);
}

boost::shared_ptr<ObjModel> LoadPolygonObj(std::istream& p_stream) {
  Private::ObjReader reader;
  std::uint64_t bytesLeft = Private::RemainingBytes(p_stream);
  Private::ReadLineBlocks(p_stream, [&](const char* p_first, const char* p_last) {
    bytesLeft -= std::min(bytesLeft, std::uint64_t(p_last - p_first));
    reader.ReadBlock(p_first, p_last, bytesLeft);
  });
  return reader.Finish();
}

} // namespace Vek::Chart::Library

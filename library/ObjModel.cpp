#include "library/ObjModel.h"

#include "library/private/io/ByteSource.h"
#include "library/private/io/LineBlocks.h"
#include "library/private/io/NumberText.h"
#include "library/private/io/ObjReader.h"
#include "platform/debug/Check.h"

#include <boost/make_shared.hpp>

#include <fstream>
#include <locale>
#include <string>
#include <string_view>
#include <utility>

namespace Vek::Chart::Library {

namespace {

/// Scans lines on several threads, up to the last line feed or one longer than a block, and adds them in order.
void ScanBlocks(Private::ByteSource& p_source, Utility::Threads p_threads, Private::ObjReader& p_reader) {
  struct Block {
    Private::LineBlock lines;
    Private::ObjPlain::Block scanned;
  };
  Private::RunLineBlocks<Block>(
      p_source, p_threads, [](Block& p_block) { p_block.scanned.Scan(p_block.lines.First(), p_block.lines.Last()); },
      [&](const Block& p_block) { p_reader.AddBlock(p_block.scanned, p_block.lines.Last()); });
}

/// Reads all lines. A line that a failure may have cut off is dropped.
Private::ObjReader::Result ReadLines(std::istream& p_stream, std::string_view p_path, Utility::Threads p_threads) {
  Private::ByteSource source(p_stream, p_path);
  Private::ObjReader reader(p_path);
  ScanBlocks(source, p_threads, reader);
  while (const std::size_t size = source.PrepareLines()) {
    const auto* const lines = reinterpret_cast<const char*>(source.Data());
    reader.ReadBlock(lines, lines + size);
    source.Take(size);
  }
  const std::size_t rest = source.Prepare(1);
  if (rest > Private::ByteSource::LongestLine) {
    vekdebug::detail where = reader.Where();
    ++where.line;
    vekdebug::warn("LoadPolygonObjFile: reading ends at a line longer than 64 MiB", where);
  } else if (rest != 0 && !source.Failed()) {
    std::string line = std::string(reinterpret_cast<const char*>(source.Data()), rest) + '\n';
    line.append(Private::Scan::DigitsSlack, '\0');
    reader.ReadBlock(line.data(), line.data() + rest + 1);
  }
  return reader.Finish(p_threads);
}

boost::shared_ptr<ObjModel> Load(std::istream& p_stream, std::string_view p_path, Utility::Threads p_threads) {
  Private::ObjReader::Result result = ReadLines(p_stream, p_path, p_threads);
  const auto model = boost::make_shared<ObjModel>();
  model->SetPrimitiveType(result.primitiveType);
  model->SetBoundingBox(result.bounds);
  *model->Vertices() = std::move(result.vertices);
  *model->Normals() = std::move(result.normals);
  for (std::size_t i = 0; i < result.groups.size(); ++i) {
    ObjModel::ObjGroup& group = i == 0 ? *model->DefaultGroup() : *model->AddGroup();
    group.name = std::move(result.groups[i].name);
    group.indices = std::move(result.groups[i].indices);
  }
  return model;
}

} // namespace

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
  return LoadPolygonObjFile(p_path, Utility::Threads());
}

boost::shared_ptr<ObjModel> LoadPolygonObj(std::istream& p_stream) {
  return Load(p_stream, {}, Utility::Threads());
}

boost::shared_ptr<ObjModel> LoadPolygonObjFile(const vekfile::filepath& p_path, Utility::Threads p_threads) {
  std::ifstream file;
  file.imbue(std::locale::classic());
  file.open(p_path.str());
  if (!file.is_open())
    vekdebug::warn("LoadPolygonObjFile: cannot open the file", {p_path.str()});
  return Load(file, p_path.str(), p_threads);
}

boost::shared_ptr<ObjModel> LoadPolygonObj(std::istream& p_stream, Utility::Threads p_threads) {
  return Load(p_stream, {}, p_threads);
}

} // namespace Vek::Chart::Library

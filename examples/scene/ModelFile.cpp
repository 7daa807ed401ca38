#include "examples/scene/ModelFile.h"

#include "examples/scene/Files.h"
#include "examples/scene/TextTable.h"

#include "platform/debug/Logger.h"
#include "platform/file/FilePath.h"

#include <atomic>
#include <exception>
#include <memory>

namespace Vek::Chart::Gallery {

namespace {

/// Counts the reports that come while it is installed, instead of printing them.
class ReportCounter {
public:
  ReportCounter()
      : _counts(std::make_shared<Counts>())
      , _previous(vekdebug::logger::instance().set_sink(_counts)) {}
  ~ReportCounter() { vekdebug::logger::instance().set_sink(_previous); }
  ReportCounter(const ReportCounter&) = delete;
  ReportCounter& operator=(const ReportCounter&) = delete;

  int Indices() const { return _counts->indices; }
  int Others() const { return _counts->others; }

private:
  struct Counts : vekdebug::sink {
    std::atomic<int> indices{0};
    std::atomic<int> others{0};
    void write(const vekdebug::report& p_report) override {
      if (p_report.kind == vekdebug::severity::range)
        ++indices;
      else if (p_report.kind != vekdebug::severity::debug)
        ++others;
    }
  };
  std::shared_ptr<Counts> _counts;
  std::shared_ptr<vekdebug::sink> _previous;
};

} // namespace

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

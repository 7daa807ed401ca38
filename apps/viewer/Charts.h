#pragma once

#include "apps/viewer/Chart.h"
#include "apps/viewer/Document.h"

#include <memory>

namespace Vek::Chart::Viewer {

/// The chart of a file, with its name as the title. It may be made on any thread and keeps the document.
std::unique_ptr<Chart> MakeChart(const std::shared_ptr<const Document>& p_document);

// One for each kind, in the source file of that name.
std::unique_ptr<Chart> MakeMeshChart(const std::shared_ptr<const Document>& p_document, const Io::Mesh& p_mesh);
std::unique_ptr<Chart> MakeVolumeChart(const std::shared_ptr<const Document>& p_document, const Io::Volume& p_volume);
std::unique_ptr<Chart> MakeFieldChart(const std::shared_ptr<const Document>& p_document,
                                      const Io::VectorField& p_field);
std::unique_ptr<Chart> MakeHeightChart(const std::shared_ptr<const Document>& p_document, const Io::HeightGrid& p_grid);
std::unique_ptr<Chart> MakeTableChart(const std::shared_ptr<const Document>& p_document, const Io::Table& p_table);
std::unique_ptr<Chart> MakeImageChart(const std::shared_ptr<const Document>& p_document, const Io::Image& p_image);

/// "name in unit", or what is there of both.
QString TitleOf(const std::string& p_name, const std::string& p_unit);
/// "x" for a longitude, "y" for a latitude, by their units, otherwise by their names; otherwise 0.
char AngleOf(const std::string& p_name, const std::string& p_unit);

} // namespace Vek::Chart::Viewer

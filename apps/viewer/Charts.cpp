#include "apps/viewer/Charts.h"

#include <algorithm>
#include <initializer_list>

namespace Vek::Chart::Viewer {

std::unique_ptr<Chart> MakeChart(const std::shared_ptr<const Document>& p_document) {
  struct Maker {
    const std::shared_ptr<const Document>& document;
    std::unique_ptr<Chart> operator()(const Io::Mesh& p_data) const { return MakeMeshChart(document, p_data); }
    std::unique_ptr<Chart> operator()(const Io::Volume& p_data) const { return MakeVolumeChart(document, p_data); }
    std::unique_ptr<Chart> operator()(const Io::VectorField& p_data) const { return MakeFieldChart(document, p_data); }
    std::unique_ptr<Chart> operator()(const Io::HeightGrid& p_data) const { return MakeHeightChart(document, p_data); }
    std::unique_ptr<Chart> operator()(const Io::Table& p_data) const { return MakeTableChart(document, p_data); }
    std::unique_ptr<Chart> operator()(const Io::Image& p_data) const { return MakeImageChart(document, p_data); }
  };
  return std::visit(Maker{p_document}, p_document->data);
}

QString TitleOf(const std::string& p_name, const std::string& p_unit) {
  const QString name = QString::fromStdString(p_name), unit = QString::fromStdString(p_unit);
  const bool hasUnit = !unit.isEmpty() && unit != "1";
  return name.isEmpty() || !hasUnit ? (name.isEmpty() && hasUnit ? unit : name) : name + " in " + unit;
}

char AngleOf(const std::string& p_name, const std::string& p_unit) {
  const QString name = QString::fromStdString(p_name).toLower(), unit = QString::fromStdString(p_unit).toLower();
  const auto isOneOf = [](const QString& p_word, std::initializer_list<const char*> p_words) {
    return std::any_of(p_words.begin(), p_words.end(), [&](const char* p_one) { return p_word == p_one; });
  };
  if (isOneOf(unit, {"degrees_east", "degree_east", "degrees_e", "degree_e", "degreese", "degreee"}))
    return 'x';
  if (isOneOf(unit, {"degrees_north", "degree_north", "degrees_n", "degree_n", "degreesn", "degreen"}))
    return 'y';
  if (!unit.isEmpty() && !unit.startsWith("degree"))
    return 0;
  return isOneOf(name, {"lon", "long", "longitude", "lng"}) ? 'x' : isOneOf(name, {"lat", "latitude"}) ? 'y' : '\0';
}

} // namespace Vek::Chart::Viewer

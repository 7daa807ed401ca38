#include "parallel/FigureDescription.h"

#include <QByteArray>
#include <QDataStream>
#include <QIODevice>

#include <cstring>
#include <type_traits>

namespace Vek::Chart::Parallel {

namespace {

using Box = Types::BoundingBox_Base<double>;
using Range = Types::MinMax_Base<double>;

/// Writes values to a stream of bytes.
class Writer {
public:
  explicit Writer(QByteArray& p_bytes)
      : _stream(&p_bytes, QIODevice::WriteOnly) {}
  template <class Value>
  void operator()(const Value& p_value) {
    if constexpr (std::is_trivially_copyable_v<Value>)
      _stream.writeRawData(reinterpret_cast<const char*>(&p_value), sizeof(Value)); // NOLINT: between equal programs
    else
      _stream << p_value;
  }

private:
  QDataStream _stream;
};

/// Reads them in the same order.
class Reader {
public:
  explicit Reader(const QByteArray& p_bytes)
      : _stream(p_bytes) {}
  template <class Value>
  void operator()(Value& p_value) {
    if constexpr (std::is_trivially_copyable_v<Value>)
      _stream.readRawData(reinterpret_cast<char*>(&p_value), sizeof(Value)); // NOLINT: as above
    else
      _stream >> p_value;
  }

private:
  QDataStream _stream;
};

/// Visits all fields.
template <class Description, class Visit>
void ForEachField(Description& p_all, Visit& p_visit) {
  for (auto* const string : {&p_all.title, &p_all.subtitle, &p_all.axisTitles[0], &p_all.axisTitles[1],
                             &p_all.axisTitles[2], &p_all.colorTitle, &p_all.theme.family})
    p_visit(*string);
  for (auto* const color :
       {&p_all.theme.backgroundTop, &p_all.theme.backgroundBottom, &p_all.theme.title, &p_all.theme.text,
        &p_all.theme.faint, &p_all.theme.line, &p_all.theme.grid, &p_all.theme.halo})
    p_visit(*color);
  for (auto* const number : {&p_all.theme.titleSize, &p_all.theme.textSize, &p_all.theme.smallSize, &p_all.azimuth,
                             &p_all.elevation, &p_all.opacity})
    p_visit(*number);
  p_visit(p_all.isParallel);
  p_visit(p_all.extent);
  p_visit(p_all.values);
  p_visit(p_all.colorRange);
  p_visit(p_all.camera);
}

static_assert(std::is_trivially_copyable_v<Box> && std::is_trivially_copyable_v<Range> &&
              std::is_trivially_copyable_v<std::optional<Scene::Camera>>);

} // namespace

FigureDescription FigureDescription::Broadcast(const Processes& p_processes, const FigureDescription& p_description) {
  QByteArray bytes;
  if (p_processes.Rank() == 0) {
    Writer writer(bytes);
    ForEachField(p_description, writer);
    writer(QString::fromStdString(p_description.colorMap));
    QStringList notes;
    for (const QString& note : p_description.notes)
      notes.push_back(note);
    writer(notes);
  }
  Reader reader(bytes = p_processes.Broadcast(bytes));
  FigureDescription description;
  ForEachField(description, reader);
  QString colorMap;
  QStringList notes;
  reader(colorMap);
  reader(notes);
  description.colorMap = colorMap.toStdString();
  description.notes = {notes.begin(), notes.end()};
  return description;
}

Scene::Figure FigureDescription::MakeFigure() const {
  using Projection = Scene::Camera::Projection;
  Scene::Figure figure(title, subtitle);
  figure.theme = theme;
  figure.camera = camera;
  figure.SetExtent(extent).SetNotes(notes).SetAxisTitles(axisTitles[0], axisTitles[1], axisTitles[2]);
  figure.Look(azimuth, elevation, isParallel ? Projection::Parallel : Projection::Perspective);
  return figure;
}

} // namespace Vek::Chart::Parallel

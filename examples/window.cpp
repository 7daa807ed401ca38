// A figure in a window: drag to rotate, scroll to zoom, rest on the data to read them.
#include <io/ReadTable.h>
#include <widgets/FigureView.h>

#include <QApplication>

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  auto wind = Vek::Chart::Io::ReadTable(Vek::Chart::Io::SampleFile("noaa_navy_winds_1987-01.csv"));
  auto figure = std::make_shared<Vek::Chart::Scene::Figure>("Winds of the world", "January 1987");
  figure->Quiver(wind.Points("lon", "lat"), wind.Vectors("u", "v")).ColorByLength().ColorTitle("Speed in m/s");
  figure->SetAxisTitles("Longitude in °", "Latitude in °");
  Vek::Chart::Widgets::FigureView view(figure);
  view.resize(1200, 680);
  view.show();
  return application.exec();
}

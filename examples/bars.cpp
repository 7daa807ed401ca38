// Bars over a grid: events of a CSV file, counted by hour and day.
#include <io/ReadTable.h>
#include <scene/Figure.h>

int main() {
  auto quakes = Vek::Chart::Io::ReadTable(Vek::Chart::Io::SampleFile("earthquakes.csv"));
  std::vector<double> hours{1.5, 4.5, 7.5, 10.5, 13.5, 16.5, 19.5, 22.5}, days{0, 1, 2, 3, 4, 5, 6}, counts(8 * 7);
  for (const double time : quakes["time_ms"]) // since 1970; the file starts on 31 January 2018
    if (const auto slot = static_cast<std::size_t>((time - 1517356800000) / 10800000); slot < counts.size())
      ++counts[slot];
  Vek::Chart::Scene::Figure figure("Earthquakes in three hours", "31 January to 6 February 2018");
  figure.Bars(hours, days, counts).ColorTitle("Earthquakes");
  figure.SetAspect(1, 3, 0.3).SetAxisTitles("Hour (UTC)", "Days after 31 January", "Earthquakes").Save("bars.png");
}

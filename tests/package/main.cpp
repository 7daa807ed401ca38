#include "library/ColorMap.h"
#include "library/Version.h"

#include <iostream>

int main() {
  const Vek::Chart::Library::ColorMap map({Qt::blue, Qt::red}, Vek::Chart::Library::ColorMap::Discrete);
  std::cout << Vek::Chart::Library::Version().major_part << ' ' << map.Color(1.0).name().toStdString() << '\n';
}

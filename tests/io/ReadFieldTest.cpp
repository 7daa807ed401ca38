#include "io/FileError.h"
#include "io/ReadVectorField.h"
#include "io/ReadVolume.h"
#include "scene/VectorField.h"
#include "scene/VoxelGrid.h"
#include "tests/support/Damage.h"
#include "tests/support/Formats.h"
#include "tests/support/NetCdf.h"
#include "tests/support/Test.h"

using namespace Vek::Chart::Io;

namespace {

/// "x NAME[UNIT] POSITIONS … | NAMES [UNIT] | VECTORS | TIMES"; without what is empty.
std::string Summary(const Io::VectorField& p_field) {
  std::ostringstream out;
  for (std::size_t axis = 0; axis < 3; ++axis)
    if (p_field.axes[axis].size() > 1 || !p_field.axisNames[axis].empty())
      out << p_field.axisNames[axis] << '[' << p_field.axisUnits[axis] << "] " << p_field.axes[axis] << " | ";
  out << p_field.names[0] << ' ' << p_field.names[1] << ' ' << p_field.names[2] << '[' << p_field.unit << "] |";
  for (const Io::VectorField::Vector& vector : p_field.vectors)
    out << ' ' << std::vector<double>(vector.begin(), vector.begin() + (p_field.names[2].empty() ? 2 : 3));
  for (const std::string& time : p_field.times)
    out << " | " << time;
  return out.str() + (p_field.period != 0 ? " | period" : "");
}
std::string Vectors(const std::string& p_bytes, const FieldSelection& p_selection = {}) {
  std::istringstream stream(p_bytes);
  return Summary(ReadVectorField(stream, "f", p_selection));
}
const std::string Wind =
    "dimensions: lon = 2 ; lat = 2 ; time = UNLIMITED ;\nvariables:\n"
    "float lat(lat) ; lat:units = \"degrees_north\" ;\nint time(time) ;\n"
    "double lon(lon) ; lon:units = \"degrees_east\" ;\n"
    "time:units = \"hours since 1999-12-31 18:00:00\" ;\n"
    "short u(time, lat, lon) ; u:units = \"m s-1\" ; u:scale_factor = 0.5 ; u:add_offset = 10. ;\n"
    "u:_FillValue = -99s ;\nfloat v(time, lat, lon) ; v:units = \"m s-1\" ; v:missing_value = -1e34 ;\n"
    "data: lon = 10, 20 ; lat = -5, 5 ; time = 0, 6 ;\n"
    "u = 0, 2, -99, 6,  1, 3, 5, 7 ; v = 1, 2, 3, -1e34,  5, 6, 7, 8 ;\n";
const std::string WindAxes = "lon[degrees_east] 10 20 | lat[degrees_north] -5 5 | u v [m s-1] | ";
const std::string WindTimes = " | 1999-12-31 18:00 | 2000-01-01 00:00";

/// A variable u with these statements and values on x = 1, 2, 3, and v = 0.
std::string Row(const std::string& p_type, const std::string& p_statements, const std::string& p_values) {
  return NetCdf("dimensions: x = 3 ; y = 1 ;\nvariables: int x(x) ; " + p_type + " u(y, x) ; byte v(y, x) ; " +
                    p_statements + "\ndata: x = 1, 2, 3 ; u = " + p_values + " ; v = 0, 0, 0 ;\n",
                "64-bit data");
}
const std::string RowStart = "x[] 1 2 3 | y[] 0 | u v [] | ";

} // namespace

TEST(ReadVectorField, ReadsEachKindOfNetCdf) {
  for (const std::string kind : {"classic", "64-bit offset", "64-bit data", "netCDF-4", "netCDF-4 classic model"}) {
    const std::string bytes = NetCdf(Wind, kind);
    std::string first, second;
    const std::string error = ErrorOf<FileError>([&] {
      first = Vectors(bytes);
      second = Vectors(bytes, {{"v", "u"}, 1});
    });
    if (kind[0] == 'n' && !Reads("NetCDF-4")) {
      EXPECT_EQ(error, "f: this build does not read NetCDF-4 files; build it with the package libnetcdf-dev");
      continue;
    }
    EXPECT_EQ(error + first, WindAxes + "10 1 11 2 ? 3 13 ?" + WindTimes) << kind;
    EXPECT_EQ(second, "lon[degrees_east] 10 20 | lat[degrees_north] -5 5 | v u [m s-1] | 5 10.5 6 11.5 7 12.5 8 13.5" +
                          WindTimes)
        << kind;
  }
}

TEST(ReadVectorField, ReadsARegion) {
  // Node (i, j, k) has the value i + 10 j + 100 k, whatever the order of the axes in the file.
  const std::string text = "dimensions: z = 2 ; y = 3 ; x = 4 ;\nvariables: byte x(x) ; byte y(y) ; byte z(z) ;\n"
                           "short u(y, z, x) ; short b(y, z, x) ; data: x = 0, 1, 2, 3 ; y = 7, 5, 1 ;\n"
                           "z = 4, 6 ; u = 0, 1, 2, 3, 100, 101, 102, 103, 10, 11, 12, 13, 110, 111, 112, 113, "
                           "20, 21, 22, 23, 120, 121, 122, 123 ; b = 1 ;\n";
  for (const std::string kind : {"classic", "netCDF-4"}) {
    if (kind != "classic" && !Reads("NetCDF-4"))
      continue;
    const std::string bytes = NetCdf(text, kind);
    const auto read = [&](const Io::GridRegion& p_region) {
      std::istringstream stream(bytes);
      return ReadVectorField(stream, "f", {{"u", "u"}, 0, 0, p_region});
    };
    const Io::VectorField field = read({{1, 1, 1}, {3, 2, 1}});
    EXPECT_EQ(Summary(field).substr(0, 60), "x[] 1 2 3 | y[] 5 1 | z[] 6 | u u [] | 111 111 112 112 113 1") << kind;
    EXPECT_EQ(field.wholeAxes, (std::array<std::vector<double>, 3>{{{0, 1, 2, 3}, {7, 5, 1}, {4, 6}}}));
    EXPECT_EQ(ErrorOf<FileError>([&] {
                read({{1, 2, 0}, {3, 2, 1}});
              }),
              "f: region: expected an end of at most 3 along axis 1, got 2 nodes from 2 on");
    VolumeOptions options;
    options.variable = "u";
    options.region = Io::GridRegion{{0, 2, 0}, {2, 1, 2}};
    std::istringstream stream(bytes);
    const std::vector<float> values{20, 21, 120, 121};
    EXPECT_EQ(ReadVolume(stream, "f", options).Floats(), values) << kind;
    // A file of half a gigabyte takes little memory.
    const TempFolder folder;
    const std::string path = folder.Write("f.nc", bytes);
    fs::resize_file(path, 1 << 29);
    const PeakMemory memory;
    EXPECT_EQ(ReadVolume(path, options).Floats(), values) << kind;
    EXPECT_EQ(Summary(ReadVectorField(path, {{"u", "u"}, 0, 0, Io::GridRegion{{1, 1, 1}, {3, 2, 1}}})), Summary(field));
    EXPECT_LT(memory.Grown(), 32e6) << kind;
  }
  const Io::FieldSelection selection{{}, 0, 0, Io::GridRegion{{}, {1, 1, 1}}};
  EXPECT_EQ(ErrorOf<FileError>([&] { Vectors("x,y,u,v\n0,0,1,1\n", selection); }),
            "f: expected a NetCDF file to read a region of, got another format");
}

TEST(ReadVectorField, FollowsTheConventions) {
  const std::array<std::string, 3> rows[] = {
      {"any order of axes, depths, three components, standard names",
       NetCdf("dimensions: a = 2 ; b = 1 ; c = 2 ;\nvariables: float a(a) ; a:axis = \"X\" ; float b(b) ;\n"
              "b:standard_name = \"latitude\" ; float c(c) ; c:positive = \"down\" ; c:units = \"m\" ;\n"
              "float n(a, b, c) ; n:standard_name = \"northward_sea_water_velocity\" ;\n"
              "float e(a, b, c) ; e:standard_name = \"eastward_sea_water_velocity\" ;\n"
              "float up(a, b, c) ; up:standard_name = \"upward_sea_water_velocity\" ;\n"
              "data: a = 1, 2 ; b = 50 ; c = 0, 10 ; n = 1, 2, 3, 4 ; e = 5, 6, 7, 8 ; up = 9, 10, 11, 12 ;\n"),
       "a[] 1 2 | b[] 50 | c[m] 0 -10 | e n up[] | 5 1 9 7 3 11 6 2 10 8 4 12"},
      {"pressures stay positive, further dimensions have their first index",
       NetCdf(
           "dimensions: m = 2 ; p = 2 ; y = 1 ; x = 1 ;\nvariables: int m(m) ; m:standard_name = \"realization\" ;\n"
           "float p(p) ; p:units = \"hPa\" ; p:positive = \"down\" ; float u10(m, p, y, x) ; float v10(m, p, y, x) ;\n"
           "data: p = 1000, 500 ; u10 = 1, 2, 3, 4 ; v10 = 5, 6, 7, 8 ;\n"),
       "x[] 0 | y[] 0 | p[hPa] 1000 500 | u10 v10 [] | 1 5 2 6"},
      {"longitudes over the date line, around the globe",
       NetCdf("dimensions: lon = 4 ; lat = 1 ;\nvariables: float lon(lon) ; lon:units = \"degreesE\" ;\n"
              "float taux(lat, lon) ; float tauy(lat, lon) ;\n"
              "data: lon = 90, 180, -90, 0 ; taux = 1, 2, 3, 4 ; tauy = 0, 0, 0, 0 ;\n"),
       "lon[degreesE] 90 180 270 360 | lat[] 0 | taux tauy [] | 1 0 2 0 3 0 4 0 | period"},
      {"longitudes that start again at once, and none beside them",
       NetCdf("dimensions: X = 3 ; Y = 1 ;\nvariables: float X(X) ; X:units = \"degree_east\" ;\n"
              "float u(Y, X) ; float v(Y, X) ;\ndata: X = 350, 0, 10 ; u = 1, 2, 3 ; v = 0, 0, 0 ;\n"),
       "X[degree_east] 350 360 370 | Y[] 0 | u v [] | 1 0 2 0 3 0"},
      {"longitudes westwards",
       NetCdf("dimensions: x = 3 ; y = 1 ;\nvariables: float x(x) ; x:units = \"degrees_east\" ;\n"
              "float u(y, x) ; float v(y, x) ;\ndata: x = 10, 0, 350 ; u = 1, 2, 3 ; v = 0, 0, 0 ;\n"),
       "x[degrees_east] 10 0 -10 | y[] 0 | u v [] | 1 0 2 0 3 0"},
      {"dimensions without variables, by their names",
       NetCdf("dimensions: lon = 2 ; Time = 2 ; lat = 1 ;\nvariables: float u(lon, Time, lat) ;\n"
              "float v(lon, Time, lat) ;\ndata: u = 1, 2, 3, 4 ; v = 0, 0, 0, 0 ;\n"),
       "lon[] 0 1 | lat[] 0 | u v [] | 1 0 3 0"},
      {"_Unsigned", Row("byte", "u:_Unsigned = \"true\" ; u:_FillValue = -1b ;", "-2, -1, 1"),
       RowStart + "254 0 ? 0 1 0"},
      {"the default of what was not written", Row("float", "", "1, _, 3"), RowStart + "1 0 ? 0 3 0"},
      {"several missing values", Row("int", "u:missing_value = 7, 8 ;", "7, 8, 9"), RowStart + "? 0 ? 0 9 0"},
      {"a valid range, as it is stored", Row("short", "u:valid_range = 1s, 2s ; u:scale_factor = 10. ;", "0, 1, 3"),
       RowStart + "? 0 10 0 ? 0"},
      {"a valid range of unpacked values, by its type",
       Row("short", "u:valid_range = 0.f, 50.f ; u:scale_factor = 0.5f ;", "2, 101, 99"), RowStart + "1 0 ? 0 49.5 0"},
      {"valid_min, valid_max", Row("double", "u:valid_min = 1. ; u:valid_max = 2. ;", "0, 1, 3"),
       RowStart + "? 0 1 0 ? 0"},
      {"types of CDF-5", Row("uint64", "", "4294967296, 2, 3"), RowStart + "4.29497e+09 0 2 0 3 0"},
      {"one variable with records has no padding",
       NetCdf("dimensions: t = UNLIMITED ; x = 3 ;\nvariables: byte u(t, x) ; short v(t, x) ;\n"
              "data: u = 1, 2, 3, 4, 5, 6 ; v = 7, 8, 9, 10, 11, 12 ;\n"),
       "x[] 0 1 2 | t[] 0 1 | u v [] | 1 7 2 8 3 9 4 10 5 11 6 12"},
      {"a calendar with other days",
       NetCdf("dimensions: t = 1 ; y = 1 ; x = 1 ;\nvariables: float t(t) ; t:units = \"days since 2000-01-01\" ;\n"
              "t:calendar = \"360_day\" ; float u(t, y, x) ; float v(t, y, x) ;\ndata: t = 59.5 ; u = 1 ; v = 2 ;\n"),
       "x[] 0 | y[] 0 | u v [] | 1 2 | 59.5 days since 2000-01-01"},
  };
  for (const auto& [name, bytes, expected] : rows) {
    std::string summary;
    const std::string error = ErrorOf<FileError>([&, file = bytes] { summary = Vectors(file); });
    EXPECT_EQ(error + summary, expected) << name;
  }
}

TEST(ReadVectorField, PrintsTimes) {
  // Of reference times at steps 0 and 1.5, and of those of an archive that counts from the year 1.
  const std::array<std::string, 4> rows[] = {
      {"days since 1970-01-01T00:00:00Z", "0, 1.5", "1970-01-01 00:00", "1970-01-02 12:00"},
      {"seconds since 2000-2-28 23:59", "0, 86460", "2000-02-28 23:59", "2000-03-01 00:00"},
      {"Minutes  since 2000-01-01 00:00 UTC", "0, 1.5", "2000-01-01 00:00", "2000-01-01 00:01:30"},
      {"days since 2000-01-01 00:00:00 -6:30", "0, 1.5", "2000-01-01 06:30", "2000-01-02 18:30"},
      {"hours since 2000-01-01 12:00:00.0+0100", "0, 1.5", "2000-01-01 11:00", "2000-01-01 12:30"},
      {"hours since 1-1-1 00:00:0.0", "17067072, 17067816", "1948-01-01 00:00", "1948-02-01 00:00"},
      {"days since 1582-10-04", "0, 1", "1582-10-04 00:00", "1582-10-15 00:00"},
      {"days since -4712-01-01 12:00", "1, 2451545", "-4712-01-02 12:00", "2000-01-01 12:00"},
      {"weeks since 2000", "0, 1.5", "2000-01-01 00:00", "2000-01-11 12:00"},
      {"days since 20000101", "0, 1.5", "0 days since 20000101", "1.5 days since 20000101"},
      {"months since 2000-01-01", "0, 1.5", "0 months since 2000-01-01", "1.5 months since 2000-01-01"},
  };
  for (const auto& [unit, steps, first, second] : rows) {
    const std::string text = "dimensions: t = 2 ; y = 1 ; x = 1 ;\nvariables: double t(t) ; t:units = \"" + unit +
                             "\" ;\nfloat u(t, y, x) ; float v(t, y, x) ; data: t = " + steps + " ;\n";
    std::istringstream stream(NetCdf(text));
    EXPECT_EQ(ReadVectorField(stream, "f").times, (std::vector<std::string>{first, second})) << unit;
  }
}

TEST(ReadVectorField, ReadsTables) {
  const std::array<std::string, 3> rows[] = {
      {"any order, missing and repeated nodes, units",
       "u (m/s),lat,lon (deg),v\n1,0,10,2\n9,5,20,9\n3,5,20,4\n5,0,20,\n",
       "lon[deg] 10 20 | lat[] 0 5 | u (m/s) v [m/s] | 1 2 5 ? ? ? 3 4"},
      {"where a wind comes from", "x;y;dir;speed\n0;0;270;2\n1;0;180;3\n", "x[] 0 1 | y[] 0 |   [] | 2 0 0 3"},
      {"three components", "x y z u v w\n0 0 1 1 2 3\n0 0 0 4 5 6\n",
       "x[] 0 | y[] 0 | z[] 0 1 | u v w[] | 4 5 6 1 2 3"},
      {"a lattice", "# dims 2 1 2 origin 1 2 3 spacing 1 1 -2\nu,v,w\n1,0,0\n2,0,0\n3,0,0\n4,0,0\n",
       "x[] 1 2 | y[] 2 | z[] 3 1 | u v w[] | 1 0 0 2 0 0 3 0 0 4 0 0"},
  };
  for (const auto& [name, text, expected] : rows) {
    std::string summary = Vectors(text);
    summary = std::regex_replace(summary, std::regex("-?[0-9.]+e-1[0-9]"), "0"); // of sin(180°)
    EXPECT_EQ(summary, expected) << name;
  }
}

TEST(ReadVolume, ReadsNetCdf) {
  const std::string text =
      "dimensions: z = 3 ; y = 1 ; x = 2 ;\nvariables: float z(z) ; z:positive = \"down\" ;\n"
      "z:units = \"m\" ; short b(y, x) ; short t(z, y, x) ; t:scale_factor = 0.5 ; t:units = \"K\" ;\n"
      "t:_FillValue = 5s ; data: z = 0, 5, 10 ; t = 1, 2, 3, 4, 5, 6 ;\n";
  std::istringstream stream(NetCdf(text));
  const Volume volume = ReadVolume(stream, "f");
  EXPECT_EQ(volume.size, (std::array<std::size_t, 3>{2, 1, 3}));
  EXPECT_EQ(volume.Position(1, 0, 2), (Volume::Vector{1, 0, -10}));
  EXPECT_EQ(volume.range, (std::array<double, 2>{0.5, 3}));
  EXPECT_TRUE(volume.ValueType() == Volume::Float32 && std::isnan(volume.Value(0, 0, 2)) && volume.unit == "K");
  EXPECT_EQ(volume.variables, (std::vector<std::string>{"b", "t"}));
  std::istringstream other(NetCdf(std::regex_replace(text, std::regex("5, 10"), "5, 15")));
  const Volume uneven = ReadVolume(other, "f");
  EXPECT_EQ(uneven.offsets, (std::array<std::vector<double>, 3>{{{}, {}, {0, 5, 15}}}));
  EXPECT_EQ(uneven.Position(1, 0, 1.5), (Volume::Vector{1, 0, -10}));
  EXPECT_EQ(uneven.Position(0, 0, 3)[2], -25);
  EXPECT_EQ(Scene::VoxelGrid(uneven).Knots(2), (std::vector<double>{0, 0, -2.5, -5, -10, -15, -15}));
}

TEST(ReadVectorField, NamesFileAndReason) {
  const auto change = [](const char* p_from, const char* p_to) {
    return NetCdf(std::regex_replace(Wind, std::regex(p_from), p_to));
  };
  const std::string wind = NetCdf(Wind);
  std::string manyRecords = wind;
  manyRecords.replace(4, 4, "\x7F\xFF\xFF\xFE");
  const std::tuple<std::string, std::string, FieldSelection> rows[] = {
      {"", "f: expected a table, got no rows", {}},
      {"x,y\n1,2\n", "f: expected the columns of vectors, such as u and v or dir and speed", {}},
      {"u,v\n1,2\n", "f: expected columns of positions, such as x and y or lon and lat", {}},
      {"x,y,u,v\n1,2,3,4\n1,2,a,4\n", "f:3: expected a number in column \"u\", got \"a\"", {}},
      {"x,y,u,v\n1,2,3,4\n", "f: no column \"w\"; there are: x, y, u, v", {{"u", "w"}}},
      {"x,y,u,v\n0,0,0,0\n1,1,0,0\n2,2,0,0\n3,3,0,0\n4,4,0,0\n",
       "f: expected points of a grid, got 5 rows for a grid of four times as many nodes or more",
       {}},
      {"# dims 2 2\nu,v\n1,2\n",
       "f:1: expected \"# dims nx ny nz origin x y z spacing dx dy dz\", got \"# dims 2 2\"",
       {}},
      {"# dims 2 2 2\nu,v\n1,2\n", "f: expected 8 rows, got 1", {}},
      {wind, "f: no variable \"w\"; there are: lat, time, lon, u, v", {{"u", "w"}}},
      {wind, "f: expected a step of time below 2, got 2", {{}, 2}},
      {wind, "f: expected two or three components to be selected, got 1", {{"u"}}},
      {wind, "f: expected components on one grid, got \"u\" and \"lat\" with different dimensions", {{"u", "lat"}}},
      {NetCdf("dimensions: x = 2 ; y = 2 ;\nvariables: float l(y, x) ; float u(y, x) ; u:coordinates = \"l m\" ;\n"
              "float v(y, x) ;\n"),
       "f: expected a rectilinear grid, got a curvilinear one: the positions of \"u\" are in \"l\" of 2 dimensions",
       {}},
      {wind.substr(0, 100), "f: byte 96: expected ", {}},
      {wind.substr(0, wind.size() - 40), "f: variable \"time\": byte 620: expected 1 values,", {}},
      {manyRecords, "f: expected 2147483646 records of 28 bytes, got a file of", {}},
      {change("lat = -5, 5", "lat = 5, 5"), "f: axis \"lat\": expected ascending or descending numbers, got 5", {}},
      {change("v:units = .m s-1.", "v:units = \"K\""),
       "f: expected the components of vectors, such as u and v, got",
       {}},
  };
  for (const auto& [bytes, message, selection] : rows)
    EXPECT_EQ(ErrorOf<FileError>([&, b = bytes, s = selection] { Vectors(b, s); }).substr(0, message.size()), message);
  std::istringstream stream(wind);
  EXPECT_EQ(ErrorOf<FileError>([&] { ReadVectorField(stream, "f", {}, [](double) { return false; }); }),
            "f: cancelled");
}

TEST(ReadVectorField, ReadsAnArchivesFile) {
  // The table was written by another program from the same archive.
  const Io::VectorField table = ReadVectorField(VEK_SOURCE_DIR "/data/noaa_navy_winds_1987-01.csv");
  const std::string path = VEK_SOURCE_DIR "/data/navy_winds_1987.nc";
  double last = 0;
  const Io::VectorField january = ReadVectorField(path, {}, [&](double p_share) {
    EXPECT_GE(p_share, last);
    last = p_share;
    return true;
  });
  EXPECT_EQ(last, 1);
  EXPECT_EQ(january.axes, table.axes);
  EXPECT_EQ(january.times, (std::vector<std::string>{"1987-01-17 02:00", "1987-07-18 17:00"}));
  EXPECT_EQ(january.period, 360);
  ASSERT_EQ(january.vectors.size(), 144u * 73);
  for (std::size_t i = 0; i < table.vectors.size(); ++i)
    for (const std::size_t axis : {0, 1})
      ASSERT_EQ(float(january.vectors[i][axis]), float(table.vectors[i][axis])) << i;
  const Io::VectorField july = ReadVectorField(path, {{}, 1});
  const Scene::VectorField drawn =
      Scene::VectorField::Rectilinear(july.axes[0], july.axes[1], july.axes[2], july.vectors);
  EXPECT_EQ(drawn.Node(143, 72, 0).x, july.vectors.back()[0]);
  EXPECT_NE(july.vectors, january.vectors);
}

TEST(ReadVectorField, SurvivesDamage) {
  const auto read = [](const std::string& p_bytes) {
    std::istringstream stream(p_bytes);
    const Io::VectorField field = ReadVectorField(stream, "f");
    EXPECT_EQ(field.vectors.size(), field.axes[0].size() * field.axes[1].size() * field.axes[2].size());
  };
  for (const char* const kind : {"classic", "64-bit offset", "64-bit data"})
    CheckDamage<FileError>(NetCdf(Wind, kind), read);
  for (const char* const table : {"lon,lat,u,v\n0,0,1,2\n1,0,3,4\n0,1,5,6\n", "# dims 2 1 1\nu,v\n1,2\n3,4\n"})
    CheckDamage<FileError>(table, read);
}

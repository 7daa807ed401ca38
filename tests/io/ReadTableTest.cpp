#include "io/ReadTable.h"
#include "io/FileError.h"
#include "tests/support/Test.h"

using namespace Vek::Chart::Io;

namespace {

Table Read(const std::string& p_text) {
  std::istringstream stream(p_text);
  return ReadTable(stream, "t.csv");
}

/// "name:cell cell …" for each column; NaN is "?".
std::string Text(const Table& p_table) {
  std::ostringstream text;
  for (const Table::Column& column : p_table.Columns()) {
    text << column.name << ':';
    for (const double number : column.numbers)
      std::isnan(number) ? text << " ?" : text << ' ' << number;
    for (const std::string& string : column.strings)
      text << " '" << string << '\'';
    text << '\n';
  }
  return text.str();
}

} // namespace

TEST(ReadTable, TakesTheDialectsOfTables) {
  const std::tuple<const char*, std::string, std::string> cases[] = {
      {"commas", "lon,lat\n1,2\n-3,4e2\n", "lon: 1 -3\nlat: 2 400\n"},
      {"no line feed at the end, CR LF, blanks around", "a , b\r\n 1 , +2\r\n3,4", "a: 1 3\nb: 2 4\n"},
      {"CR alone", "a,b\r1,2\r3,4\r", "a: 1 3\nb: 2 4\n"},
      {"byte order mark",
       "\xEF\xBB\xBF"
       "a,b\n1,2\n",
       "a: 1\nb: 2\n"},
      {"semicolons and decimal commas", "a;b\n1,5;2\n-0,25;1.5\n", "a: 1.5 -0.25\nb: 2 1.5\n"},
      {"tabs with empty cells", "a\tb\tc\n1\t\t3\n\t2\t\n", "a: 1 ?\nb: ? 2\nc: 3 ?\n"},
      {"blanks", "# x y z\n 1  2\t3\n4 5 6 \n", "x: 1 4\ny: 2 5\nz: 3 6\n"},
      {"no names", "1,2\n3,4\n", "1: 1 3\n2: 2 4\n"},
      {"comments and blank lines", "a,b\n# c\n\n1,2\n   \n#\n3,4\n", "a: 1 3\nb: 2 4\n"},
      {"missing", "a,b,c\nNA,,nan\n1,--,N/A\nNULL,None,#N/A\n", "a: ? 1 ?\nb: ? ? ?\nc: ? ? ?\n"},
      {"beyond the range of doubles", "a,b\n1e400,1e-400\n-1e400,2\n", "a: inf -inf\nb: 0 2\n"},
      {"beyond it without exponents",
       "a,b\n0." + std::string(400, '0') + "1,-1e-400\n1" + std::string(400, '0') + ",2\n", "a: 0 inf\nb: -0 2\n"},
      {"two signs", "a,b\n+-1,+1\n", "a: '+-1'\nb: 1\n"},
      {"bars", "a|b\n1|x y\n|z\n", "a: 1 ?\nb: 'x y' 'z'\n"},
      {"names in a comment with the separator", "# lon, wind speed\n1,2\n3,4\n", "lon: 1 3\nwind speed: 2 4\n"},
      {"the separator named by a spreadsheet", "sep=;\r\na;b\r\n1,5;2\r\n", "a: 1.5\nb: 2\n"},
      {"a missing cell in the first row of numbers", "1,,3\n4,5,6\n", "1: 1 4\n2: ? 5\n3: 3 6\n"},
      {"quotes", "\"a, \"\"b\"\"\",c\n\"1\",\"x\ny\"\n2 , \"z\" \n", "a, \"b\": 1 2\nc: 'x\ny' 'z'\n"},
      {"strings that come late keep the spelling", "a,b\n1.50,1\nx,2\n,3\n", "a: '1.50' 'x' ''\nb: 1 2 3\n"},
      {"one column with a blank in its name", "wind speed\n1\n2\n", "wind speed: 1 2\n"},
      {"commas within cells of semicolons", "a, b;c\nx, y;2\n", "a, b: 'x, y'\nc: 2\n"},
      {"one column below a comment", "# made by a program\n1\n2\n", "1: 1 2\n"},
      {"one column", "depth\n1\n2\n", "depth: 1 2\n"},
      {"names alone", "a,b\n", "a:\nb:\n"},
  };
  for (const auto& [name, text, expected] : cases)
    EXPECT_EQ(Text(Read(text)), expected) << name;
}

TEST(ReadTable, NamesFileLineAndReason) {
  const std::pair<std::string, std::string> cases[] = {
      {"", "t.csv: expected a table, got no rows"},
      {"# only\n", "t.csv: expected a table, got no rows"},
      {"a,b\n1,2\n\n3\n", "t.csv:4: expected 2 cells as in line 1, got \"3\""},
      {"a,b\n1,2,3\n", "t.csv:2: expected 2 cells as in line 1, got \"1,2,3\""},
      {"a,b\n\"x\n\ny\",2\n1,\"2\n", "t.csv:5: expected a quote that ends, got \"1,\"2 \""},
      {"a,b\n\"1\"2,3\n", "t.csv:2: expected a separator after a quote, got \"2,3\""},
      {std::string("a,b\n1,\0\n", 9), "t.csv: expected a table of text, got binary data"},
      {std::string("\xFF\xFE"
                   "a\0",
                   4),
       "t.csv: expected UTF-8, got UTF-16; save the file as UTF-8"},
      {std::string((16u << 20) + 2, '1'), "t.csv: a line is longer than 16 MiB"},
  };
  for (const auto& row : cases)
    EXPECT_EQ(ErrorOf<FileError>([&] { Read(row.first); }), row.second);
  const TempFolder folder;
  const std::string path = folder.File("none.csv");
  EXPECT_EQ(ErrorOf<FileError>([&] { ReadTable(path); }), path + ": cannot be opened: No such file or directory");
  EXPECT_NE(ErrorOf<FileError>([&] { ReadTable(folder.Path().string()); }), "") << "a folder";
}

TEST(SampleFile, FindsTheDataThatComeWithTheLibrary) {
  EXPECT_EQ(ReadTable(SampleFile("noaa_navy_winds_1987-01.csv")).Rows(), 144u * 73u);
  EXPECT_EQ(ErrorOf<FileError>([] { SampleFile("none.csv"); }),
            "none.csv: no such sample; the package vek-chart-data has them");
  EXPECT_NE(ErrorOf<FileError>([] { SampleFile(""); }), "") << "the folder";
}

TEST(Table, GivesColumnsAndPoints) {
  const Table table = Read("x,y,z,name\n1,2,3,a\n4,,6,b\n");
  EXPECT_EQ(table.Rows(), 2u);
  EXPECT_EQ(&table["z"], &table[2]);
  EXPECT_EQ(table.Points("x", "z"), (std::vector<std::array<double, 3>>{{1, 3, 0}, {4, 6, 0}}));
  EXPECT_EQ(table.Points("z", "x", "z")[1], (std::array<double, 3>{6, 4, 6}));
  EXPECT_TRUE(std::isnan(table.Points("x", "y")[1][1]));
  EXPECT_EQ(table.Strings("name"), (std::vector<std::string>{"a", "b"}));
  const auto error = [](const auto& p_call) { return ErrorOf<std::invalid_argument>(p_call); };
  EXPECT_EQ(error([&] { table["w"]; }), "t.csv: no column \"w\"; there are: x, y, z, name");
  EXPECT_EQ(error([&] { table[4]; }), "t.csv: no column 4; there are 4");
  EXPECT_EQ(error([&] { table["name"]; }), "t.csv:2: expected a number in column \"name\", got \"a\"");
  EXPECT_EQ(error([&] { table.Strings("x"); }), "t.csv: column \"x\": expected strings, got numbers");
  EXPECT_EQ(error([] { Table("t", {{"a", {1}, {}}, {"b", {1, 2}, {}}}); }), "t: column \"b\": expected 1 cells, got 2");
}

TEST(Table, TurnsTimesIntoSeconds) {
  const std::pair<const char*, double> cells[] = {
      {"2024-05", 1714521600},
      {"2024-05-01", 1714521600},
      {"2024-05-01T12:30Z", 1714566600},
      {"2024-02-29 23:59:59 UTC", 1709251199},
      {"2024-05-01T00:30+02:00", 1714516200},
      {"2024-05-01 12:30:15 -0630", 1714590015},
      {"2024-05-01T00:30+02", 1714516200},
      {"1969-12-31T23:59:58.75", -1.25},
      {"2016-12-31T23:59:60Z", 1483228800}, // a leap second
      {"0000-03-01", -62162035200},
      {"9999-12-31T23:59:59Z", 253402300799},
      {"NaT", std::nan("")},
      {"nan", std::nan("")},
      {"--", std::nan("")},
  };
  std::string text = "t,n\n";
  for (const auto& cell : cells)
    text += std::string(cell.first) + ",1\n";
  const Table table = Read(text);
  const std::vector<double> times = table.Times("t");
  ASSERT_EQ(times.size(), std::size(cells));
  for (std::size_t i = 0; i < times.size(); ++i)
    EXPECT_TRUE(times[i] == cells[i].second || (std::isnan(times[i]) && std::isnan(cells[i].second)))
        << cells[i].first << ": " << times[i];
  EXPECT_TRUE(table.HasTimes("t"));
  EXPECT_FALSE(table.HasTimes("n"));
  EXPECT_EQ(Read("t,t\n2024-05-01,2024-05-02\n").Times(1), std::vector<double>{1714608000}) << "of one name";
  EXPECT_FALSE(Read("t,n\nNaT,1\n").HasTimes("t")) << "all missing";
  for (const char* none : {"2023-02-29",
                           "2024-13-01",
                           "2024-00",
                           "2024-04-31",
                           "2024-05-00",
                           "2024-5-1",
                           "24-05-01",
                           "2024-05T12:30",
                           "2024-05-01T",
                           "2024-05-01T12",
                           "2024-05-01T24:00",
                           "2024-05-01T12:60",
                           "2024-05-01T12:30:61",
                           "2024-05-01T12:30:15.",
                           "2024-05-01T12:30+",
                           "2024-05-01T12:30+02:",
                           "2024-05-01T12:30Zx",
                           "2024-05-01x",
                           "2024-05-01T12:30+24:00",
                           "+024-05-01",
                           "2024-+5-01",
                           "yesterday"}) {
    const Table other = Read(std::string("t,n\n2024-05-01,1\n") + none + ",2\n");
    EXPECT_FALSE(other.HasTimes("t")) << none;
    EXPECT_EQ(ErrorOf<std::invalid_argument>([&] { other.Times("t"); }),
              std::string("t.csv: column \"t\", row 2: expected a time such as 2024-05-01T12:30, got \"") + none + '"');
  }
  EXPECT_EQ(ErrorOf<std::invalid_argument>([&] { table.Times("n"); }),
            "t.csv: column \"n\": expected times such as 2024-05-01T12:30, got numbers");
}

// Cells in quotes go on over the borders of blocks, and over whole blocks.
TEST(ReadTable, NeitherResultNorErrorsDependOnThreads) {
  std::string text = "# by hand\na,b,c\n";
  for (int row = 0; row < 60000; ++row) {
    if (row % 7000 == 6999)
      text += "# comment\n\n";
    const std::string number = std::to_string(row * 0.37);
    std::string quoted = std::string(row % 2000 == 5 ? 9000 : 3, 'x') + ",\n\"\"1\n";
    for (int line = 0; row == 30077 && line < 60000; ++line) // looks like rows
      quoted += "1,2,3\n";
    quoted = '"' + quoted + '"';
    text += number + ',' + (row % 500 == 77 ? quoted : number) + ',' + (row == 50000 ? "late" : "3") +
            (row % 3 == 0 ? "\r\n" : "\n");
  }
  const auto read = [](const std::string& p_text, int p_threads) {
    std::vector<double> shares;
    const auto progress = [&](double p_share) { return shares.push_back(p_share), true; };
    try {
      std::istringstream stream(p_text);
      const Table table = ReadTable(stream, "t.csv", progress, Vek::Chart::Utility::Threads(p_threads));
      std::string all = Text(table);
      for (const Table::Column& column : table.Columns())
        all += ' ' + std::to_string(column.stringRow) + '/' + std::to_string(column.stringLine);
      return std::pair(all, shares);
    } catch (const FileError& error) {
      return std::pair(std::string(error.what()), shares);
    }
  };
  std::string cut = text, unequal = text;
  cut.insert(text.rfind("\n", text.size() * 4 / 5) + 1, "1,\"2,3\n");
  unequal.insert(text.rfind(",3\n", text.size() / 3) + 3, "1,2\n");
  for (const std::string& table : {text, cut, unequal}) {
    const auto expected = read(table, 1);
    EXPECT_EQ(expected.first.find("t.csv:") == 0, table.size() != text.size()) << expected.first.substr(0, 200);
    for (const int threads : {2, 3, 7})
      EXPECT_TRUE(read(table, threads) == expected) << threads;
  }
  const std::string all = read(text, 3).first;
  const auto late = std::count(text.begin(), text.begin() + std::ptrdiff_t(text.find(",late")), '\n') + 1;
  EXPECT_EQ(all.substr(all.rfind('\n') + 1), " 0/0 77/80 50000/" + std::to_string(late));
}

#include "scene/Ticks.h"
#include "tests/support/Test.h"

#include <QDateTime>
#include <QStringList>

#include <iomanip>

namespace {

/// "0 | 5 | 10  [×10⁶]"; minor ticks are dots.
std::string Joined(const Ticks& p_ticks) {
  QStringList strings;
  for (const QString& string : p_ticks.Strings())
    strings << (string.isEmpty() ? "." : string);
  return (strings.join(" | ").replace(". | ", ".") + (p_ticks.Note().isEmpty() ? "" : "  [" + p_ticks.Note() + "]"))
      .toStdString();
}

} // namespace

TEST(Ticks, LinearStrings) {
  const std::tuple<double, double, int, const char*> cases[] = {
      {0, 15, 6, "0 | 5 | 10 | 15"},
      {0, 10, 6, "0 | 2 | 4 | 6 | 8 | 10"},
      {-1, 1, 6, "−1.0 | −0.5 | 0.0 | 0.5 | 1.0"},
      {0, 1, 5, "0.00 | 0.25 | 0.50 | 0.75 | 1.00"},
      {10, 0, 3, "10 | 5 | 0"},
      {0.31, 0.39, 4, "0.32 | 0.34 | 0.36 | 0.38"},
      {0, 999999, 3, "0 | 500000"},
      {0, 1e6, 3, "0.0 | 0.5 | 1.0  [×10⁶]"},
      {0, 3e-5, 4, "0.00000 | 0.00001 | 0.00002 | 0.00003"},
      {0, 9e-6, 4, "0.0 | 2.5 | 5.0 | 7.5  [×10⁻⁶]"},
      {-3e7, -1e7, 3, "−30 | −20 | −10  [×10⁶]"},
      {1987, 1988, 6, "1987.0 | 1987.2 | 1987.4 | 1987.6 | 1987.8 | 1988.0"},
      {1990, 2010, 5, "1990 | 1995 | 2000 | 2005 | 2010"},
      {100000, 100004, 5, "0 | 1 | 2 | 3 | 4  [+ 100000]"},
      {-100004, -100000, 5, "−4 | −3 | −2 | −1 | 0  [− 100000]"},
      {99998, 100002, 5, "−2 | −1 | 0 | 1 | 2  [+ 100000]"},
      {1e9, 1e9 + 5e5, 6, "1.0000 | 1.0001 | 1.0002 | 1.0003 | 1.0004 | 1.0005  [×10⁹]"},
      {1.5, 1.5 + 4e-9, 5, "0 | 1 | 2 | 3 | 4  [×10⁻⁹ + 1.5]"},
      {7.25, 7.25, 6, "7.25"},
      {0, 0, 6, "0"},
      {11, 12, 1, "12"},
      {0, 1, 0, ""},
      {NAN, 1, 5, ""},
      {0, INFINITY, 5, ""},
  };
  for (const auto& [low, high, most, expected] : cases)
    EXPECT_EQ(Joined(Ticks::Linear(low, high, static_cast<std::size_t>(most))), expected) << low << ' ' << high;
}

TEST(Ticks, LogarithmicStrings) {
  const std::tuple<double, double, int, const char*> cases[] = {
      {1, 10, 6, "1 | 2 | ..5 | ....10"},
      {2, 90, 3, ".3 | ......10 | .30 | ......"},
      {2, 90, 1, "........10 | ........"},
      {0.01, 100, 6, "0.01 | ........0.1 | ........1 | ........10 | ........100"},
      {1e-8, 1e8, 6, "..10⁻⁶ | ..10⁻³ | ..10⁰ | ..10³ | ..10⁶ | .."},
      {10, 0.1, 6, "10 | ........1 | ........0.1"},
      {1e-3, 2e-2, 6, "0.001 | 0.002 | ..0.005 | ....0.01 | 0.02"},
      {2e6, 3e7, 6, "2×10⁶ | ..5×10⁶ | ....10⁷ | 2×10⁷ | ."},
      {2, 9, 6, "2 | 4 | 6 | 8"},
      {3e6, 2e7, 6, "5 | 10 | 15 | 20  [×10⁶]"},
      {7, 7, 6, "7"},
      {0, 10, 6, ""},
      {1, -10, 6, ""},
      {1, NAN, 6, ""},
      {1, 10, 0, ""},
  };
  for (const auto& [low, high, most, expected] : cases)
    EXPECT_EQ(Joined(Ticks::Logarithmic(low, high, static_cast<std::size_t>(most))), expected) << low << ' ' << high;
}

TEST(Ticks, DegreeStrings) {
  using Angle = Ticks::Angle;
  const std::tuple<double, double, int, Angle, const char*> cases[] = {
      {-180, 180, 9, Angle::Longitude, "180° | 135° W | 90° W | 45° W | 0° | 45° E | 90° E | 135° E | 180°"},
      {-90, 90, 7, Angle::Latitude, "90° S | 60° S | 30° S | 0° | 30° N | 60° N | 90° N"},
      {45, 46, 3, Angle::Latitude, "45.0° N | 45.5° N | 46.0° N"},
      {170, 195, 6, Angle::Longitude, "170° E | 175° E | 180° | 175° W | 170° W | 165° W"},
      {-45, 45, 3, Angle::Plain, "−30° | 0° | 30°"},
  };
  for (const auto& [low, high, most, angle, expected] : cases)
    EXPECT_EQ(Joined(Ticks::Degrees(low, high, static_cast<std::size_t>(most), angle)), expected) << low;
}

namespace {

/// Seconds since 1970 of "2021", "2021-03", "2021-03-14", "2021-03-14 12:30" and so on.
double Seconds(QString p_time) {
  p_time.replace(QChar(0x2212), '-');
  p_time += QString("0000-01-01 00:00:00").mid(p_time.size());
  const QDateTime whole = QDateTime::fromString(p_time.left(19).replace(' ', 'T') + 'Z', Qt::ISODate);
  return static_cast<double>(whole.toSecsSinceEpoch()) + p_time.mid(19).toDouble();
}

/// The value of a tick of `Ticks::Dates`, from its string and the note.
double Time(QString p_string, const QString& p_note) {
  if (p_note.isEmpty())
    return Seconds(p_string);
  if (p_string.endsWith(" s")) // "2021-03-14 12:30" and "15.5 s"
    return Seconds(p_note) + p_string.remove(" s").toDouble();
  if (p_string.contains(':') && p_note.size() > 4) // "2021-03-14" and "12:30"
    return Seconds(p_note + ' ' + p_string);
  if (p_note.size() > 4) // "2021-03" and "14"
    return Seconds(p_note + '-' + p_string.rightJustified(2, '0'));
  QStringList parts = p_string.split(' '); // "2021" and "Mar", "Mar 14" or "Mar 14 12:30"
  const auto month = QString("JanFebMarAprMayJunJulAugSepOctNovDec").indexOf(parts[0]) / 3 + 1;
  parts[0] = p_note + '-' + QString::number(month).rightJustified(2, '0');
  if (parts.size() > 1)
    parts = QStringList{parts[0] + '-' + parts[1].rightJustified(2, '0'), parts.value(2)};
  return Seconds(parts.join(' ').trimmed());
}

} // namespace

TEST(Ticks, DateStrings) {
  const std::tuple<const char*, const char*, int, const char*> cases[] = {
      {"1650", "2021", 6, "1700 | 1800 | 1900 | 2000"},
      {"1987-06", "2003", 6, "1990 | 1995 | 2000"},
      {"2020-11", "2022-02", 6, "2021-01 | 2021-04 | 2021-07 | 2021-10 | 2022-01"},
      {"2021-01", "2021-12", 6, "Jan | Mar | May | Jul | Sep | Nov  [2021]"},
      {"2021-02-20", "2021-04-15", 8, "Feb 22 | Mar 1 | Mar 8 | Mar 15 | Mar 22 | Apr 1 | Apr 8 | Apr 15  [2021]"},
      {"2020-02-25", "2020-03-04", 6, "Feb 25 | Feb 27 | Mar 1 | Mar 3  [2020]"},
      {"2021-03", "2021-03-31", 6, "1 | 8 | 15 | 22  [2021-03]"},
      {"2020-12-30", "2021-01-02", 6, "2020-12-30 | 2020-12-31 | 2021-01-01 | 2021-01-02"},
      {"2021-03-14", "2021-03-15", 6,
       "Mar 14 00:00 | Mar 14 06:00 | Mar 14 12:00 | Mar 14 18:00 | Mar 15 00:00  [2021]"},
      {"2021-03-14 05", "2021-03-14 19", 6, "06:00 | 09:00 | 12:00 | 15:00 | 18:00  [2021-03-14]"},
      {"2021-03-14 12:29:50", "2021-03-14 12:30:30", 5,
       "12:29:50 | 12:30:00 | 12:30:10 | 12:30:20 | 12:30:30  [2021-03-14]"},
      {"2021-03-14 12:30:00", "2021-03-14 12:30:02", 5,
       "00.0 s | 00.5 s | 01.0 s | 01.5 s | 02.0 s  [2021-03-14 12:30]"},
      {"2000-02-28", "2000-03-02", 6, "Feb 28 | Feb 29 | Mar 1 | Mar 2  [2000]"},
      {"1900-02-27", "1900-03-02", 6, "Feb 27 | Feb 28 | Mar 1 | Mar 2  [1900]"},
      {"1969-12-31", "1970-01-02", 3, "1969-12-31 | 1970-01-01 | 1970-01-02"},
      {"2022", "2020", 3, "2022 | 2021 | 2020"},
      {"2021-03-14 12:30:07", "2021-03-14 12:30:07", 6, "2021-03-14 12:30:07"},
  };
  for (const auto& [low, high, most, expected] : cases)
    EXPECT_EQ(Joined(Ticks::Dates(Seconds(low), Seconds(high), static_cast<std::size_t>(most))), expected) << low;
  EXPECT_EQ(Joined(Ticks::Dates(-70000 * 3.2e7, 70000 * 3.2e7, 3)), "−50000 | 0000 | 50000");
  EXPECT_EQ(Joined(Ticks::Dates(0, 2e15, 6)), "");
}

TEST(Ticks, ManyDates) {
  std::mt19937 random(11);
  const auto uniform = [&](double p_low, double p_high) {
    return p_low + (p_high - p_low) * static_cast<double>(random()) / 4294967296.0;
  };
  for (int i = 0; i < 4000; ++i) {
    const double low = uniform(-1.2e10, 1.2e10), high = low + std::pow(10, uniform(-4, 10)); // years 1590 to 2667
    const std::size_t most = 1 + random() % 9;
    const Ticks ticks = Ticks::Dates(low, high, most);
    SCOPED_TRACE(::testing::Message() << std::setprecision(17) << low << ' ' << high << ' ' << most << ' '
                                      << Joined(ticks));
    const std::vector<double> values = ticks.Values();
    ASSERT_GE(values.size(), most < 6 ? 1u : 2u);
    ASSERT_LE(values.size(), most);
    EXPECT_GE(values.front(), low);
    EXPECT_LE(values.back(), high);
    EXPECT_EQ(std::adjacent_find(values.begin(), values.end(), std::greater_equal<double>()), values.end());
    EXPECT_EQ(std::set<QString>(ticks.Strings().begin(), ticks.Strings().end()).size(), values.size());
    for (std::size_t j = 0; j < values.size() && values.size() > 1; ++j)
      EXPECT_NEAR(Time(ticks.Strings()[j], ticks.Note()), values[j], 4e-6) << ticks.Strings()[j].toStdString();
  }
}

TEST(Ticks, BoundStrings) {
  const std::tuple<std::vector<double>, int, const char*> cases[] = {
      {{33, 34.5, 35, 0.1 + 35.2}, 9, "33 | 34.5 | 35 | 35.3"},
      {{0, 12.3456, 50}, 9, "0 | 12.35 | 50"},
      {{1e-7, 0.001, 1, 1000, 1e7}, 9, "10⁻⁷ | 0.001 | 1 | 1000 | 10⁷"},
      {{0, 1, 2, 3, 4}, 3, "0 | .2 | .4"},
      {{0, NAN}, 3, ""},
      {{}, 3, ""},
  };
  for (const auto& [bounds, most, expected] : cases)
    EXPECT_EQ(Joined(Ticks::OfBounds(bounds, static_cast<std::size_t>(most))), expected);
}

TEST(Ticks, ReadOuts) {
  using Angle = Ticks::Angle;
  const std::tuple<Ticks, double, const char*, int, const char*> cases[] = {
      {Ticks::Linear(0, 15, 6), 7.31, "m/s", 0, "7 m/s"},
      {Ticks::Linear(0, 15, 6), 7.31, "m/s", 1, "7.3 m/s"},
      {Ticks::Linear(0, 15, 6), -0.2, "", 0, "0"},
      {Ticks::Linear(0, 15, 6), -7.31, "", 2, "−7.31"},
      {Ticks::Linear(0, 9e-6, 6), 3.4e-8, "m", 2, "0.03×10⁻⁶ m"},
      {Ticks::Linear(0, 9e-6, 6), 0, "m", 0, "0 m"},
      {Ticks::Linear(100000, 100004, 5), 100002.4, "", 1, "100002.4"},
      {Ticks::Linear(0, 1, 5), 1e300, "", 0, "10³⁰⁰"},
      {Ticks::Linear(0, 1, 5), Infinity, "K", 0, "∞ K"},
      {Ticks::Linear(0, 1, 5), NAN, "K", 0, "no data"},
      {Ticks::Degrees(-90, 90, 7, Angle::Latitude), -45.52, "", 1, "45.5° S"},
      {Ticks::Degrees(-180, 180, 7, Angle::Longitude), 190.4, "", 0, "170° W"},
      {Ticks::Dates(0, 86400 * 365, 7), 86400 * 33.7, "", 0, "1970-02"},
      {Ticks::Dates(0, 86400 * 365, 7), 86400 * 33.7, "", 2, "1970-02-03 16:48"},
      {Ticks::Dates(0, 86400 * 365, 7), -0.004, "", 5, "1970-01-01 00:00:00.00"},
      {Ticks::Logarithmic(1, 1e4, 7), 1234.5, "", 0, "1230"},
      {Ticks::Logarithmic(1, 1e9, 7), 1.5e7, "", 0, "1.5×10⁷"},
      {Ticks::OfBounds({33, 34.5, 35}, 9), 33.123, "", 1, "33.12"},
      {Ticks(), 0.3, "", 0, "0.3"},
  };
  for (const auto& [ticks, value, unit, more, expected] : cases)
    EXPECT_EQ(ticks.Format(value, unit, more).toStdString(), expected) << value;
}

namespace {

/// "−2.5×10⁻⁸" as a number.
double Number(QString p_string) {
  static const QString Superscripts = "⁰¹²³⁴⁵⁶⁷⁸⁹⁻";
  if (p_string.startsWith("10") && Superscripts.contains(p_string.mid(2, 1)) && p_string.size() > 2)
    p_string.prepend("1×");
  p_string.replace(QChar(0x2212), '-').replace("×10", "e");
  for (int i = 0; i < Superscripts.size(); ++i)
    p_string.replace(Superscripts[i], QString("0123456789-")[i]);
  bool ok = false;
  const double number = p_string.toDouble(&ok);
  return ok ? number : NAN;
}

/// Checks what holds for the ticks of every range.
void CheckTicks(const Ticks& p_ticks, double p_low, double p_high, std::size_t p_most) {
  SCOPED_TRACE(::testing::Message() << std::setprecision(17) << p_low << ' ' << p_high << ' ' << p_most << ' '
                                    << Joined(p_ticks));
  std::vector<double> values = p_ticks.Values();
  ASSERT_EQ(values.size(), p_ticks.Strings().size());
  ASSERT_GE(values.size(), 1u);
  if (p_low > p_high)
    std::reverse(values.begin(), values.end());
  EXPECT_GE(values.front(), std::min(p_low, p_high));
  EXPECT_LE(values.back(), std::max(p_low, p_high));
  EXPECT_EQ(std::adjacent_find(values.begin(), values.end(), std::greater_equal<double>()), values.end());

  // Notes are "×10⁶", "+ 1.5" or both.
  QStringList note = p_ticks.Note().split(' ');
  const QString power = note[0].startsWith("×") ? note.takeFirst() : "×10⁰";
  const double offset = note.size() < 2 ? 0 : Number((note[0] == "+" ? "" : note[0]) + note[1]);
  std::set<QString> distinct;
  for (std::size_t i = 0; i < p_ticks.Strings().size(); ++i) {
    const QString& string = p_ticks.Strings()[i];
    if (string.isEmpty())
      continue;
    const auto point = string.indexOf('.');
    const double lastDigit = point < 0 ? 1 : std::pow(10, point + 1 - static_cast<double>(string.size()));
    const double value = p_ticks.Values()[i];
    EXPECT_NEAR(Number(string + power) + offset, value,
                1e-6 * lastDigit * Number("1" + power) + std::abs(value) * 1e-15);
    distinct.insert(string);
  }
  const auto labelled = static_cast<std::size_t>(std::count_if(
      p_ticks.Strings().begin(), p_ticks.Strings().end(), [](const QString& p_string) { return !p_string.isEmpty(); }));
  EXPECT_EQ(distinct.size(), labelled);
  EXPECT_LE(labelled, p_most);
  EXPECT_GE(labelled, 1u);
}

} // namespace

TEST(Ticks, ManyRanges) {
  std::mt19937 random(7);
  const auto uniform = [&](double p_low, double p_high) {
    return p_low + (p_high - p_low) * static_cast<double>(random()) / 4294967296.0;
  };
  int few = 0;
  constexpr int Count = 2000;
  for (int i = 0; i < Count; ++i) {
    const double middle = uniform(-1, 1) * std::pow(10, uniform(-12, 12));
    const double span = std::pow(10, uniform(-14, 12));
    const double low = middle - span, high = middle + span;
    const std::size_t most = 1 + random() % 9;
    CheckTicks(Ticks::Linear(low, high, most), low, high, most);
    CheckTicks(Ticks::Linear(high, low, 6), high, low, 6);
    few += Ticks::Linear(low, high, 6).Values().size() < 3 && high - low > 1e-12 * std::abs(middle);
  }
  EXPECT_EQ(few, 0);

  constexpr double Largest = std::numeric_limits<double>::max(), Smallest = std::numeric_limits<double>::denorm_min();
  const std::pair<double, double> extremes[] = {{-Largest, Largest},
                                                {0, Largest},
                                                {Largest / 2, Largest},
                                                {std::nextafter(Largest, 0), Largest},
                                                {-1e300, 1e300},
                                                {0, Smallest},
                                                {-Smallest, Smallest},
                                                {0, 100 * Smallest},
                                                {Smallest, 1},
                                                {1, std::nextafter(1, 2)},
                                                {1, 1 + 1e-15},
                                                {0.1, std::nextafter(0.1, 1)},
                                                {-1e300, -1e299},
                                                {1e-310, 3e-310},
                                                {Largest, Largest},
                                                {1e-310, 1e-310},
                                                {-0.0, 0.0}};
  for (const auto& [low, high] : extremes)
    for (const std::size_t most : {std::size_t(1), std::size_t(6), std::numeric_limits<std::size_t>::max()}) {
      CheckTicks(Ticks::Linear(low, high, most), low, high, most);
      EXPECT_GE(Ticks::Degrees(low, high, most, Ticks::Angle::Longitude).Values().size(), 1u) << low;
      EXPECT_EQ(Ticks::Logarithmic(low, high, most).Values().empty(), low <= 0) << low;
    }
}

#pragma once

// What nearly every test includes and uses.

#include "platform/debug/Check.h"
#include "platform/utility/GetLogger.h"
#include "testing/PixelFixture.h"
#include "testing/RecordingFixture.h"
#include "testing/ReportCapture.h"
#include "testing/TempFolder.h"
#include "tests/support/ErrorOf.h"
#include "tests/support/Shorthands.h"
#include "tests/support/Shown.h"

#include <boost/lexical_cast.hpp>
#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

#include <QColor>
#include <QImage>

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <numeric>
#include <optional>
#include <random>
#include <regex>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace Vek::Chart::Library {}
namespace Vek::Chart::Scene {}

namespace fs = std::filesystem;
using namespace Vek::Chart;
using namespace Vek::Chart::Library;
using namespace Vek::Chart::Scene;
using namespace Vek::Chart::Testing;
using namespace Vek::Test;
using vekdebug::severity;

/// The lines of a report, or of what a recorder has logged.
using Texts = std::vector<std::string>;

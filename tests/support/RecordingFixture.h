#pragma once

#include "platform/ogl/RecordingGl.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Vek::Test {

using Lines = std::vector<std::string>;

/// Gives each test a recorder of its own, and fails the test when the recorder has complaints at the end: misuse of GL,
/// leaked objects, open pairs. A test that expects misuse takes it with `recorder.TakeComplaints()`.
class RecordingFixture : public testing::Test {
protected:
  void TearDown() override { EXPECT_EQ(recorder.Complaints(), Lines()); }

  Chart::Ogl::RecordingGl recorder;
};

} // namespace Vek::Test

#pragma once

#include "apps/gallery/DataFolder.h"
#include "apps/gallery/OffscreenQt.h"
#include "apps/gallery/Picture.h"
#include "tests/support/Test.h"

// What tests of pictures of the gallery share.
namespace Vek::Chart::Gallery {

/// Text on pictures needs Qt's fonts.
class QtEnvironment : public testing::Environment {
public:
  void SetUp() override { StartOffscreenQt(); }
};
inline const testing::Environment* const Qt = testing::AddGlobalTestEnvironment(new QtEnvironment);

/// The gallery's own files.
inline Inputs DataInputs() {
  Inputs inputs;
  FillFromFolder(inputs, VEK_SOURCE_DIR);
  return inputs;
}

} // namespace Vek::Chart::Gallery

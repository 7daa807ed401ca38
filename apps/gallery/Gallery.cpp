// vek-gallery: draws all pictures off-screen and writes them as pictures with a page that shows them.

#include "apps/gallery/DataFolder.h"
#include "apps/gallery/IndexPage.h"
#include "apps/gallery/OffscreenQt.h"
#include "apps/gallery/Options.h"
#include "apps/gallery/Picture.h"
#include "apps/gallery/Rendering.h"

#include "scene/SaveImage.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>

namespace {

using namespace Vek::Chart::Gallery;

constexpr int ExitInput = 1;
constexpr int ExitUsage = 2;

void MakePicture(const PictureEntry& p_entry, const Options& p_options) {
  using Clock = std::chrono::steady_clock;
  std::printf("%-12s ... ", p_entry.name.c_str());
  std::fflush(stdout);
  const Clock::time_point start = Clock::now();
  try {
    const QImage image = RenderPicture(p_entry, p_options.inputs, p_options.size);
    Vek::Chart::Scene::SaveImage(image, QString::fromStdString(p_options.out + "/" + p_entry.name + ".png"));
  } catch (...) {
    std::puts("failed"); // ends the line, before the reason is told
    throw;
  }
  std::printf("%.1f s\n", std::chrono::duration<double>(Clock::now() - start).count());
}

void MakeGallery(const Options& p_options) {
  std::error_code error;
  std::filesystem::create_directories(p_options.out, error);
  if (!std::filesystem::is_directory(p_options.out))
    throw std::runtime_error(p_options.out + ": cannot be made a folder");
  std::vector<PictureEntry> shown;
  for (const PictureEntry& entry : Pictures()) {
    if (p_options.only.empty() || std::count(p_options.only.begin(), p_options.only.end(), entry.name) != 0)
      MakePicture(entry, p_options);
    // Pictures of an earlier run stay on the page.
    if (std::filesystem::exists(p_options.out + "/" + entry.name + ".png"))
      shown.push_back(entry);
  }
  const std::string path = p_options.out + "/index.html";
  std::ofstream page(path);
  page << IndexPage(shown, CopySources(shown, DataFolder({}, ThisProgram()), p_options.out));
  page.close();
  if (!page)
    throw std::runtime_error(path + ": cannot be written");
}

} // namespace

int main(int argc, char** argv) {
  try {
    Options options = ParseOptions({argv + 1, argv + argc}, {});
    if (options.help) {
      std::fputs(HelpText().c_str(), stdout);
      return 0;
    }
    FillFromFolder(options.inputs, DataFolder(options.data, ThisProgram()));
    StartOffscreenQt();
    MakeGallery(options);
    return 0;
  } catch (const UsageError& error) {
    std::fprintf(stderr, "vek-gallery: %s\n", error.what());
    return ExitUsage;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "vek-gallery: %s\n", error.what());
    return ExitInput;
  }
}

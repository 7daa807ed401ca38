#include "apps/gallery/FormatHelp.h"

#include "io/Formats.h"

namespace Vek::Chart::Gallery {

std::string FormatHelp() {
  std::string text = "\nFormats:\n";
  const Io::Format* last = nullptr;
  for (const Io::Format& format : Io::Formats()) {
    const bool first = last == nullptr || last->kind != format.kind;
    if (first) {
      const std::string title = "  " + std::string(Io::KindName(format.kind)) + ":";
      text += (last == nullptr ? "" : "\n") + title + std::string(20 - title.size(), ' ');
    }
    text += (first ? "" : ", ") + std::string(format.name);
    if (!format.isAvailable)
      text += " (needs a build with " + std::string(format.package) + ")";
    last = &format;
  }
  return text + "\n";
}

} // namespace Vek::Chart::Gallery

// vek-list-formats: the table of formats on the page docs/files.md, made from Io::Formats().
//
//     vek-list-formats docs/files.md             writes it
//     vek-list-formats --check docs/files.md     fails if the page differs

#include "io/Formats.h"

#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>

namespace {

using Vek::Chart::Io::Format;

/// A format as a row of its table.
std::string Row(const Format& p_format) {
  std::ostringstream row;
  std::istringstream words{std::string(p_format.suffixes)};
  row << "| " << p_format.name << " |";
  for (std::string suffix; words >> suffix;)
    row << " `." << suffix << '`';
  row << " | `" << p_format.reader << "` | " << p_format.read << " | " << p_format.omitted << " | ";
  if (!p_format.package.empty())
    row << '`' << p_format.package << '`';
  return row.str() + " |\n";
}

std::string Tables() {
  std::string tables;
  const Format* last = nullptr;
  for (const Format& format : Vek::Chart::Io::Formats()) {
    if (last == nullptr || last->kind != format.kind)
      tables += "\n### " + std::string(Vek::Chart::Io::KindName(format.kind)) +
                "\n\n| Format | Suffixes | Reader | Read | Not read | Package |\n|---|---|---|---|---|---|\n";
    tables += Row(format);
    last = &format;
  }
  return tables + '\n';
}

} // namespace

int main(int argc, char** argv) {
  const bool check = argc == 3 && std::strcmp(argv[1], "--check") == 0;
  if (argc != 2 && !check) {
    std::fputs("usage: vek-list-formats [--check] docs/files.md\n", stderr);
    return 2;
  }
  const char* const path = argv[argc - 1];
  std::ostringstream text;
  text << std::ifstream(path).rdbuf();
  const std::string page = text.str();
  const std::string startMark = "<!-- formats: made by vek-list-formats -->\n";
  const std::size_t start = page.find(startMark), end = page.find("<!-- end of the formats -->");
  if (start == std::string::npos || end == std::string::npos || end < start) {
    std::fprintf(stderr, "vek-list-formats: %s: the marks of the formats are missing\n", path);
    return 1;
  }
  const std::string made = page.substr(0, start + startMark.size()) + Tables() + page.substr(end);
  if (made == page)
    return 0;
  if (check) {
    std::fprintf(stderr, "vek-list-formats: %s is out of date; run vek-list-formats on it\n", path);
    return 1;
  }
  return std::ofstream(path) << made ? 0 : 1;
}

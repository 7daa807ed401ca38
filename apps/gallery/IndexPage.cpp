#include "apps/gallery/IndexPage.h"

#include <QRegularExpression>
#include <QString>

namespace Vek::Chart::Gallery {

namespace {

constexpr const char* Head = R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>Gallery of Vek.Chart.Library</title>
<style>
:root { color-scheme: dark; --ink: #f2f0ea; --text: #b9c2cc; --dim: #8792a0; --page: #0b1017; --card: #131a23; }
* { box-sizing: border-box; }
body { margin: 0 auto; max-width: 1720px; padding: 2.5rem 1.5rem 4rem; background: var(--page); color: var(--text);
       font: 1rem/1.5 system-ui, "DejaVu Sans", sans-serif; }
h1 { margin: 0; color: var(--ink); font-weight: 600; }
header p { margin: .4rem 0 2rem; max-width: 44rem; }
main { display: grid; grid-template-columns: repeat(auto-fill, minmax(min(24rem, 100%), 1fr)); gap: 1.5rem; }
figure { margin: 0; display: flex; flex-direction: column; background: var(--card); border-radius: 10px; overflow: hidden; }
figure > a { display: block; cursor: zoom-in; }
figure img { display: block; width: 100%; aspect-ratio: 8 / 5; object-fit: cover; }
a:focus-visible { outline: 3px solid #6db3f2; outline-offset: -3px; }
figcaption { padding: .9rem 1.1rem 1.1rem; display: flex; flex-direction: column; flex: 1; }
h2 { margin: 0 0 .3rem; color: var(--ink); font-size: 1.1rem; font-weight: 600; }
figcaption p { margin: 0 0 .7rem; }
figcaption code { white-space: nowrap; }
.source { margin-top: auto; color: var(--dim); font: .85rem/1.4 ui-monospace, "DejaVu Sans Mono", monospace; }
a.source:hover { color: var(--ink); }
dialog { width: 100vw; height: 100vh; max-width: none; max-height: none; margin: 0; padding: 0; border: 0;
         background: #05080c; color: var(--text); }
dialog:focus-visible { outline: none; }
body:has(dialog[open]) { overflow: hidden; }
dialog[open] { display: grid; grid-template-rows: 1fr auto; }
dialog img { width: 100%; height: 100%; min-height: 0; object-fit: contain; cursor: zoom-out; }
dialog p { margin: 0; padding: .6rem 1.5rem .9rem; text-align: center; }
dialog b { color: var(--ink); }
</style>
</head>
<body>
<header>
<h1>Gallery of Vek.Chart.Library</h1>
<p>Pictures that the program <code>vek-gallery</code> draws. A click shows one in its full size; its source is linked below.</p>
</header>
<main>
)";

// Keys, and clicks without Ctrl or Shift: those open the file in another tab or window, as with each link.
constexpr const char* Foot = R"(</main>
<dialog aria-label="Picture"><img alt=""><p></p></dialog>
<script>
const links = [...document.querySelectorAll("figure > a")];
const box = document.querySelector("dialog");
let shown = 0;
function show(index) {
  shown = (index + links.length) % links.length;
  const image = links[shown].firstElementChild;
  box.firstElementChild.src = image.src;
  box.firstElementChild.alt = image.alt;
  const title = document.createElement("b");
  title.textContent = image.alt;
  box.lastElementChild.replaceChildren(title, " · " + (shown + 1) + " of " + links.length + " · ← → Esc");
  if (!box.open) box.showModal();
}
links.forEach((link, index) => link.addEventListener("click", (event) => {
  if (event.ctrlKey || event.shiftKey || event.metaKey) return;
  event.preventDefault();
  show(index);
}));
box.addEventListener("click", () => box.close());
box.addEventListener("close", () => links[shown].focus());
box.addEventListener("keydown", (event) => {
  if (event.key === "ArrowRight") show(shown + 1);
  if (event.key === "ArrowLeft") show(shown - 1);
});
</script>
</body>
</html>
)";

std::string Escaped(const std::string& p_text) {
  return QString::fromStdString(p_text).toHtmlEscaped().toStdString();
}

/// A caption whose options are not broken at the end of a line.
std::string CaptionOf(const PictureEntry& p_entry) {
  const QString caption = QString::fromStdString(p_entry.caption).toHtmlEscaped();
  return QString(caption).replace(QRegularExpression("(--\\w+)"), "<code>\\1</code>").toStdString();
}

} // namespace

std::string IndexPage(const std::vector<PictureEntry>& p_entries, bool p_hasSources) {
  std::string page = Head;
  for (const PictureEntry& entry : p_entries) {
    const std::string name = Escaped(entry.name);
    const std::string title = Escaped(entry.title);
    const std::string source = Escaped(entry.source);
    page += "<figure id=\"" + name + "\">\n<a href=\"" + name + ".png\"><img src=\"" + name + ".png\" alt=\"" + title +
            "\" loading=\"lazy\"></a>\n<figcaption><h2>" + title + "</h2><p>" + CaptionOf(entry) + "</p>";
    if (p_hasSources)
      page += "<a class=\"source\" href=\"sources/" + source.substr(source.rfind('/') + 1) + "\">" + source + "</a>";
    else
      page += "<span class=\"source\">" + source + "</span>";
    page += "</figcaption>\n</figure>\n";
  }
  return page + Foot;
}

bool CopySources(const std::vector<PictureEntry>& p_entries, const std::filesystem::path& p_folder,
                 const std::filesystem::path& p_out) {
  std::error_code error;
  std::filesystem::create_directories(p_out / "sources", error);
  for (const PictureEntry& entry : p_entries) {
    const std::filesystem::path source = p_folder / entry.source;
    std::filesystem::copy_file(source, p_out / "sources" / source.filename(),
                               std::filesystem::copy_options::overwrite_existing, error);
    if (error)
      return false;
  }
  return true;
}

} // namespace Vek::Chart::Gallery

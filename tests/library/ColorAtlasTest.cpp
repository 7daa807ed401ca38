#include "library/ColorAtlas.h"
#include "tests/support/Test.h"

namespace {

namespace Signature {
const std::string Atlas = "Vek::Chart::Library::ColorAtlas::", Private = "Vek::Chart::Library::Private::";
const std::string Layout = " - void __cdecl " + Private + "ColorAtlasImpl::";
const std::string Mapper = Layout + "CoordinateMapper::", Instances = Layout + "InstanceCoordinateMapper::";
const std::string Traversal = "class " + Private + "ColorAtlasImpl::AtlasTraversalState ";
const std::string Color = "const class QColor &", Node = "struct " + Atlas + "ColorNode &";
const std::string Pixel = "const class Vek::Chart::Ogl::Vec2<unsigned int> &";
const std::string Span = "const class Vek::Chart::Types::Span<unsigned int> &";

const std::string ColorAt = Node + "__cdecl " + Atlas + "ColorAt(unsigned int)";
const std::string Texture =
    " - class boost::shared_ptr<class Vek::Chart::Library::Texture> __cdecl " + Atlas + "Texture(void) const";
const std::string BuildAtlas =
    " - void __cdecl " + Atlas + "BuildAtlas(class Vek::Chart::Utility::Scoped<class Vek::Chart::Ogl::Rgl> &)";
const std::string AddInstance =
    " - unsigned int __cdecl " + Atlas +
    "AddInstance(unsigned int,const class std::map<unsigned int,class QColor,struct std::less<unsigned int>,"
    "class std::allocator<struct std::pair<unsigned int const ,class QColor> > > &)";
const std::string InstanceOffset =
    " - class Vek::Chart::Ogl::Vec2<float> __cdecl " + Atlas + "InstanceOffset(unsigned int) const";
const std::string BuildSpan = Layout + "SpanBuilder::operator ()(" + Traversal + "&," + Traversal + "*)";
const std::string MapSpan = Mapper + "MapSpan(unsigned int," + Node + "," + Span + ")";
const std::string WriteColor = Mapper + "WriteColor(unsigned int,const " + Node + "," + Span + ")";
const std::string Process = Instances + "ProcessInstances(unsigned int," + Span + ")";
const std::string CopyColors = Instances + "CopyColors(" + Span + "," + Pixel + ")";
const std::string Overwrite = Instances + "OverwritePixelSpan(" + Pixel + "," + Color + ",unsigned int)";
const std::string Next = " - class Vek::Chart::Ogl::Vec2<unsigned int> __cdecl " + Private +
                         "ColorAtlasImpl::InstanceCoordinateMapper::NextPixel(" + Pixel +
                         ",const class Vek::Chart::Types::Size &,unsigned int) const";
const std::string WritePixel =
    " - void __cdecl " + Private + "ImageBuilder::WriteUniquePixel(" + Pixel + "," + Color + ")";
} // namespace Signature

/// Distinct for each number; never the red of the background.
QColor Numbered(unsigned int p_number) {
  return QColor::fromRgb(static_cast<int>(p_number % 251), static_cast<int>(p_number / 251 % 251), 200);
}

/// Adds colours, given as a letter and the parent's id each, with ids from 1 on; then instances with replacements.
using Instances = std::vector<std::pair<unsigned int, std::map<unsigned int, QColor>>>;
void Add(ColorAtlas& p_atlas, const std::string& p_colors, const Instances& p_instances = {}) {
  std::istringstream colors(p_colors);
  char letter = 0;
  for (unsigned int parent = 0; colors >> letter >> parent;)
    p_atlas.AddColor(Numbered(static_cast<unsigned int>(letter - 'a' + 1)), parent);
  for (const auto& [color, replaced] : p_instances)
    p_atlas.AddInstance(color, replaced);
}

/// The rows of the image with a blank behind each, one letter a texel: '.' is background, 'x' and 'y' are replacements,
/// '?' is any other colour.
std::string Rows(const QImage& p_image) {
  std::map<QRgb, char> letters = {{QColor(Qt::red).rgba(), '.'}, {Numbered(8).rgba(), 'x'}, {Numbered(9).rgba(), 'y'}};
  for (unsigned int i = 1; i < 6; ++i)
    letters[Numbered(i).rgba()] = static_cast<char>('a' + i - 1);
  std::string rows;
  for (int y = 0; y < p_image.height(); ++y, rows += ' ')
    for (int x = 0; x < p_image.width(); ++x) {
      const auto letter = letters.find(p_image.pixel(x, y));
      rows += letter == letters.end() ? '?' : letter->second;
    }
  return rows;
}

class ColorAtlasCalls : public RecordingScopeFixture {
protected:
  void Build(ColorAtlas& p_atlas, int p_maxSize) {
    recorder.SetInteger(RGL_MAX_TEXTURE_SIZE, {p_maxSize});
    p_atlas.BuildAtlas(gl);
  }
};

} // namespace

TEST(ColorAtlas, KeepsListsOfChildrenOfAnyLength) {
  std::vector<unsigned int> expected;
  ColorAtlas::ChildIds ids, copy;
  for (unsigned int id = 10; id < 20; ++id) {
    copy = ids;
    ids.push_back(id);
    EXPECT_EQ(std::vector<unsigned int>(copy.begin(), copy.end()), expected);
    expected.push_back(id);
    EXPECT_EQ(std::vector<unsigned int>(ids.begin(), ids.end()), expected);
    const ColorAtlas::ChildIds moved = std::move(ids);
    EXPECT_TRUE(ids.empty() && ids.begin() == ids.end() && moved.size() == expected.size()); // NOLINT: after a move
    ids = moved;
  }
}

TEST(ColorAtlas, NumbersColorsAndInstancesTogether) {
  ColorAtlas atlas;
  EXPECT_EQ(atlas.ColorAt(atlas.RootAtlasId()).color, QColor(Qt::white));
  EXPECT_EQ(atlas.ColorAt(0).parent, ColorAtlas::NoParent);
  const unsigned int first = atlas.AddColor(Qt::green, 0);
  const ColorAtlas::ColorNode& node = atlas.ColorAt(first);
  EXPECT_EQ(atlas.AddInstance(first, {}), 2u);
  EXPECT_EQ(atlas.AddColor(Qt::blue, first), 3u);
  EXPECT_EQ(&atlas.ColorAt(2), &node) << "an instance has the node of its colour, and nodes do not move";
  EXPECT_TRUE(node.children.size() == 1 && node.children[0] == 3);
  EXPECT_EQ(node.instanceCount, 1u);
}

TEST_F(ColorAtlasCalls, LaysOutSmallTrees) {
  const QColor x = Numbered(8), y = Numbered(9);
  const std::string halfRow = "e0 e0 e0 e0 e0 e0 a0 b7 c7 d7";
  const std::tuple<const char*, int, std::string, Instances, std::string> cases[] = {
      {"only the root", 8, "", {}, ". "},
      {"depth first, instanced last", 1024, "a0 b0 c2 d1", {{1, {{4, x}}}}, "bcadax.. "},
      {"own colour, then a deeper one", 1024, "a0 b1 c2 d1", {{1, {{1, x}, {2, y}}}}, "abcdxyyx "},
      {"ends at the border", 8, "a0 b1 c1", {{1, {}}, {1, {{2, x}}}, {1, {}}}, "abcabc.. axcabc.. "},
      {"half a row", 8, halfRow, {{7, {{9, y}}}}, "eeeeee.. abcd.... abyd.... ........ "},
      {"half of an odd row", 9, halfRow, {{7, {}}}, "eeeeee... abcd..... abcd..... ......... "},
      {"more than half", 9, "e0 e0 e0 e0 e0 a0 b6 c6 d6 e6", {{6, {}}}, "eeeeeabcd e........ .....abcd e........ "},
      {"a copy that would just end at the border", 8, "a0 b1", {{1, {}}, {1, {}}, {1, {}}}, "ababab.. ab...... "},
      {"left of its start",
       8,
       "e0 a0 b2 c0",
       {{2, {}}, {2, {}}, {2, {}}, {2, {{3, x}}}, {4, {}}},
       "eababab. abaxcc.. "},
      {"two rows, and another colour",
       8,
       "a0 b1 c1 d1 e1 a1 b1 c1 d1 e1 c0",
       {{1, {{2, x}, {10, y}}}, {11, {}}},
       "abcdeabc de...... axcdeabc dycc.... "},
  };
  for (const auto& [name, maxSize, colors, instances, rows] : cases) {
    const ReportCapture reports;
    ColorAtlas atlas;
    Add(atlas, colors, instances);
    Build(atlas, maxSize);
    EXPECT_EQ(Rows(atlas.AtlasImage()), rows) << name;
    EXPECT_EQ(reports.Texts().size(), colors.empty() ? 1u : 0u) << name;
  }
}

TEST_F(ColorAtlasCalls, DescribesRunsAndOffsets) {
  ColorAtlas atlas;
  Add(atlas, "a0 a0 a0 a0 a0");
  const unsigned int top = atlas.AddColor(Qt::gray, 0);
  for (int i = 0; i < 9; ++i)
    atlas.AddColor(Qt::gray, top);
  Build(atlas, 8);
  const std::vector<std::pair<ColorCoords::Pixel, ColorCoords::Pixel>> spans = {{{5, 0}, {7, 0}}, {{0, 1}, {6, 1}}};
  EXPECT_EQ(atlas.ColorAt(top).coords.PixelSpans(), spans);
  EXPECT_TRUE(atlas.ColorAt(15).coords.PixelSpans().empty());
  EXPECT_EQ(atlas.TexelCoordSpace().texel, (Ogl::Vec2<float>{0.125f, 0.5f}));
  EXPECT_EQ(atlas.TexelCoordSpace().centre, (Ogl::Vec2<float>{0.0625f, 0.25f}));

  ColorAtlas beside;
  Add(beside, "e0 a0 b2 c0", {{2, {}}, {2, {}}, {2, {}}, {4, {}}});
  Build(beside, 8);
  EXPECT_EQ(beside.ColorAt(4).coords.First(), (ColorCoords::Pixel{2, 1})) << "behind the copies";
  EXPECT_EQ(beside.InstanceOffset(5), (Ogl::Vec2<float>{2 / 8.0f, 0}));
  EXPECT_EQ(beside.InstanceOffset(7), (Ogl::Vec2<float>{-1 / 8.0f, -1 / 2.0f}));
  EXPECT_TRUE(std::signbit(beside.InstanceOffset(5).y)) << "the zero is negated, too";
}

TEST_F(ColorAtlasCalls, HasTheCoordinateOfEachColorAndCopy) {
  using TexCoord = Ogl::Vec2<float>;
  ColorAtlas atlas; // two rows of eight: a, b c d, and the copies of those three, of which the last is in row 1
  Add(atlas, "a0 b0 c2 d3", {{2, {}}, {2, {{3, Numbered(8)}}}});
  atlas.AddColor(Numbered(5), ColorAtlas::NoParent);
  const ReportCapture reports;
  EXPECT_EQ(atlas.TexCoord(1), TexCoord()) << "before the first build";
  Build(atlas, 8);
  EXPECT_EQ(Rows(atlas.AtlasImage()), "abcdbcd. bxx..... ");
  const std::tuple<unsigned int, unsigned int, TexCoord> cases[] = {
      // colour, instance or 0, coordinate
      {1, 0, {0.0625f, 0.75f}}, {3, 0, {0.3125f, 0.75f}}, {2, 5, {0.5625f, 0.75f}}, {4, 5, {0.8125f, 0.75f}},
      {5, 0, {0.5625f, 0.75f}}, {2, 6, {0.0625f, 0.25f}}, {3, 6, {0.1875f, 0.25f}}, {6, 0, {0.0625f, 0.25f}},
  };
  for (const auto& [color, instance, expected] : cases)
    EXPECT_EQ(instance == 0 ? atlas.TexCoord(color) : atlas.TexCoord(color, instance), expected)
        << color << ' ' << instance;
  const std::string signature = " - class Vek::Chart::Ogl::Vec2<float> __cdecl Vek::Chart::Library::ColorAtlas::";
  EXPECT_EQ(atlas.TexCoord(7), TexCoord()) << "not laid out";
  EXPECT_EQ(atlas.TexCoord(99), TexCoord());
  EXPECT_EQ(atlas.TexCoord(7, 5), TexCoord());
  EXPECT_EQ(atlas.TexCoord(1, 5), atlas.TexCoord(1)) << "not in that copy";
  EXPECT_EQ(atlas.TexCoord(2, 3), atlas.TexCoord(2)) << "not an instance";
  const std::string undefined = "\"coords.Defined()\"" + signature + "TexCoord(unsigned int,unsigned int) const";
  EXPECT_EQ(
      reports.Texts(),
      (Lines{undefined, undefined,
             "\"instPos != _instances.end()\"" + signature + "TexCoord(unsigned int,unsigned int) const", undefined,
             "\"instanceOf.coords.Covers(coords)\"" + signature + "TexCoord(unsigned int,unsigned int) const",
             "\"instanceIt != _instances.end()\"" + signature + "InstanceOffset(unsigned int) const"}));
}

TEST_F(ColorAtlasCalls, UploadsATexture) {
  ColorAtlas atlas;
  atlas.AddColor(Qt::green, 0);
  Build(atlas, 64);
  const RecordingGl::TextureObject* texture = recorder.FindTexture(atlas.Texture()->Handle()->Name());
  EXPECT_EQ(texture->levels.at(0).pixels, (std::vector<unsigned char>{0, 255, 0, 255}));
  EXPECT_EQ(recorder.LinesOf({"TexParameteri", "TexEnvi", "ActiveTexture", "Enable", "Disable"}),
            Calls("ActiveTexture(GL_TEXTURE0); " + SettingCalls("GL_NEAREST", "GL_REPLACE") +
                  "; ActiveTexture(GL_TEXTURE0); Disable(GL_TEXTURE_2D)"));

  const ColorAtlas copy = atlas; // shares the texture and nothing else
  EXPECT_EQ(copy.Texture(), atlas.Texture());
  atlas.AddColor(Qt::blue, 1);
  Build(atlas, 64);
  EXPECT_NE(copy.Texture(), atlas.Texture());
  EXPECT_EQ(copy.AtlasImage().width(), 1);
}

// A second build reports that instances had offsets already.
TEST_F(ColorAtlasCalls, KeepsItsLastBuildWhenTheSinkThrows) {
  ColorAtlas atlas;
  Add(atlas, "a0", {{1, {}}});
  Build(atlas, 8);
  const boost::shared_ptr<Texture> texture = atlas.Texture();
  const unsigned int added = atlas.AddColor(Numbered(2), 0);
  {
    const ReportCapture throwing(true);
    EXPECT_THROW(Build(atlas, 8), std::runtime_error);
    EXPECT_THROW(atlas.AddColor(Qt::blue, 77), std::runtime_error);
  }
  EXPECT_EQ(atlas.Texture(), texture);
  EXPECT_EQ(Rows(atlas.AtlasImage()), "aa ");
  EXPECT_FALSE(atlas.ColorAt(added).coords.Defined());

  const ReportCapture reports;
  Build(atlas, 8);
  EXPECT_EQ(Rows(atlas.AtlasImage()), "baa. ");
}

TEST_F(ColorAtlasCalls, ReportsErrorsAndGoesOn) {
  const std::string unknownId = "\"instPos != _instances.end()\" - ";
  const std::string undefined = "\"node.coords.Defined()\"" + Signature::Process;
  const std::string outside = "\"destPixel.y < _image.MaxHeight()\"" + Signature::CopyColors;
  const std::string next = "\"next.y < _image.MaxHeight()\"";
  using Run = std::function<void(ColorAtlas&)>;
  const auto built = [this](const std::string& p_colors, int p_size, const Instances& p_instances = {}) -> Run {
    return [=](ColorAtlas& p_a) { Add(p_a, p_colors, p_instances), Build(p_a, p_size); };
  };
  const std::string notLaidOut = std::to_string(ColorAtlas::NoParent);
  const std::tuple<const char*, Run, Lines> cases[] = {
      {"an empty atlas",
       [this](ColorAtlas& p_a) {
         EXPECT_FALSE(p_a.Texture());
         Build(p_a, 8);
         EXPECT_TRUE(p_a.ColorAt(77).children.empty());
         EXPECT_FALSE(std::as_const(p_a).ColorAt(77).coords.Defined());
         EXPECT_EQ(p_a.AddColor(Qt::blue, 77), 1u);
       },
       {"\"_map\"" + Signature::Texture, "\"_spans.size() != 0\"" + Signature::BuildAtlas,
        unknownId + Signature::ColorAt, unknownId + "const " + Signature::ColorAt + " const",
        unknownId + Signature::ColorAt}},
      {"an instance of a colour below the top, offsets without a build and of no instance",
       [](ColorAtlas& p_a) {
         Add(p_a, "a0 b1", {{2, {}}});
         p_a.InstanceOffset(3);
         p_a.InstanceOffset(1);
       },
       {"\"instanceOf.parent == _rootId\"" + Signature::AddInstance,
        "\"instance.Defined()\"" + Signature::InstanceOffset,
        "\"instanceIt != _instances.end()\"" + Signature::InstanceOffset}},
      {"replacements that are not below the instanced colour",
       built("a0 b0 c" + notLaidOut, 8, {{2, {{1, Qt::black}, {3, Qt::black}, {99, Qt::black}}}}),
       {"\"subcolor.first >= base\"" + Signature::Process, undefined, undefined}},
      {"a replacement of a deep colour, which comes after that of a later one at the top",
       built("a0 b0 c2 d0", 8, {{1, {{3, Qt::black}, {4, Qt::black}}}, {2, {}}}),
       {"\"subcolor.first >= base\"" + Signature::Process, undefined}},
      {"a replacement of another instanced colour",
       built("a0 b0", 8, {{1, {}}, {2, {{1, Qt::black}}}}),
       {"\"subcolor.first >= base\"" + Signature::Process}},
      {"an instance inside an instanced colour, which moves the colours behind it",
       [this](ColorAtlas& p_a) {
         Add(p_a, "a0 b1 c1", {{2, {}}, {1, {{3, Numbered(8)}}}}), Build(p_a, 8);
         EXPECT_EQ(Rows(p_a.AtlasImage()), "abbcbx.. ");
       },
       {"\"instanceOf.parent == _rootId\"" + Signature::AddInstance,
        "\"current.parent == _atlas.RootAtlasId()\"" + Signature::Instances + "operator ()(" + Signature::Traversal +
            "&," + Signature::Traversal + "*)",
        "\"!pixelEntryAlreadyExists && \"Error: coordinate has already been written to!\"\"" + Signature::WritePixel}},
      {"a second build",
       [&](ColorAtlas& p_a) {
         Add(p_a, "a0", {{1, {}}}), Build(p_a, 8), Build(p_a, 8);
       },
       {"\"!instance.Defined()\"" + Signature::Process}},
      {"a colour that is its own grandchild",
       [this](ColorAtlas& p_a) {
         Add(p_a, "a0 b1");
         p_a.ColorAt(2).children.push_back(1);
         Build(p_a, 8);
       },
       {"\"query.second\"" + Signature::BuildSpan,
        "\"!pixelEntryAlreadyExists && \"Error: coordinate has already been written to!\"\"" + Signature::WritePixel,
        "\"query.second && \"Coordinate p_spans must not have already been added\"\"" + Signature::MapSpan}},
      {"more colours than texels",
       built("a0 b0 c0 d0 e0", 2),
       {"\"pixelCoordFirst.y < _image.MaxHeight()\"" + Signature::WriteColor}},
      {"a copy one row below the last",
       built("a0 b1", 2, {{1, {}}, {1, {{2, Qt::black}}}}),
       {outside, outside, next + Signature::Next, next + Signature::Overwrite, next + Signature::Next}},
      {"two replacements that end with the last texel",
       built("a0 b1", 2, {{1, {{1, Qt::black}, {2, Qt::black}}}}),
       {next + Signature::Next, next + Signature::Next}},
  };
  for (const auto& [name, run, texts] : cases) {
    const ReportCapture reports;
    ColorAtlas colors;
    run(colors);
    EXPECT_EQ(reports.Texts(), texts) << name;
  }
}

TEST_F(ColorAtlasCalls, LeavesColorsThatASinkAddsToTheNextBuild) {
  struct Sink : vekdebug::sink {
    explicit Sink(ColorAtlas& p_atlas)
        : atlas(p_atlas) {}
    void write(const vekdebug::report&) override {
      for (int i = 0; i < 100; ++i)
        atlas.AddColor(Qt::green, 6);
    }
    ColorAtlas& atlas;
  };
  ColorAtlas atlas;
  Add(atlas, "a0 b0 c0 d0 e0 e0");
  const std::shared_ptr<vekdebug::sink> previous = vekdebug::logger::instance().set_sink(std::make_shared<Sink>(atlas));
  Build(atlas, 2);
  vekdebug::logger::instance().set_sink(previous);
  EXPECT_EQ(atlas.ColorAt(6).children.size(), 200u) << "for each texel outside of the image";
  EXPECT_FALSE(atlas.ColorAt(7).coords.Defined());
  Build(atlas, 1024);
  EXPECT_TRUE(atlas.ColorAt(206).coords.Defined());
}

TEST_F(ColorAtlasCalls, BuildsChainsOfAnyDepth) {
  ColorAtlas atlas;
  constexpr unsigned int Depth = 100000;
  std::map<unsigned int, QColor> all;
  for (unsigned int i = 0; i < Depth; ++i)
    all[atlas.AddColor(Numbered(i), i)] = Numbered(i + 7);
  const unsigned int instance = atlas.AddInstance(1, all);
  Build(atlas, 1024);
  // Every colour of the chain is replaced: painting each run would write 5 · 10^9 texels.
  const long row = std::lround(-atlas.InstanceOffset(instance).y / atlas.TexelCoordSpace().texel.y);
  EXPECT_EQ(atlas.AtlasImage().pixel(Depth % 1024 - 1, static_cast<int>(row + Depth / 1024)),
            Numbered(Depth + 6).rgba());
}

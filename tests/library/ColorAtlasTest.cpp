#include "library/ColorAtlas.h"
#include "tests/support/Test.h"

namespace {

using Pixel = std::pair<int, int>;
Pixel At(const ColorCoords::Pixel& p_pixel) {
  return {static_cast<int>(p_pixel.x), static_cast<int>(p_pixel.y)};
}

/// Distinct for each number; never the red of the background.
QColor Numbered(unsigned int p_number) {
  return QColor::fromRgb(static_cast<int>(p_number % 251), static_cast<int>(p_number / 251 % 251), 200);
}

/// Adds colours, a letter and the number of its parent each, which get the ids from 1 on; then instances of colours
/// with what they replace.
using Instances = std::vector<std::pair<unsigned int, std::map<unsigned int, QColor>>>;
void Add(ColorAtlas& p_atlas, const std::string& p_colors, const Instances& p_instances = {}) {
  std::istringstream colors(p_colors);
  char letter = 0;
  for (unsigned int parent = 0; colors >> letter >> parent;)
    p_atlas.AddColor(Numbered(static_cast<unsigned int>(letter - 'a' + 1)), parent);
  for (const auto& [color, replaced] : p_instances)
    p_atlas.AddInstance(color, replaced);
}

/// The rows of the picture with a blank behind each, one letter a texel: '.' where it is background, '?' for a colour
/// that no letter has; 'x' and 'y' are replacements.
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

/// What was added to an atlas.
struct Tree {
  std::vector<std::vector<unsigned int>> children{1}; ///< of the root, then of each colour
  std::map<unsigned int, QColor> colors;
  std::map<unsigned int, std::vector<unsigned int>> instancesOf;
  std::map<unsigned int, std::map<unsigned int, QColor>> replacements; ///< of each instance
};

/// The layout rules once more, plainly: recursion and maps, texels by coordinates.
class Reference : Tree {
public:
  Reference(int p_width, const Tree& p_tree)
      : Tree(p_tree)
      , _w(p_width) {
    std::vector<unsigned int> tops = children[0];
    const auto isPlain = [this](unsigned int p_top) { return instancesOf.count(p_top) == 0; };
    std::stable_partition(tops.begin(), tops.end(), isPlain);
    for (const unsigned int top : tops)
      Number(top, 0);
    for (const unsigned int top : tops)
      isPlain(top) ? PlacePlain(top) : PlaceInstanced(top);
  }

  std::map<Pixel, QRgb> texels; ///< by (x, y)
  std::map<unsigned int, long> firstIndex;
  std::map<unsigned int, std::pair<long, long>> offsets;
  std::map<unsigned int, std::pair<long, long>> spans;

private:
  Pixel Of(long p_index) const { return {static_cast<int>(p_index % _w), static_cast<int>(p_index / _w)}; }

  void Number(unsigned int p_id, int p_depth) {
    spans[p_id].first = _counter++;
    _depths[p_id] = p_depth;
    for (const unsigned int child : children[p_id])
      Number(child, p_depth + 1);
    spans[p_id].second = _counter - 1;
  }

  void PlacePlain(unsigned int p_id) {
    firstIndex[p_id] = spans[p_id].first + _shift;
    texels[Of(firstIndex[p_id])] = colors.at(p_id).rgba();
    for (const unsigned int child : children[p_id])
      PlacePlain(child);
  }

  void PlaceInstanced(unsigned int p_top) {
    const long length = spans[p_top].second - spans[p_top].first + 1;
    const long unmoved = spans[p_top].first + _shift;
    if (static_cast<double>(length) <= std::floor(_w * 0.5) && Of(unmoved).second != Of(unmoved + length - 1).second)
      _shift += _w - unmoved % _w;
    PlacePlain(p_top);
    const long start = spans[p_top].first + _shift;
    const Pixel pf = Of(start), pl = Of(start + length - 1);
    const long rows = pl.second - pf.second + 1;
    const bool oneRow = pf.second == pl.second && length < _w / 2;
    long dx = 0, dy = 0;
    for (const unsigned int instance : instancesOf.at(p_top)) {
      if (!oneRow) {
        _shift += _w * rows;
        dy += rows;
      } else if (pf.first + dx + 2 * length >= _w) {
        _shift += _w - dx - pf.first;
        dx = -pf.first;
        dy += rows;
      } else {
        _shift += length;
        dx += length;
      }
      offsets[instance] = {dx, dy};
      const long d = (pf.second + dy) * _w + pf.first + dx;
      for (long i = 0; i < length; ++i)
        texels[Of(d + i)] = texels.at(Of(start + i));
      std::vector<std::pair<int, unsigned int>> byDepth;
      for (const auto& [id, color] : replacements.at(instance))
        byDepth.push_back({_depths.at(id), id});
      std::sort(byDepth.begin(), byDepth.end());
      for (const auto& [depth, id] : byDepth)
        for (long i = spans[id].first; i <= spans[id].second; ++i)
          texels[Of(d + i - spans[p_top].first)] = replacements.at(instance).at(id).rgba();
    }
  }

  long _w;
  std::map<unsigned int, int> _depths;
  long _counter = 0;
  long _shift = 0;
};

class ColorAtlasCalls : public RecordingScopeFixture {
protected:
  void Build(ColorAtlas& p_atlas, int p_maxSize) {
    recorder.SetInteger(RGL_MAX_TEXTURE_SIZE, {p_maxSize});
    p_atlas.BuildAtlas(gl);
  }
};

} // namespace

TEST(ColorAtlas, NumbersColorsAndInstancesTogether) {
  ColorAtlas atlas;
  EXPECT_EQ(atlas.ColorAt(atlas.RootAtlasId()).color, QColor(Qt::white));
  EXPECT_EQ(atlas.ColorAt(0).parent, ColorAtlas::NoParent);
  const unsigned int first = atlas.AddColor(Qt::green, 0);
  const ColorAtlas::ColorNode& node = atlas.ColorAt(first);
  EXPECT_EQ(atlas.AddInstance(first, {}), 2u);
  EXPECT_EQ(atlas.AddColor(Qt::blue, first), 3u);
  EXPECT_EQ(&atlas.ColorAt(2), &node) << "an instance answers its colour, and nodes keep their places";
  EXPECT_EQ(node.children, std::vector<unsigned int>{3});
  EXPECT_EQ(node.instanceCount, 1u);
}

TEST_F(ColorAtlasCalls, PlacesSmallTreesAsWritten) {
  const QColor x = Numbered(8), y = Numbered(9);
  const std::tuple<const char*, int, std::string, Instances, std::string> cases[] = {
      {"only the root", 8, "", {}, ". "},
      {"depth first, instanced last", 1024, "a0 b0 c2 d1", {{1, {{4, x}}}}, "bcadax.. "},
      {"own colour, then a deeper one", 1024, "a0 b1 c2 d1", {{1, {{1, x}, {2, y}}}}, "abcdxyyx "},
      {"ends at the border", 8, "a0 b1 c1", {{1, {}}, {1, {{2, x}}}, {1, {}}}, "abcabc.. axcabc.. "},
      {"half a row", 8, "e0 e0 e0 e0 e0 e0 a0 b7 c7 d7", {{7, {{9, y}}}}, "eeeeee.. abcd.... abyd.... ........ "},
  };
  for (const auto& [name, max_size, colors, instances, rows] : cases) {
    const ReportCapture reports;
    ColorAtlas atlas;
    Add(atlas, colors, instances);
    Build(atlas, max_size);
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
  std::vector<Pixel> ends;
  for (const auto& [first, last] : atlas.ColorAt(top).coords.PixelSpans())
    ends.insert(ends.end(), {At(first), At(last)});
  EXPECT_EQ(ends, (std::vector<Pixel>{{5, 0}, {7, 0}, {0, 1}, {6, 1}}));
  EXPECT_TRUE(atlas.ColorAt(15).coords.PixelSpans().empty());
  EXPECT_EQ(atlas.TexelCoordSpace().texel, (Ogl::Vec2<float>{0.125f, 0.5f}));
  EXPECT_EQ(atlas.TexelCoordSpace().centre, (Ogl::Vec2<float>{0.0625f, 0.25f}));

  ColorAtlas beside;
  Add(beside, "a0");
  const unsigned int instance = beside.AddInstance(1, {});
  Build(beside, 8);
  EXPECT_TRUE(std::signbit(beside.InstanceOffset(instance).y)) << "a zero that counts downwards";
}

TEST_F(ColorAtlasCalls, AgreesWithThePlainRulesOnRandomTrees) {
  for (unsigned int seed = 0; seed < 300; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const auto below = [&](unsigned int p_end) { return static_cast<unsigned int>(random() % p_end); };
    const unsigned int width = 2 + below(40), count = 1 + below(60), bushiness = 1 + below(8);

    ColorAtlas atlas;
    Tree tree;
    std::vector<unsigned int> topOf{0};
    for (unsigned int id = 1; id <= count; ++id) {
      const unsigned int parent = below(bushiness) == 0 ? 0 : below(id);
      tree.colors[id] = Numbered(id);
      ASSERT_EQ(atlas.AddColor(tree.colors[id], parent), id);
      tree.children[parent].push_back(id);
      tree.children.emplace_back();
      topOf.push_back(parent == 0 ? id : topOf[parent]);
    }
    for (unsigned int i = 0, instances = below(8); i < instances; ++i) {
      const unsigned int top = tree.children[0][below(static_cast<unsigned int>(tree.children[0].size()))];
      std::map<unsigned int, QColor> replaced;
      for (unsigned int id = 1; id <= count; ++id)
        if (topOf[id] == top && below(3) == 0)
          replaced[id] = Numbered(1000 + 100 * i + id);
      const unsigned int instance = atlas.AddInstance(top, replaced);
      tree.instancesOf[top].push_back(instance);
      tree.replacements[instance] = replaced;
    }

    const ReportCapture reports;
    Build(atlas, static_cast<int>(width));
    const Reference expected(static_cast<int>(width), tree);
    bool fits = true;
    for (const auto& [pixel, color] : expected.texels)
      fits = fits && pixel.second < static_cast<int>(width);
    if (!fits) { // too many rows for a square picture: reported, and nothing out of bounds
      EXPECT_FALSE(reports.Texts().empty());
      continue;
    }
    EXPECT_EQ(reports.Texts(), Lines());
    const QImage& image = atlas.AtlasImage();
    for (int y = 0; y < image.height(); ++y)
      for (int x = 0; x < image.width(); ++x) {
        const bool set = expected.texels.count({x, y}) != 0;
        ASSERT_EQ(image.pixel(x, y), set ? expected.texels.at({x, y}) : QColor(Qt::red).rgba()) << x << ", " << y;
      }
    for (const auto& [id, index] : expected.firstIndex)
      ASSERT_EQ(At(atlas.ColorAt(id).coords.First()), Pixel(index % width, index / width)) << id;
    for (const auto& [instance, offset] : expected.offsets) {
      const Ogl::Vec2<float> texel = atlas.TexelCoordSpace().texel;
      ASSERT_EQ(atlas.InstanceOffset(instance), (Ogl::Vec2<float>{static_cast<float>(offset.first) * texel.x,
                                                                  -(static_cast<float>(offset.second) * texel.y)}));
    }
  }
}

TEST_F(ColorAtlasCalls, UploadsANearestClampedReplacingTexture) {
  ColorAtlas atlas;
  atlas.AddColor(Qt::green, 0);
  Build(atlas, 64);
  const Ogl::RecordingGl::TextureObject* texture = recorder.FindTexture(atlas.Texture()->Handle()->Name());
  EXPECT_EQ(texture->levels.at(0).pixels, (std::vector<unsigned char>{0, 255, 0, 255}));
  EXPECT_EQ(recorder.LinesOf({"TexParameteri", "TexEnvi", "ActiveTexture", "Enable", "Disable"}),
            Calls("ActiveTexture(GL_TEXTURE0); " + TextureSettings("GL_NEAREST", "GL_REPLACE") +
                  "; ActiveTexture(GL_TEXTURE0); Disable(GL_TEXTURE_2D)"));

  const ColorAtlas copy = atlas; // shares the texture and nothing else
  EXPECT_EQ(copy.Texture(), atlas.Texture());
  atlas.AddColor(Qt::blue, 1);
  Build(atlas, 64);
  EXPECT_NE(copy.Texture(), atlas.Texture());
  EXPECT_EQ(copy.AtlasImage().width(), 1);
}

TEST_F(ColorAtlasCalls, ReportsWhatIsWrongAndGoesOn) {
  const std::string atlasClass = "Vek::Chart::Library::ColorAtlas::";
  const std::string span = "const class Vek::Chart::Types::Span<unsigned int> &)";
  const std::string layout = " - void __cdecl Vek::Chart::Library::Private::ColorAtlasImpl::";
  const std::string process = layout + "InstanceCoordinateMapper::ProcessInstances(unsigned int," + span;
  const std::string colorAt = " - struct " + atlasClass + "ColorNode &__cdecl " + atlasClass + "ColorAt(unsigned int)";
  const std::string offset =
      " - class Vek::Chart::Ogl::Vec2<float> __cdecl " + atlasClass + "InstanceOffset(unsigned int) const";
  const std::string addInstance =
      " - unsigned int __cdecl " + atlasClass +
      "AddInstance(unsigned int,const class std::map<unsigned int,class QColor,struct std::less<unsigned int>,class "
      "std::allocator<struct std::pair<unsigned int const ,class QColor> > > &)";
  using Run = std::function<void(ColorAtlas&)>;
  const auto built = [this](const std::string& p_colors, int p_size, const Instances& p_instances = {}) -> Run {
    return [=](ColorAtlas& p_a) { Add(p_a, p_colors, p_instances), Build(p_a, p_size); };
  };
  const std::string notLaidOut = std::to_string(ColorAtlas::NoParent);
  const std::tuple<const char*, Run, Lines> cases[] = {
      {"texture before a build",
       [](ColorAtlas& p_a) { EXPECT_FALSE(p_a.Texture()); },
       {"\"_map\" - class boost::shared_ptr<class Vek::Chart::Library::Texture> __cdecl " + atlasClass +
        "Texture(void) const"}},
      {"no colours",
       built("", 8),
       {"\"_spans.size() != 0\" - void __cdecl " + atlasClass +
        "BuildAtlas(class Vek::Chart::Utility::Scoped<class Vek::Chart::Ogl::Rgl> &)"}},
      {"an unknown id and an unknown parent",
       [](ColorAtlas& p_a) {
         EXPECT_TRUE(p_a.ColorAt(77).children.empty());
         EXPECT_EQ(p_a.AddColor(Qt::blue, 77), 1u);
       },
       {"\"instPos != _instances.end()\"" + colorAt, "\"instPos != _instances.end()\"" + colorAt}},
      {"an instance of a colour below the top",
       [](ColorAtlas& p_a) {
         Add(p_a, "a0 b1", {{2, {}}});
       },
       {"\"instanceOf.parent == _rootId\"" + addInstance}},
      {"offsets without a build, and of no instance",
       [](ColorAtlas& p_a) {
         Add(p_a, "a0", {{1, {}}});
         p_a.InstanceOffset(2);
         p_a.InstanceOffset(1);
       },
       {"\"instance.Defined()\"" + offset, "\"instanceIt != _instances.end()\"" + offset}},
      {"replacements that are not below the instanced colour",
       built("a0 b0 c" + notLaidOut, 8, {{2, {{1, Qt::black}, {3, Qt::black}, {99, Qt::black}}}}),
       {"\"subcolor.first >= base\"" + process, "\"node.coords.Defined()\"" + process,
        "\"node.coords.Defined()\"" + process}},
      {"a second build",
       [&](ColorAtlas& p_a) {
         built("a0", 8, {{1, {}}})(p_a), Build(p_a, 8);
       },
       {"\"!instance.Defined()\"" + process}},
      {"a colour that is its own grandchild",
       [this](ColorAtlas& p_a) {
         Add(p_a, "a0 b1");
         p_a.ColorAt(2).children.push_back(1);
         Build(p_a, 8);
       },
       {"\"query.second\"" + layout +
            "SpanBuilder::operator ()(class Vek::Chart::Library::Private::ColorAtlasImpl::AtlasTraversalState &,class "
            "Vek::Chart::Library::Private::ColorAtlasImpl::AtlasTraversalState *)",
        "\"!pixelEntryAlreadyExists && \"Error: coordinate has already been written to!\"\" - void __cdecl "
        "Vek::Chart::Library::Private::ImageBuilder::WriteUniquePixel(const class Vek::Chart::Ogl::Vec2<unsigned int> "
        "&,const class QColor &)",
        "\"query.second && \"Coordinate p_spans must not have already been added\"\"" + layout +
            "CoordinateMapper::MapSpan(unsigned int,struct " + atlasClass + "ColorNode &," + span}},
      {"more colours than texels",
       built("a0 b0 c0 d0 e0", 2),
       {"\"pixelCoordFirst.y < _image.MaxHeight()\"" + layout +
        "CoordinateMapper::WriteColor(unsigned int,const struct " + atlasClass + "ColorNode &," + span}},
  };
  for (const auto& [name, run, texts] : cases) {
    const ReportCapture reports;
    ColorAtlas atlas;
    run(atlas);
    EXPECT_EQ(reports.Texts(), texts) << name;
  }
}

TEST_F(ColorAtlasCalls, BuildsChainsOfAnyDepth) {
  ColorAtlas atlas;
  constexpr unsigned int Depth = 100000;
  std::map<unsigned int, QColor> all;
  for (unsigned int i = 0; i < Depth; ++i)
    all[atlas.AddColor(Numbered(i), i)] = Numbered(i + 7);
  const unsigned int instance = atlas.AddInstance(1, all);
  Build(atlas, 1024);
  // Every colour of the chain is replaced on its own: a painter that repaints each run would write 2 · 10^10 texels.
  const long row = std::lround(-atlas.InstanceOffset(instance).y / atlas.TexelCoordSpace().texel.y);
  EXPECT_EQ(atlas.AtlasImage().pixel(Depth % 1024 - 1, static_cast<int>(row + Depth / 1024)),
            Numbered(Depth + 6).rgba());
}

#include "platform/ogl/PerContext.h"
#include "tests/support/Test.h"

namespace {

using TextureHandle = boost::shared_ptr<Ogl::Texture>;
using Part = Ogl::PerContext<TextureHandle>;

unsigned int Draw(const Part& p_part, const Scope& p_gl) {
  return p_part.Get(p_gl, [&] { return p_gl->GenTexture(); })->Name();
}

unsigned int Draw(const Part& p_part, const Utility::Unscoped<Rgl>& p_handle) {
  return Draw(p_part, Scope(p_handle));
}

Lines Forgotten(int p_count) {
  return {"WARNING: Rgl: " + std::to_string(p_count) +
          " values of PerContext were not released before the last handle of their context ended; their GL names are "
          "forgotten"};
}

/// A context of a host: its calls go to a recorder, which lives longer.
struct Host {
  /// Names of textures start behind `p_firstNames`, so that those of two hosts differ.
  explicit Host(int p_firstNames = 0) {
    for (int i = 0; i < p_firstNames; ++i)
      Scope(recorder.Handle())->GenTexture();
    recorder.Clear();
  }
  void Release() const { Ogl::Release(Scope(*handle)); }
  Lines Deletions() const { return recorder.LinesOf({"DeleteTextures"}); }

  RecordingGl recorder;
  std::optional<Utility::Unscoped<Rgl>> handle{boost::make_shared<Rgl>(
      recorder.Handle().Object()->Functions(), [this] { recorder.Handle().Object()->ScopeBegin(); },
      [this] { recorder.Handle().Object()->ScopeEnd(); })};
};

class PerContextCalls : public testing::Test {
public:
  void TearDown() override {
    for (const Host* const host : {&first, &second}) {
      { const Scope freesOrphans(*host->handle); }
      EXPECT_EQ(host->recorder.Complaints(), Lines());
    }
    EXPECT_EQ(reports.Texts(), Lines());
  }

  Host first, second{4};
  const ReportCapture reports;
};

TEST_F(PerContextCalls, MakesOneValuePerContextAndOwner) {
  const Part part, other;
  for (int frame = 0; frame < 3; ++frame) {
    EXPECT_EQ(Draw(part, *first.handle), 1001U);
    EXPECT_EQ(Draw(other, *first.handle), 1002U);
    EXPECT_EQ(Draw(part, *second.handle), 1005U);
  }
  EXPECT_EQ(first.recorder.Lines(), Calls("GenTextures(1, [1001]); GenTextures(1, [1002])"));
  EXPECT_EQ(second.recorder.Lines(), Calls("GenTextures(1, [1005])"));
  const Scope gl(*second.handle);
  EXPECT_EQ((*part.Find(gl))->Name(), 1005U);
  EXPECT_EQ(other.Find(gl), nullptr);
  EXPECT_EQ(*Ogl::PerContext<std::vector<int>>().Get(gl).insert({}, 7), 7) << "made by the default constructor";
}

TEST_F(PerContextCalls, KeepsNothingOfAFactoryThatThrows) {
  const Part part;
  const Scope gl(*first.handle);
  const auto fail = [&]() -> TextureHandle {
    const TextureHandle half = gl->GenTexture();
    throw std::runtime_error("no more");
  };
  EXPECT_THROW(part.Get(gl, fail), std::runtime_error);
  EXPECT_EQ(part.Find(gl), nullptr);
  EXPECT_EQ(Draw(part, gl), 1002U);
  EXPECT_EQ(first.Deletions(), Calls("DeleteTextures(1, [1001])"));
}

// The first context's value is freed: where and when depends on the scopes that are open.
TEST_F(PerContextCalls, FreesWhereItsContextIsCurrent) {
  const Lines none, freed = Calls("DeleteTextures(1, [1001])");
  const std::function<void(Part&)> ends[] = {
      [](Part& p_part) { p_part.Reset(); },
      [](Part& p_part) { p_part = Part(); },
      [](Part& p_part) { p_part = std::as_const(p_part = Part()); },
      [](Part& p_part) { const Part moved = std::move(p_part); },
      [](Part& p_part) { std::thread([&] { p_part.Reset(); }).join(); },
  };
  for (const auto& end : ends) {
    const bool onAThread = &end == std::end(ends) - 1;
    SCOPED_TRACE(&end - ends);
    Host own, other(4);
    Part part;
    const auto draw = [&] {
      own.recorder.Clear();
      const unsigned int name = Draw(part, *own.handle);
      Draw(part, *other.handle);
      return Calls("DeleteTextures(1, [" + std::to_string(name) + "])");
    };

    Lines deletion = draw();
    end(part);
    EXPECT_EQ(own.Deletions(), none) << "without a scope";
    {
      const Scope gl(*own.handle);
      EXPECT_EQ(own.Deletions(), deletion) << "as the next scope opens";
    }
    deletion = draw();
    {
      const Scope gl(*own.handle), inner(*own.handle);
      end(part);
      EXPECT_EQ(own.Deletions(), onAThread ? none : deletion) << "inside a scope";
    }
    EXPECT_EQ(own.Deletions(), deletion) << "as the scope ends";
    deletion = draw();
    {
      const Scope gl(*own.handle);
      {
        const Scope innermost(*other.handle);
        end(part);
        EXPECT_EQ(own.Deletions(), none) << "inside a scope of another context";
      }
      EXPECT_EQ(own.Deletions(), none);
    }
    EXPECT_EQ(own.Deletions(), deletion) << "as the scope ends";
    other.Release();
    EXPECT_EQ(own.recorder.Complaints() + other.recorder.Complaints(), none);
  }
}

TEST_F(PerContextCalls, ReleaseFreesTheValuesOfOneContext) {
  const Part part, other;
  for (const Part* const each : {&part, &other})
    for (const Host* const host : {&first, &second})
      Draw(*each, *host->handle);
  part.Release(Scope(*first.handle));
  EXPECT_EQ(first.Deletions(), Calls("DeleteTextures(1, [1001])"));
  {
    const Scope gl(*first.handle);
    {
      const Scope innermost(*second.handle);
      Ogl::Release(gl);
      EXPECT_EQ(first.Deletions(), Calls("DeleteTextures(1, [1001])")) << "another context is current";
      Ogl::Release(innermost);
    }
    EXPECT_EQ(Draw(part, gl), 1003U);
  }
  EXPECT_EQ(first.Deletions(), Calls("DeleteTextures(1, [1001]); DeleteTextures(1, [1002])"));
  EXPECT_EQ(second.Deletions(), Calls("DeleteTextures(1, [1005]); DeleteTextures(1, [1006])"));
  Ogl::Release(Scope(*first.handle));
  Ogl::Release(Scope(*first.handle));
  EXPECT_EQ(first.recorder.Complaints(), Lines());
}

TEST_F(PerContextCalls, CopiesAreEmptyAndMovesKeep) {
  const Scope gl(*first.handle);
  Part part;
  const unsigned int name = Draw(part, gl);
  const Part copy = part;
  EXPECT_EQ(copy.Find(gl), nullptr);
  Part moved = std::move(part);
  EXPECT_EQ(part.Find(gl), nullptr); // NOLINT: empty after the move
  EXPECT_EQ(Draw(moved, gl), name);
  EXPECT_EQ(Draw(part, gl), name + 1);
  part = std::move(moved);
  EXPECT_EQ(Draw(part, gl), name);
  EXPECT_EQ(first.Deletions(), Calls("DeleteTextures(1, [1002])"));
  Part& self = part;
  part = self;
  part = std::move(self);
  EXPECT_EQ(Draw(part, gl), name);
}

struct Nested {
  explicit Nested(const Scope& p_gl)
      : texture(p_gl->GenTexture()) {
    Draw(part, p_gl);
  }
  TextureHandle texture;
  Part part;
};

TEST_F(PerContextCalls, AValueMayHaveValuesOfItsOwn) {
  Ogl::PerContext<Nested> part;
  part.Get(Scope(*first.handle), [&] { return Nested(Scope(*first.handle)); });
  part.Reset();
  { const Scope frees(*first.handle); }
  EXPECT_EQ(first.Deletions(), Calls("DeleteTextures(1, [1002]); DeleteTextures(1, [1001])"));
}

// A part and the two contexts that it was drawn in, in all orders; hosts release their context before its end, or do
// not.
TEST_F(PerContextCalls, EndsInAnyOrder) {
  std::string order = "12P";
  do
    for (const bool releases : {true, false}) {
      SCOPED_TRACE(order + (releases ? " released" : " forgotten"));
      Host hosts[2] = {Host(), Host(4)};
      auto part = std::make_unique<Part>();
      for (const Host& host : hosts)
        Draw(*part, *host.handle);
      const ReportCapture throwing(true);
      for (const char end : order) {
        if (end == 'P') {
          part.reset();
          continue;
        }
        Host& host = hosts[end - '1'];
        const Scope another(*first.handle); // receives calls of the host that come too late
        if (releases)
          host.Release();
        host.handle.reset();
      }
      EXPECT_EQ(hosts[0].Deletions(), releases ? Calls("DeleteTextures(1, [1001])") : Lines());
      EXPECT_EQ(hosts[1].Deletions(), releases ? Calls("DeleteTextures(1, [1005])") : Lines());
      EXPECT_EQ(throwing.Texts(), releases ? Lines() : Forgotten(1) + Forgotten(1));
      EXPECT_EQ(first.recorder.Lines(), Lines());
    }
  while (std::next_permutation(order.begin(), order.end()));
}

// Objects that are held elsewhere work on when the values of their context are forgotten.
TEST_F(PerContextCalls, ForgettingLeavesOtherObjectsAlone) {
  const Part part, other;
  TextureHandle held;
  {
    const Scope gl(*first.handle);
    const ReportCapture forgetting;
    Utility::Unscoped<Rgl> handle(boost::make_shared<Rgl>(gl->Functions())); // on the current context
    held = Scope(handle)->GenTexture();
    Draw(part, handle);
    Draw(other, handle);
    handle = *first.handle;
    EXPECT_EQ(forgetting.Texts(), Forgotten(2));
    EXPECT_EQ(first.Deletions(), Lines());
    held.reset();
    EXPECT_EQ(first.Deletions(), Calls("DeleteTextures(1, [1001])"));
  }
  EXPECT_EQ(first.recorder.Complaints().size(), 2U) << "forgotten, not deleted";
  const unsigned int forgotten[] = {1002, 1003};
  Scope(*first.handle)->DeleteTextures(2, forgotten);
}

int Binding(const Scope& p_gl) {
  int name = -1;
  p_gl->GetIntegerv(RGL_TEXTURE_BINDING_2D, &name);
  return name;
}

// Each context has a texture of the same name, which is bound: GL unbinds a texture that is deleted.
TEST(PerContextPixels, EndsInAnyOrder) {
  std::string order = "12P";
  do {
    SCOPED_TRACE(order);
    const ReportCapture reports;
    Ogl::OffscreenContext host({9, 3});
    const Scope hostGl(host.Handle());
    const TextureHandle own = hostGl->GenTexture();
    hostGl->Bind(own, Rgl::Sampler2D);

    std::unique_ptr<Ogl::OffscreenContext> contexts[2];
    auto part = std::make_unique<Part>();
    for (auto& context : contexts) {
      context = std::make_unique<Ogl::OffscreenContext>(Types::Size(3, 9));
      const Scope gl(context->Handle());
      EXPECT_EQ(Draw(*part, gl), own->Name());
      gl->Bind(*part->Find(gl), Rgl::Sampler2D);
    }
    for (const char end : order) {
      if (end != 'P') {
        contexts[end - '1'].reset();
        continue;
      }
      part.reset();
      for (const auto& context : contexts)
        EXPECT_EQ(context ? Binding(Scope(context->Handle())) : 0, 0) << "deleted as the scope opens";
    }
    EXPECT_EQ(Binding(hostGl), static_cast<int>(own->Name()));
    EXPECT_EQ(reports.Texts(), Lines());
  } while (std::next_permutation(order.begin(), order.end()));
}

TEST(PerContextPixels, APartOutlivesManyContexts) {
  const ReportCapture reports;
  const Part part;
  for (int i = 0; i < 3; ++i) {
    const Ogl::OffscreenContext context({9, 3});
    const auto open = std::make_unique<Scope>(context.Handle());
    EXPECT_NE(Draw(part, *open), 0U);
  }
  EXPECT_EQ(reports.Texts(), Lines());
}

// As `ModelCache` does. The handle would keep itself alive.
TEST(PerContextPixels, TheEndOfAContextFreesValuesThatHoldItsHandle) {
  static bool current = false;
  struct Holder {
    ~Holder() { current = handle.Object()->GetString(RGL_VERSION) != nullptr; }
    Utility::Unscoped<Rgl> handle;
    TextureHandle texture;
  };
  const ReportCapture reports;
  const Ogl::PerContext<Holder> part;
  boost::weak_ptr<Rgl> handle;
  {
    const Ogl::OffscreenContext context({9, 3});
    handle = context.Handle().Object();
    const Scope gl(context.Handle());
    part.Get(gl, [&] { return Holder{gl.Handle(), gl->GenTexture()}; });
  }
  EXPECT_TRUE(handle.expired());
  EXPECT_TRUE(current);
  EXPECT_EQ(reports.Texts(), Lines());
}

} // namespace

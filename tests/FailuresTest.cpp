// Every call of GL and every allocation fails once, for every class that uses GL: nothing crashes, leaks or stays open,
// a failure that loses something is reported, and the object works at the next try.
//
// VEK_FAIL_ONWARDS=1 in the environment also runs the slow sweeps, in which every later call fails, too.

#include "tests/support/FaultyGl.h"
#include "tests/support/GlSubjects.h"
#include "tests/support/OperatorNew.h"
#include "tests/support/Test.h"

#include <new>

namespace {

/// One failure, of a call or of an allocation.
struct Fault {
  FaultyGl::Plan calls;
  std::size_t allocation = 0;
  bool throwing = false;
};

/// What a host has bound, and must find bound afterwards.
std::vector<int> HostState(const Handle& p_handle) {
  const Scope gl(p_handle);
  std::vector<int> values;
  for (const Ogl::GlEnum name :
       {RGL_ARRAY_BUFFER_BINDING, RGL_ELEMENT_ARRAY_BUFFER_BINDING, RGL_PIXEL_PACK_BUFFER_BINDING,
        RGL_PIXEL_UNPACK_BUFFER_BINDING, RGL_FRAMEBUFFER_BINDING, RGL_CURRENT_PROGRAM, RGL_MATRIX_MODE,
        RGL_MODELVIEW_STACK_DEPTH, RGL_PROJECTION_STACK_DEPTH, RGL_ATTRIB_STACK_DEPTH, RGL_CLIENT_ATTRIB_STACK_DEPTH}) {
    values.push_back(0);
    gl->GetIntegerv(name, &values.back());
  }
  return values;
}

/// Runs the subject once with the fault and once without. `p_finish` looks at the object after both, with what uses it.
/// Returns false when the fault was not reached: the subject has fewer calls.
bool Survives(const Subject& p_subject, const Fault& p_fault, const Handle& p_real,
              const std::function<void(const Use&, const Handle&)>& p_finish) {
  std::optional<ReportCapture> reports(std::in_place, p_fault.throwing);
  FaultyGl faulty(p_real);
  const std::vector<int> before = HostState(p_real);
  Use use;
  faulty.Arm(p_fault.calls);
  FailingAllocations::Arm(p_fault.allocation);
  try {
    use = p_subject.make(faulty.Handle());
    Scope gl(faulty.Handle());
    use(gl);
  } catch (const std::exception&) { // the sink's, or std::bad_alloc
  }
  const bool lacked = FailingAllocations::Disarm();
  const std::string failed = faulty.Disarm();
  const std::string what = std::string(p_subject.name) + ", " + (lacked ? "allocation" : failed) + " " +
                           std::to_string(lacked ? p_fault.allocation : p_fault.calls.first) +
                           (p_fault.throwing ? ", throwing" : "");
  SCOPED_TRACE(what);
  EXPECT_EQ(HostState(p_real), before);
  EXPECT_EQ(faulty.Handle().Object()->ScopeDepth(), 0U);
  EXPECT_TRUE(failed.empty() || !reports->Texts().empty() || faulty.TakePendingError()) << "nothing was reported";
  reports.emplace();
  Scope gl(faulty.Handle()); // objects are released within it
  gl->CheckError("what is left");
  reports->Clear();
  if (!use)
    use = p_subject.make(faulty.Handle());
  use(gl);
  EXPECT_EQ(reports->Texts(), Lines()) << "at the next try";
  p_finish(use, faulty.Handle());
  use = {};
  return lacked || !failed.empty();
}

/// Every call alone, and every allocation; calls also with a sink that throws.
void RunAll(const std::function<bool(const Fault&)>& p_run) {
  constexpr std::size_t Most = 5000; // no subject has so many
  const bool onwards = std::getenv("VEK_FAIL_ONWARDS") != nullptr;
  for (const bool throwing : {false, true})
    for (const bool all : {false, true})
      for (std::size_t i = 1; (!all || onwards) && i < Most && p_run({{i, all}, 0, throwing}); ++i)
        if (testing::Test::HasFailure())
          return;
  for (std::size_t i = 1; i < Most && p_run({{}, i, false}); ++i)
    if (testing::Test::HasFailure())
      return;
}

/// The lines of a use, without digits: the names of objects differ after a failure.
Lines LinesOfUse(RecordingGl& p_recorder, const Use& p_use, const Handle& p_handle) {
  p_recorder.Clear();
  {
    Scope gl(p_handle);
    p_use(gl);
  }
  Lines lines = p_recorder.Lines();
  for (std::string& line : lines)
    line.erase(std::remove_if(line.begin(), line.end(), [](unsigned char p_c) { return std::isdigit(p_c); }),
               line.end());
  return lines;
}

class Failures : public testing::TestWithParam<std::size_t> {
public:
  void SetUp() override { MakeApplication(); }
};
using FailuresCalls = Failures;
using FailuresPixels = Failures;

TEST_P(FailuresCalls, LeaveNothingBehind) {
  const Subject& subject = GlSubjects()[GetParam()];
  Lines clean;
  const auto run = [&](const Fault& p_fault) {
    RecordingGl recorder;
    unsigned int target = 0, buffer = 0;
    {
      const Scope host(recorder.Handle());
      host->GenFramebuffers(1, &target);
      host->BindFramebuffer(RGL_FRAMEBUFFER, target);
      host->GenBuffers(1, &buffer);
      host->BindBuffer(RGL_ARRAY_BUFFER, buffer);
    }
    const bool reached = Survives(subject, p_fault, recorder.Handle(), [&](const Use& p_use, const Handle& p_handle) {
      const Lines lines = LinesOfUse(recorder, p_use, p_handle);
      if (clean.empty())
        clean = lines;
      const auto [line, same] = std::mismatch(lines.begin(), lines.end(), clean.begin(), clean.end());
      EXPECT_TRUE(lines == clean || subject.degrades)
          << (line == lines.end() ? "end" : *line) << " instead of " << (same == clean.end() ? "end" : *same);
    });
    {
      const Scope host(recorder.Handle());
      host->DeleteFramebuffers(1, &target);
      host->DeleteBuffers(1, &buffer);
    }
    Lines complaints = recorder.Complaints();
    // A buffer without memory cannot be mapped; GL says so, and that is reported.
    complaints.erase(std::remove_if(complaints.begin(), complaints.end(),
                                    [](const std::string& p_line) {
                                      return p_line.rfind("MapBufferRange", 0) == 0 &&
                                             p_line.find("of a buffer of 0") != std::string::npos;
                                    }),
                     complaints.end());
    EXPECT_EQ(complaints, Lines());
    return reached;
  };
  run({}); // gives the clean lines
  RunAll(run);
}

TEST_P(FailuresPixels, LeaveNothingBehind) {
  const Subject& subject = GlSubjects()[GetParam()];
  Ogl::OffscreenContext& context = PixelFixture::ContextOf(PixelFixture::FrameSize);
  QImage clean;
  const auto run = [&](const Fault& p_fault) {
    context.BindFrameBuffer();
    const bool reached = Survives(subject, p_fault, context.Handle(), [&](const Use& p_use, const Handle& p_handle) {
      {
        Scope gl(p_handle);
        const auto state = gl->PushAttribScope(RGL_ALL_ATTRIB_BITS);
        gl->ClearColor(Qt::black);
        gl->Clear(RGL_COLOR_BUFFER_BIT | RGL_DEPTH_BUFFER_BIT);
        p_use(gl);
        gl->Viewport(0, 0, 30, 37); // the right half shows the use, the left one what it has left bound
        DrawTexturedSquare(gl, 1);
        gl->CheckError("the use");
      }
      const QImage image = context.Image();
      if (clean.isNull())
        clean = image;
      EXPECT_TRUE(image == clean) << "it draws something else at the next try";
    });
    return reached;
  };
  run({});
  RunAll(run);
}

const auto Name = [](const auto& p_info) { return std::string(GlSubjects()[p_info.param].name); };
INSTANTIATE_TEST_SUITE_P(Each, FailuresCalls, testing::Range<std::size_t>(0, GlSubjects().size()), Name);
INSTANTIATE_TEST_SUITE_P(Each, FailuresPixels, testing::Range<std::size_t>(0, GlSubjects().size()), Name);

} // namespace

#include "testing/RecordingGl.h"

#include "platform/debug/Check.h"
#include "platform/ogl/PerContext.h"
#include "testing/private/RecordingModel.h"
#include "testing/private/RecordingText.h"

#include <boost/make_shared.hpp>
#include <boost/weak_ptr.hpp>

#include <algorithm>
#include <set>
#include <tuple>
#include <type_traits>
#include <utility>

namespace Vek::Chart::Testing {

using namespace Ogl;

struct RecordingGl::State {
  /// The recorder that receives the calls of this thread.
  static thread_local boost::shared_ptr<State> active;
  /// Passes a call on to the active recorder.
  template <class Run, class Refuse, class Arguments>
  static auto Dispatch(const Recording::Signature& p_signature, Run p_run, Refuse p_refuse,
                       const Arguments& p_arguments);
  static GlFunctions MakeTable();
  static boost::shared_ptr<const GlFunctions> Table();

  /// Runs one call on the model, or its failure, and records it.
  template <class Run, class Refuse, class Arguments>
  auto Call(const Recording::Signature& p_signature, Run p_run, Refuse p_refuse, const Arguments& p_arguments) {
    model.BeforeCall(p_signature.name);
    const bool fails = IsToFail(p_signature);
    if constexpr (std::is_void_v<decltype(p_run(model))>) {
      fails ? p_refuse(model) : p_run(model);
      Write(p_signature, p_arguments);
    } else {
      const auto result = fails ? p_refuse(model) : p_run(model);
      Write(p_signature, p_arguments);
      return result;
    }
  }

  template <class Arguments>
  void Write(const Recording::Signature& p_signature, const Arguments& p_arguments) {
    const std::string line = std::apply(Recording::LineWriter(p_signature, model.quadricNumbers), p_arguments);
    lines.push_back({p_signature.name, line});
    // The call that ends a list, like the one that begins it, is not part of it.
    if (model.OpenList() != 0 && p_signature.name != "NewList")
      listLines[model.OpenList()].push_back(line);
    else if (p_signature.name == "NewList")
      listLines[model.OpenList()].clear();
  }

  bool IsToFail(const Recording::Signature& p_signature) {
    ++calls;
    ++callsOf[p_signature.name];
    bool fails = failingCalls.erase(calls) != 0;
    fails = failingNames.erase({p_signature.name, callsOf[p_signature.name]}) != 0 || fails;
    if (fails && !p_signature.isGlu && p_signature.name != "GetError")
      model.errors.push_back(RGL_OUT_OF_MEMORY);
    return fails;
  }

  boost::weak_ptr<State> previous; // the recorder that was active before the outermost scope
  struct Line {
    std::string name;
    std::string text;
  };
  Recording::Model model;
  std::vector<Line> lines;
  std::map<unsigned int, std::vector<std::string>> listLines;
  std::size_t calls = 0;
  std::map<std::string, std::size_t> callsOf;
  std::set<std::size_t> failingCalls;
  std::set<std::pair<std::string, std::size_t>> failingNames;
};

thread_local boost::shared_ptr<RecordingGl::State> RecordingGl::State::active;

template <class Run, class Refuse, class Arguments>
auto RecordingGl::State::Dispatch(const Recording::Signature& p_signature, Run p_run, Refuse p_refuse,
                                  const Arguments& p_arguments) {
  if (active)
    return active->Call(p_signature, p_run, p_refuse, p_arguments);
  try {
    vekdebug::warn("RecordingGl: " + p_signature.name + " without a recorder");
  } catch (...) { // NOLINT: destructors come here; the sink has had the report
  }
  Recording::Model nobody;
  return p_refuse(nobody);
}

GlFunctions RecordingGl::State::MakeTable() {
  GlFunctions table;
#define VEK_RECORD(p_result, p_name, p_parameters, p_arguments, p_isGlu)                                               \
  table.p_name = [] p_parameters -> p_result {                                                                         \
    static const Recording::Signature signature(#p_name, #p_parameters, p_isGlu);                                      \
    return Dispatch(                                                                                                   \
        signature, [&](Recording::Model& p_glModel) { return p_glModel.p_name p_arguments; },                          \
        [&](Recording::Model& p_glModel) { return p_glModel.GlDefaults::p_name p_arguments; },                         \
        std::make_tuple p_arguments);                                                                                  \
  };
#define VEK_GL(p_result, p_name, p_parameters, p_arguments)                                                            \
  VEK_RECORD(p_result, p_name, p_parameters, p_arguments, false)
#define VEK_GLU(p_result, p_name, p_parameters, p_arguments)                                                           \
  VEK_RECORD(p_result, p_name, p_parameters, p_arguments, true)
#include "platform/ogl/GlFunctionList.h"
  return table;
}

boost::shared_ptr<const GlFunctions> RecordingGl::State::Table() {
  static const boost::shared_ptr<const GlFunctions> Table = boost::make_shared<GlFunctions>(MakeTable());
  return Table;
}

RecordingGl::RecordingGl()
    : _state(boost::make_shared<State>())
    , _handle(boost::make_shared<Rgl>(
          State::Table(),
          [state = _state] {
            state->previous = State::active;
            State::active = state;
          },
          [state = _state] {
            if (const boost::shared_ptr<State> previous = state->previous.lock())
              State::active = previous;
          })) {}

RecordingGl::~RecordingGl() {
  Release(Utility::Scoped<Rgl>(_handle));
  if (State::active == _state)
    State::active.reset();
}

const Utility::Unscoped<Rgl>& RecordingGl::Handle() const {
  return _handle;
}

namespace {

template <class Lines, class Wanted>
std::vector<std::string> Texts(const Lines& p_lines, Wanted p_wanted) {
  std::vector<std::string> texts;
  for (const auto& line : p_lines)
    if (p_wanted(line.name))
      texts.push_back(line.text);
  return texts;
}

bool Contains(const std::vector<std::string>& p_names, const std::string& p_name) {
  return std::find(p_names.begin(), p_names.end(), p_name) != p_names.end();
}

} // namespace

std::vector<std::string> RecordingGl::Lines() const {
  return Texts(_state->lines, [](const std::string&) { return true; });
}

std::vector<std::string> RecordingGl::LinesOf(const std::vector<std::string>& p_names) const {
  return Texts(_state->lines, [&](const std::string& p_name) { return Contains(p_names, p_name); });
}

std::vector<std::string> RecordingGl::LinesWithout(const std::vector<std::string>& p_names) const {
  return Texts(_state->lines, [&](const std::string& p_name) { return !Contains(p_names, p_name); });
}

std::vector<std::string> RecordingGl::ListLines(unsigned int p_list) const {
  const auto found = _state->listLines.find(p_list);
  return found == _state->listLines.end() ? std::vector<std::string>() : found->second;
}

void RecordingGl::Clear() {
  _state->lines.clear();
}

std::vector<std::string> RecordingGl::Complaints() const {
  std::vector<std::string> complaints = _state->model.complaints;
  const std::vector<std::string> leftovers = _state->model.Leftovers();
  complaints.insert(complaints.end(), leftovers.begin(), leftovers.end());
  return complaints;
}

std::vector<std::string> RecordingGl::TakeComplaints() {
  return std::exchange(_state->model.complaints, {});
}

void RecordingGl::SetVersion(const std::string& p_version) {
  _state->model.version = p_version;
}

void RecordingGl::SetExtensions(const std::string& p_extensions) {
  _state->model.extensions = p_extensions;
}

void RecordingGl::SetInteger(GlEnum p_name, const std::vector<int>& p_values) {
  _state->model.answers[p_name] = p_values;
}

void RecordingGl::SetFramebufferStatus(GlEnum p_status) {
  _state->model.framebufferStatus = p_status;
}

void RecordingGl::SetPixel(int p_x, int p_y, const std::array<unsigned char, 4>& p_rgba) {
  _state->model.pixels[{p_x, p_y}] = p_rgba;
}

void RecordingGl::SetInfoLog(const std::string& p_text) {
  _state->model.infoLog = p_text;
}

void RecordingGl::FailCall(std::size_t p_number) {
  _state->failingCalls.insert(_state->calls + p_number);
}

void RecordingGl::Fail(const std::string& p_name, std::size_t p_number) {
  _state->failingNames.insert({p_name, _state->callsOf[p_name] + p_number});
}

void RecordingGl::QueueError(GlEnum p_error) {
  _state->model.errors.push_back(p_error);
}

const RecordingGl::TextureObject* RecordingGl::FindTexture(unsigned int p_name) const {
  const auto found = _state->model.textures.find(p_name);
  return found == _state->model.textures.end() ? nullptr : &found->second;
}

std::vector<unsigned char> RecordingGl::BufferBytes(unsigned int p_name) const {
  const auto found = _state->model.buffers.find(p_name);
  return found == _state->model.buffers.end() ? std::vector<unsigned char>() : found->second.bytes;
}

} // namespace Vek::Chart::Testing

// The recorder's object names, frame buffers and shaders.

#include "testing/private/RecordingModel.h"
#include "testing/private/RecordingText.h"

#include <algorithm>
#include <cstring>

namespace Vek::Chart::Testing::Recording {

// Names

unsigned int Model::NewName(const std::string& p_kind) {
  // Each kind counts from its own thousand, so that a name of one kind is not one of another.
  static const std::map<std::string, unsigned int> Bases = {
      {"texture", 1000},      {"display list", 2000}, {"buffer", 3000}, {"frame buffer", 4000},
      {"renderbuffer", 5000}, {"shader", 6000},       {"program", 7000}};
  const unsigned int name = Bases.at(p_kind) + ++_made[p_kind];
  _names[p_kind].insert(name);
  return name;
}

void Model::Generate(const std::string& p_kind, int p_count, unsigned int* p_names) {
  if (p_count < 0)
    return Complain("a negative number of names for a " + p_kind);
  std::generate_n(p_names, p_count, [&] { return NewName(p_kind); });
}

bool Model::Exists(const std::string& p_kind, unsigned int p_name) const {
  const auto found = _names.find(p_kind);
  return found != _names.end() && found->second.count(p_name) != 0;
}

bool Model::Need(const std::string& p_call, const std::string& p_kind, unsigned int p_name) {
  if (Exists(p_kind, p_name))
    return true;
  Complain(p_call + ": " + std::to_string(p_name) + " names no " + p_kind);
  return false;
}

bool Model::Remove(const std::string& p_call, const std::string& p_kind, unsigned int p_name) {
  if (!Need(p_call, p_kind, p_name))
    return false;
  _names[p_kind].erase(p_name);
  return true;
}

void Model::Unbind(GlEnum p_binding, unsigned int p_name) {
  for (auto& [key, values] : _context.variables)
    if (static_cast<GlEnum>(key) == p_binding && values.front() == p_name)
      values.front() = 0;
}

// Frame buffers

void Model::DeleteFramebuffers(int p_count, const unsigned int* p_names) {
  for (int i = 0; i < p_count; ++i) {
    Remove("DeleteFramebuffers", "frame buffer", p_names[i]);
    Unbind(RGL_DRAW_FRAMEBUFFER_BINDING, p_names[i]);
    Unbind(RGL_READ_FRAMEBUFFER_BINDING, p_names[i]);
  }
}

void Model::BindFramebuffer(GlEnum p_target, unsigned int p_name) {
  if (p_name != 0 && !Need("BindFramebuffer", "frame buffer", p_name))
    return;
  if (p_target != RGL_READ_FRAMEBUFFER)
    Set(RGL_DRAW_FRAMEBUFFER_BINDING, {double(p_name)});
  if (p_target != RGL_DRAW_FRAMEBUFFER)
    Set(RGL_READ_FRAMEBUFFER_BINDING, {double(p_name)});
}

void Model::Attach(const std::string& p_call, GlEnum p_target, GlEnum p_attachment, const std::string& p_kind,
                   unsigned int p_name) {
  const GlEnum binding = p_target == RGL_READ_FRAMEBUFFER ? RGL_READ_FRAMEBUFFER_BINDING : RGL_DRAW_FRAMEBUFFER_BINDING;
  if (One(binding) == 0)
    Complain(p_call + ": no frame buffer is bound for " + Name(p_attachment));
  if (p_name != 0)
    Need(p_call, p_kind, p_name);
}

void Model::FramebufferTexture2D(GlEnum p_target, GlEnum p_attachment, GlEnum, unsigned int p_name, int p_level) {
  Attach("FramebufferTexture2D", p_target, p_attachment, "texture", p_name);
  const auto found = textures.find(p_name);
  if (found != textures.end() && found->second.levels.count(p_level) == 0)
    Complain("FramebufferTexture2D: texture " + std::to_string(p_name) + " has no level " + std::to_string(p_level));
}

void Model::FramebufferRenderbuffer(GlEnum p_target, GlEnum p_attachment, GlEnum, unsigned int p_name) {
  Attach("FramebufferRenderbuffer", p_target, p_attachment, "renderbuffer", p_name);
}

GlEnum Model::CheckFramebufferStatus(GlEnum) {
  return framebufferStatus;
}

void Model::DeleteRenderbuffers(int p_count, const unsigned int* p_names) {
  for (int i = 0; i < p_count; ++i) {
    Remove("DeleteRenderbuffers", "renderbuffer", p_names[i]);
    Unbind(RGL_RENDERBUFFER_BINDING, p_names[i]);
  }
}

void Model::BindRenderbuffer(GlEnum, unsigned int p_name) {
  if (p_name == 0 || Need("BindRenderbuffer", "renderbuffer", p_name))
    Set(RGL_RENDERBUFFER_BINDING, {double(p_name)});
}

// Shaders

unsigned int Model::CreateShader(GlEnum) {
  return NewName("shader");
}

void Model::DeleteShader(unsigned int p_name) {
  if (p_name != 0) // which GL passes over
    Remove("DeleteShader", "shader", p_name);
}

void Model::ShaderSource(unsigned int p_name, int p_count, const char* const* p_texts, const int*) {
  Need("ShaderSource", "shader", p_name);
  for (int i = 0; i < p_count; ++i)
    if (p_texts[i] == nullptr)
      Complain("ShaderSource: a null text");
}

void Model::CompileShader(unsigned int p_name) {
  if (Need("CompileShader", "shader", p_name))
    _compiled.insert(p_name);
}

void Model::Status(bool p_done, GlEnum p_statusName, GlEnum p_what, int* p_values) const {
  if (p_what == p_statusName)
    *p_values = p_done ? 1 : 0;
  else if (p_what == RGL_INFO_LOG_LENGTH)
    *p_values = infoLog.empty() ? 0 : static_cast<int>(infoLog.size()) + 1;
}

void Model::InfoLog(int p_room, int* p_length, char* p_text) const {
  if (p_room < 1)
    return;
  const std::size_t length = std::min(infoLog.size(), static_cast<std::size_t>(p_room) - 1);
  std::memcpy(p_text, infoLog.data(), length);
  p_text[length] = '\0';
  if (p_length != nullptr)
    *p_length = static_cast<int>(length);
}

void Model::GetShaderiv(unsigned int p_name, GlEnum p_what, int* p_values) {
  if (Need("GetShaderiv", "shader", p_name))
    Status(_compiled.count(p_name) != 0, RGL_COMPILE_STATUS, p_what, p_values);
}

void Model::GetShaderInfoLog(unsigned int p_name, int p_room, int* p_length, char* p_text) {
  if (Need("GetShaderInfoLog", "shader", p_name))
    InfoLog(p_room, p_length, p_text);
}

unsigned int Model::CreateProgram() {
  return NewName("program");
}

void Model::DeleteProgram(unsigned int p_name) {
  if (p_name != 0)
    Remove("DeleteProgram", "program", p_name);
}

void Model::AttachShader(unsigned int p_program, unsigned int p_shader) {
  Need("AttachShader", "program", p_program);
  Need("AttachShader", "shader", p_shader);
}

void Model::LinkProgram(unsigned int p_name) {
  if (Need("LinkProgram", "program", p_name))
    _linked.insert(p_name);
}

void Model::GetProgramiv(unsigned int p_name, GlEnum p_what, int* p_values) {
  if (Need("GetProgramiv", "program", p_name))
    Status(_linked.count(p_name) != 0, RGL_LINK_STATUS, p_what, p_values);
}

void Model::GetProgramInfoLog(unsigned int p_name, int p_room, int* p_length, char* p_text) {
  if (Need("GetProgramInfoLog", "program", p_name))
    InfoLog(p_room, p_length, p_text);
}

void Model::UseProgram(unsigned int p_name) {
  if (p_name != 0 && !Need("UseProgram", "program", p_name))
    return;
  if (p_name != 0 && _linked.count(p_name) == 0)
    return Complain("UseProgram: program " + std::to_string(p_name) + " is not linked");
  Set(RGL_CURRENT_PROGRAM, {double(p_name)});
}

int Model::GetUniformLocation(unsigned int p_program, const char* p_uniform) {
  if (!Need("GetUniformLocation", "program", p_program))
    return -1;
  return _uniforms.try_emplace({p_program, p_uniform}, static_cast<int>(_uniforms.size())).first->second;
}

} // namespace Vek::Chart::Testing::Recording

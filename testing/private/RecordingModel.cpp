#include "testing/private/RecordingModel.h"

#include "testing/private/RecordingState.h"
#include "testing/private/RecordingText.h"

#include <algorithm>

namespace Vek::Chart::Testing::Recording {
namespace {

bool AllowedInsideBegin(const std::string& p_name) {
  static const std::set<std::string> Allowed = {"End",           "Vertex2i",         "Vertex3d",      "Normal3d",
                                                "Color4d",       "TexCoord1d",       "TexCoord2d",    "TexCoord3d",
                                                "Materialfv",    "MultiTexCoord3d",  "CallList",      "NewQuadric",
                                                "DeleteQuadric", "QuadricDrawStyle", "QuadricNormals"};
  return Allowed.count(p_name) != 0;
}

/// The number of vertices per primitive if GL drops a remainder, otherwise 1.
std::size_t VerticesPerPrimitive(GlEnum p_mode) {
  switch (p_mode) {
  case RGL_LINES:
  case RGL_QUAD_STRIP:
    return 2;
  case RGL_TRIANGLES:
    return 3;
  case RGL_QUADS:
  case RGL_LINES_ADJACENCY:
    return 4;
  default:
    return 1;
  }
}

} // namespace

// Immediate mode

void Model::BeforeCall(const std::string& p_name) {
  if (_primitive && !AllowedInsideBegin(p_name))
    Complain(p_name + ": not allowed between Begin and End");
}

void Model::Begin(GlEnum p_mode) {
  if (p_mode > RGL_POLYGON && p_mode != RGL_LINES_ADJACENCY)
    Complain("Begin: " + Name(p_mode) + " is no primitive");
  _primitive = p_mode;
  _vertices = 0;
}

void Model::End() {
  if (!_primitive)
    return Complain("End: without Begin");
  if (_vertices % VerticesPerPrimitive(*_primitive) != 0)
    Complain("End: " + std::to_string(_vertices) + " vertices leave a remainder for " +
             EnumText(*_primitive, false, "p_mode"));
  _primitive.reset();
}

void Model::CountVertex(const std::string& p_call) {
  if (!_primitive)
    Complain(p_call + ": outside Begin and End");
  ++_vertices;
}

void Model::Color4d(double p_red, double p_green, double p_blue, double p_alpha) {
  Set(RGL_CURRENT_COLOR, {p_red, p_green, p_blue, p_alpha});
}

void Model::Normal3d(double p_x, double p_y, double p_z) {
  Set(RGL_CURRENT_NORMAL, {p_x, p_y, p_z});
}

// Matrices

void Model::MatrixMode(GlEnum p_mode) {
  if (p_mode != RGL_MODELVIEW && p_mode != RGL_PROJECTION && p_mode != RGL_TEXTURE)
    return Complain("MatrixMode: " + Name(p_mode) + " is no matrix");
  Set(RGL_MATRIX_MODE, {double(p_mode)});
}

void Model::PushMatrix() {
  if (const std::string fault = _context.matrices.Push(CurrentMode()); !fault.empty())
    Complain("PushMatrix: " + fault);
}

void Model::PopMatrix() {
  if (const std::string fault = _context.matrices.Pop(CurrentMode()); !fault.empty())
    Complain("PopMatrix: " + fault);
}

void Model::Ortho(double p_left, double p_right, double p_bottom, double p_top, double p_near, double p_far) {
  if (p_left == p_right || p_bottom == p_top || p_near == p_far)
    return Complain("Ortho: an empty volume");
  Multiply(OrthoMatrix(p_left, p_right, p_bottom, p_top, p_near, p_far));
}

// State variables

Model::Key Model::KeyOf(GlEnum p_name) const {
  const StateVariable* const variable = FindStateVariable(p_name);
  if (variable == nullptr || !variable->perUnit)
    return p_name;
  const auto unit = static_cast<GlEnum>(One(RGL_ACTIVE_TEXTURE)) - RGL_TEXTURE0;
  return Key(unit) << 32 | p_name;
}

double Model::One(GlEnum p_name) const {
  const auto found = _context.variables.find(KeyOf(p_name));
  if (found != _context.variables.end())
    return found->second.front();
  const StateVariable* const variable = FindStateVariable(p_name);
  return variable == nullptr ? 0 : variable->initial[0];
}

void Model::ClearColor(float p_red, float p_green, float p_blue, float p_alpha) {
  Set(RGL_COLOR_CLEAR_VALUE, {p_red, p_green, p_blue, p_alpha});
}

void Model::ColorMask(GlBoolean p_red, GlBoolean p_green, GlBoolean p_blue, GlBoolean p_alpha) {
  Set(RGL_COLOR_WRITEMASK, {double(p_red), double(p_green), double(p_blue), double(p_alpha)});
}

void Model::BlendFunc(GlEnum p_source, GlEnum p_destination) {
  BlendFuncSeparate(p_source, p_destination, p_source, p_destination);
}

void Model::BlendFuncSeparate(GlEnum p_source, GlEnum p_destination, GlEnum p_sourceAlpha, GlEnum p_destinationAlpha) {
  for (const GlEnum name : {RGL_BLEND_SRC, RGL_BLEND_SRC_RGB})
    Set(name, {double(p_source)});
  for (const GlEnum name : {RGL_BLEND_DST, RGL_BLEND_DST_RGB})
    Set(name, {double(p_destination)});
  Set(RGL_BLEND_SRC_ALPHA, {double(p_sourceAlpha)});
  Set(RGL_BLEND_DST_ALPHA, {double(p_destinationAlpha)});
}

void Model::PolygonMode(GlEnum p_face, GlEnum p_mode) {
  Values modes = Query(RGL_POLYGON_MODE).value_or(Values{RGL_FILL, RGL_FILL});
  if (p_face != RGL_BACK)
    modes[0] = p_mode;
  if (p_face != RGL_FRONT)
    modes[1] = p_mode;
  Set(RGL_POLYGON_MODE, modes);
}

void Model::LineStipple(int p_factor, unsigned short p_pattern) {
  Set(RGL_LINE_STIPPLE_REPEAT, {double(std::clamp(p_factor, 1, 256))}); // as GL clamps it
  Set(RGL_LINE_STIPPLE_PATTERN, {double(p_pattern)});
}

void Model::LineWidth(float p_width) {
  if (!(p_width > 0))
    return Complain("LineWidth: not above 0");
  Set(RGL_LINE_WIDTH, {p_width});
}

namespace {

constexpr std::size_t MostGroups = 16;

bool Saves(GlBitfield p_mask, bool p_client, std::uint64_t p_key) {
  const StateVariable* const variable = FindStateVariable(static_cast<GlEnum>(p_key));
  return variable != nullptr && variable->client == p_client && (variable->groups & p_mask) != 0;
}

} // namespace

void Model::Push(std::vector<AttributeGroup>& p_stack, GlBitfield p_mask, bool p_client) {
  if (p_stack.size() >= MostGroups)
    return Complain("PushAttrib: more than " + std::to_string(MostGroups) + " groups");
  AttributeGroup group;
  group.mask = p_mask;
  for (const auto& [key, values] : _context.variables)
    if (Saves(p_mask, p_client, key))
      group.variables[key] = values;
  if (p_client && (p_mask & RGL_CLIENT_VERTEX_ARRAY_BIT) != 0)
    group.arrays = _arrays;
  p_stack.push_back(std::move(group));
}

void Model::Pop(std::vector<AttributeGroup>& p_stack, const std::string& p_call) {
  if (p_stack.empty())
    return Complain(p_call + ": nothing was pushed");
  const AttributeGroup group = std::move(p_stack.back());
  p_stack.pop_back();
  const bool client = &p_stack == &_clientStack;
  // Variables that were not stored at the push had their initial values then.
  for (auto i = _context.variables.begin(); i != _context.variables.end();)
    i = Saves(group.mask, client, i->first) ? _context.variables.erase(i) : std::next(i);
  _context.variables.insert(group.variables.begin(), group.variables.end());
  if (client && (group.mask & RGL_CLIENT_VERTEX_ARRAY_BIT) != 0)
    _arrays = group.arrays;
}

// Queries

GlEnum Model::GetError() {
  if (errors.empty())
    return RGL_NO_ERROR;
  const GlEnum error = errors.front();
  errors.pop_front();
  return error;
}

const unsigned char* Model::GetString(GlEnum p_name) {
  static const std::string Renderer = "Recording";
  const std::string& text = p_name == RGL_VERSION ? version : p_name == RGL_EXTENSIONS ? extensions : Renderer;
  return reinterpret_cast<const unsigned char*>(text.c_str());
}

std::optional<Model::Values> Model::Query(GlEnum p_name) const {
  const auto matrix = [this](GlEnum p_mode) {
    const Matrix& top = _context.matrices.Top(p_mode);
    return Values(top.begin(), top.end());
  };
  switch (p_name) {
  case RGL_MODELVIEW_MATRIX:
    return matrix(RGL_MODELVIEW);
  case RGL_PROJECTION_MATRIX:
    return matrix(RGL_PROJECTION);
  case RGL_TEXTURE_MATRIX:
    return matrix(RGL_TEXTURE);
  case RGL_MODELVIEW_STACK_DEPTH:
    return Values{double(_context.matrices.Depth(RGL_MODELVIEW))};
  case RGL_PROJECTION_STACK_DEPTH:
    return Values{double(_context.matrices.Depth(RGL_PROJECTION))};
  case RGL_ATTRIB_STACK_DEPTH:
    return Values{double(_context.attributeStack.size())};
  case RGL_CLIENT_ATTRIB_STACK_DEPTH:
    return Values{double(_clientStack.size())};
  case RGL_LIST_INDEX:
    return Values{double(_list)};
  default:
    break;
  }
  if (const auto answer = answers.find(p_name); answer != answers.end())
    return Values(answer->second.begin(), answer->second.end());
  if (const auto set = _context.variables.find(KeyOf(p_name)); set != _context.variables.end())
    return set->second;
  if (const StateVariable* const variable = FindStateVariable(p_name))
    return Values(variable->initial.begin(), variable->initial.begin() + static_cast<std::ptrdiff_t>(variable->count));
  return std::nullopt;
}

template <class T>
void Model::Get(GlEnum p_name, T* p_values) {
  const std::optional<Values> values = Query(p_name);
  if (!values)
    return Complain("query: the recorder has no value for " + Name(p_name));
  std::transform(values->begin(), values->end(), p_values, [](double p_value) { return static_cast<T>(p_value); });
}
template void Model::Get(GlEnum, int*);
template void Model::Get(GlEnum, float*);
template void Model::Get(GlEnum, double*);

// Display lists

unsigned int Model::GenLists(int p_count) {
  if (p_count < 1)
    return 0;
  const unsigned int first = NewName("display list");
  for (int i = 1; i < p_count; ++i)
    NewName("display list");
  return first;
}

void Model::DeleteLists(unsigned int p_name, int p_count) {
  for (int i = 0; i < p_count; ++i)
    Remove("DeleteLists", "display list", p_name + static_cast<unsigned int>(i));
}

void Model::NewList(unsigned int p_name, GlEnum p_mode) {
  if (_list != 0)
    return Complain("NewList: a list is being compiled already");
  if (!Need("NewList", "display list", p_name))
    return;
  _list = p_name;
  if (p_mode == RGL_COMPILE)
    _beforeList = _context;
}

void Model::EndList() {
  if (_list == 0)
    return Complain("EndList: without NewList");
  if (_primitive)
    Complain("EndList: Begin without End in the list");
  _primitive.reset();
  if (_beforeList) {
    if (_context.attributeStack.size() != _beforeList->attributeStack.size())
      Complain("EndList: PushAttrib and PopAttrib are not balanced in the list");
    for (const GlEnum mode : {RGL_MODELVIEW, RGL_PROJECTION, RGL_TEXTURE})
      if (_context.matrices.Depth(mode) != _beforeList->matrices.Depth(mode))
        Complain("EndList: PushMatrix and PopMatrix are not balanced in the list");
    // Client state changes at once, not with the list.
    for (const auto& [key, values] : _context.variables)
      if (const StateVariable* const variable = FindStateVariable(static_cast<GlEnum>(key));
          variable != nullptr && variable->client)
        _beforeList->variables[key] = values;
    _context = std::move(*_beforeList);
    _beforeList.reset();
  }
  _list = 0;
}

void Model::CallList(unsigned int p_name) {
  if (p_name == _list && _list != 0)
    Complain("CallList: the list is being compiled");
  Need("CallList", "display list", p_name);
}

// Quadrics

GlQuadric* Model::NewQuadric() {
  _quadricAddresses.push_back(0);
  auto* const quadric = reinterpret_cast<GlQuadric*>(&_quadricAddresses.back());
  quadricNumbers[quadric] = static_cast<int>(_quadricAddresses.size());
  _quadrics[quadric] = true;
  return quadric;
}

bool Model::NeedQuadric(const std::string& p_call, const GlQuadric* p_quadric) {
  const auto found = _quadrics.find(p_quadric);
  if (found != _quadrics.end() && found->second)
    return true;
  Complain(p_call + ": no such quadric");
  return false;
}

void Model::DeleteQuadric(GlQuadric* p_quadric) {
  if (NeedQuadric("DeleteQuadric", p_quadric))
    _quadrics[p_quadric] = false;
}

// At the end

std::vector<std::string> Model::Leftovers() const {
  std::vector<std::string> texts;
  if (_primitive)
    texts.push_back("Begin(" + EnumText(*_primitive, false, "p_mode") + ") without End");
  if (_list != 0)
    texts.push_back("NewList(" + std::to_string(_list) + ") without EndList");
  for (const auto& [mode, count] : _context.matrices.Unpopped())
    texts.push_back("PushMatrix without PopMatrix: " + std::to_string(count) + " of " + Name(mode));
  if (!_context.attributeStack.empty())
    texts.push_back("PushAttrib without PopAttrib: " + std::to_string(_context.attributeStack.size()));
  if (!_clientStack.empty())
    texts.push_back("PushClientAttrib without PopClientAttrib: " + std::to_string(_clientStack.size()));
  for (const auto& [kind, names] : _names)
    for (const unsigned int name : names)
      texts.push_back(kind + " " + std::to_string(name) + " was never deleted");
  for (const auto& [quadric, exists] : _quadrics)
    if (exists)
      texts.push_back("quadric" + std::to_string(quadricNumbers.at(quadric)) + " was never deleted");
  return texts;
}

} // namespace Vek::Chart::Testing::Recording

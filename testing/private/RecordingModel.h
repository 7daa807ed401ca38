#pragma once

#include "platform/ogl/GlDefaults.h"
#include "testing/RecordingGl.h"
#include "testing/private/RecordingMatrices.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace Vek::Chart::Testing::Recording {

/// The state of a context that `RecordingGl` simulates. Its functions hide those of GlDefaults; all others have no
/// effect.
class Model : public GlDefaults {
public:
  // Immediate mode.
  void Begin(GlEnum p_mode);
  void End();
  void Vertex2i(int, int) { CountVertex("Vertex2i"); }
  void Vertex3d(double, double, double) { CountVertex("Vertex3d"); }
  void Color4d(double p_red, double p_green, double p_blue, double p_alpha);
  void Normal3d(double p_x, double p_y, double p_z);

  // Matrices.
  void MatrixMode(GlEnum p_mode);
  void LoadIdentity() { _context.matrices.Load(CurrentMode(), IdentityMatrix()); }
  void LoadMatrixd(const double* p_elements) { _context.matrices.Load(CurrentMode(), MatrixOf(p_elements)); }
  void MultMatrixd(const double* p_elements) { Multiply(MatrixOf(p_elements)); }
  void PushMatrix();
  void PopMatrix();
  void Translated(double p_x, double p_y, double p_z) { Multiply(TranslationMatrix(p_x, p_y, p_z)); }
  void Scaled(double p_x, double p_y, double p_z) { Multiply(ScalingMatrix(p_x, p_y, p_z)); }
  void Rotated(double p_degrees, double p_x, double p_y, double p_z) {
    Multiply(RotationMatrix(p_degrees, p_x, p_y, p_z));
  }
  void Ortho(double p_left, double p_right, double p_bottom, double p_top, double p_near, double p_far);

  // State.
  void Enable(GlEnum p_capability) { Set(p_capability, {1}); }
  void Disable(GlEnum p_capability) { Set(p_capability, {0}); }
  GlBoolean IsEnabled(GlEnum p_capability) { return One(p_capability) != 0 ? 1 : 0; }
  void PushAttrib(GlBitfield p_mask) { Push(_context.attributeStack, p_mask, false); }
  void PopAttrib() { Pop(_context.attributeStack, "PopAttrib"); }
  void PushClientAttrib(GlBitfield p_mask) { Push(_clientStack, p_mask, true); }
  void PopClientAttrib() { Pop(_clientStack, "PopClientAttrib"); }
  void Viewport(int p_x, int p_y, int p_width, int p_height) {
    Set(RGL_VIEWPORT, {double(p_x), double(p_y), double(p_width), double(p_height)});
  }
  void Scissor(int p_x, int p_y, int p_width, int p_height) {
    Set(RGL_SCISSOR_BOX, {double(p_x), double(p_y), double(p_width), double(p_height)});
  }
  void ClearColor(float p_red, float p_green, float p_blue, float p_alpha);
  void ColorMask(GlBoolean p_red, GlBoolean p_green, GlBoolean p_blue, GlBoolean p_alpha);
  void DepthFunc(GlEnum p_function) { Set(RGL_DEPTH_FUNC, {double(p_function)}); }
  void DepthMask(GlBoolean p_write) { Set(RGL_DEPTH_WRITEMASK, {double(p_write)}); }
  void BlendFunc(GlEnum p_source, GlEnum p_destination);
  void BlendFuncSeparate(GlEnum p_source, GlEnum p_destination, GlEnum p_sourceAlpha, GlEnum p_destinationAlpha);
  void CullFace(GlEnum p_face) { Set(RGL_CULL_FACE_MODE, {double(p_face)}); }
  void FrontFace(GlEnum p_winding) { Set(RGL_FRONT_FACE, {double(p_winding)}); }
  void ShadeModel(GlEnum p_model) { Set(RGL_SHADE_MODEL, {double(p_model)}); }
  void PolygonMode(GlEnum p_face, GlEnum p_mode);
  void LineStipple(int p_factor, unsigned short p_pattern);
  void LineWidth(float p_width);
  void PointSize(float p_size) { Set(RGL_POINT_SIZE, {p_size}); }

  // Queries.
  GlEnum GetError();
  const unsigned char* GetString(GlEnum p_name);
  void GetIntegerv(GlEnum p_name, int* p_values) { Get(p_name, p_values); }
  void GetFloatv(GlEnum p_name, float* p_values) { Get(p_name, p_values); }
  void GetDoublev(GlEnum p_name, double* p_values) { Get(p_name, p_values); }

  // Textures and pixels.
  void ActiveTexture(GlEnum p_unit) { Set(RGL_ACTIVE_TEXTURE, {double(p_unit)}); }
  void ClientActiveTexture(GlEnum p_unit) { Set(RGL_CLIENT_ACTIVE_TEXTURE, {double(p_unit)}); }
  void GenTextures(int p_count, unsigned int* p_names) { Generate("texture", p_count, p_names); }
  void DeleteTextures(int p_count, const unsigned int* p_names);
  void BindTexture(GlEnum p_target, unsigned int p_name);
  void TexParameteri(GlEnum p_target, GlEnum p_name, int p_value);
  void PixelStorei(GlEnum p_name, int p_value) { Set(p_name, {double(p_value)}); }
  void PixelTransferf(GlEnum p_name, float p_value) { Set(p_name, {double(p_value)}); }
  void TexImage2D(GlEnum p_target, int p_level, int p_internalFormat, int p_width, int p_height, int p_border,
                  GlEnum p_format, GlEnum p_type, const void* p_pixels);
  void TexImage3D(GlEnum p_target, int p_level, int p_internalFormat, int p_width, int p_height, int p_depth,
                  int p_border, GlEnum p_format, GlEnum p_type, const void* p_pixels);
  void TexBuffer(GlEnum p_target, GlEnum p_internalFormat, unsigned int p_buffer);
  void GetTexLevelParameteriv(GlEnum p_target, int p_level, GlEnum p_name, int* p_values);
  void GenerateMipmap(GlEnum p_target);
  void ReadPixels(int p_x, int p_y, int p_width, int p_height, GlEnum p_format, GlEnum p_type, void* p_pixels);

  // Display lists.
  unsigned int GenLists(int p_count);
  void DeleteLists(unsigned int p_name, int p_count);
  void NewList(unsigned int p_name, GlEnum p_mode);
  void EndList();
  void CallList(unsigned int p_name);

  // Buffers and vertex arrays.
  void GenBuffers(int p_count, unsigned int* p_names) { Generate("buffer", p_count, p_names); }
  void DeleteBuffers(int p_count, const unsigned int* p_names);
  void BindBuffer(GlEnum p_target, unsigned int p_name);
  void BufferData(GlEnum p_target, GlSize p_size, const void* p_data, GlEnum p_usage);
  void* MapBufferRange(GlEnum p_target, GlSize p_offset, GlSize p_length, GlBitfield p_access);
  GlBoolean UnmapBuffer(GlEnum p_target);
  void EnableClientState(GlEnum p_array) { _arrays[p_array].enabled = true; }
  void DisableClientState(GlEnum p_array) { _arrays[p_array].enabled = false; }
  void VertexPointer(int p_size, GlEnum p_type, int p_stride, const void* p_pointer);
  void NormalPointer(GlEnum p_type, int p_stride, const void* p_pointer);
  void ColorPointer(int p_size, GlEnum p_type, int p_stride, const void* p_pointer);
  void TexCoordPointer(int p_size, GlEnum p_type, int p_stride, const void* p_pointer);
  void EnableVertexAttribArray(unsigned int p_index) { _arrays[p_index].enabled = true; }
  void DisableVertexAttribArray(unsigned int p_index) { _arrays[p_index].enabled = false; }
  void VertexAttribPointer(unsigned int p_index, int p_size, GlEnum p_type, GlBoolean p_normalized, int p_stride,
                           const void* p_pointer);
  void VertexAttribDivisor(unsigned int p_index, unsigned int p_divisor) { _arrays[p_index].divisor = p_divisor; }
  void DrawArrays(GlEnum p_mode, int p_first, int p_count) { Draw("DrawArrays", p_mode, p_first, p_count, 1); }
  void DrawElements(GlEnum p_mode, int p_count, GlEnum p_type, const void* p_indices);
  void DrawArraysInstanced(GlEnum p_mode, int p_first, int p_count, int p_instances);
  void DrawElementsInstanced(GlEnum p_mode, int p_count, GlEnum p_type, const void* p_indices, int p_instances);

  // Frame buffers.
  void GenFramebuffers(int p_count, unsigned int* p_names) { Generate("frame buffer", p_count, p_names); }
  void DeleteFramebuffers(int p_count, const unsigned int* p_names);
  void BindFramebuffer(GlEnum p_target, unsigned int p_name);
  void FramebufferTexture2D(GlEnum p_target, GlEnum p_attachment, GlEnum, unsigned int p_name, int p_level);
  void FramebufferRenderbuffer(GlEnum p_target, GlEnum p_attachment, GlEnum, unsigned int p_name);
  GlEnum CheckFramebufferStatus(GlEnum p_target);
  void GenRenderbuffers(int p_count, unsigned int* p_names) { Generate("renderbuffer", p_count, p_names); }
  void DeleteRenderbuffers(int p_count, const unsigned int* p_names);
  void BindRenderbuffer(GlEnum p_target, unsigned int p_name);

  // Shaders.
  unsigned int CreateShader(GlEnum p_type);
  void DeleteShader(unsigned int p_name);
  void ShaderSource(unsigned int p_name, int p_count, const char* const* p_texts, const int* p_lengths);
  void CompileShader(unsigned int p_name);
  void GetShaderiv(unsigned int p_name, GlEnum p_what, int* p_values);
  void GetShaderInfoLog(unsigned int p_name, int p_room, int* p_length, char* p_text);
  unsigned int CreateProgram();
  void DeleteProgram(unsigned int p_name);
  void AttachShader(unsigned int p_program, unsigned int p_shader);
  void LinkProgram(unsigned int p_name);
  void GetProgramiv(unsigned int p_name, GlEnum p_what, int* p_values);
  void GetProgramInfoLog(unsigned int p_name, int p_room, int* p_length, char* p_text);
  void UseProgram(unsigned int p_name);
  int GetUniformLocation(unsigned int p_program, const char* p_uniform);

  // Quadrics.
  GlQuadric* NewQuadric();
  void DeleteQuadric(GlQuadric* p_quadric);
  void QuadricDrawStyle(GlQuadric* p_quadric, GlEnum) { NeedQuadric("QuadricDrawStyle", p_quadric); }
  void QuadricNormals(GlQuadric* p_quadric, GlEnum) { NeedQuadric("QuadricNormals", p_quadric); }
  void Cylinder(GlQuadric* p_quadric, double, double, double, int, int) { NeedQuadric("Cylinder", p_quadric); }
  void Disk(GlQuadric* p_quadric, double, double, int, int) { NeedQuadric("Disk", p_quadric); }
  void PartialDisk(GlQuadric* p_quadric, double, double, int, int, double, double) {
    NeedQuadric("PartialDisk", p_quadric);
  }
  void Sphere(GlQuadric* p_quadric, double, int, int) { NeedQuadric("Sphere", p_quadric); }

  // For the recorder.
  /// Complains about a function that GL does not allow between Begin and End.
  void BeforeCall(const std::string& p_name);
  void Complain(const std::string& p_text) { complaints.push_back(p_text); }
  /// Objects, pairs and groups that are still open.
  std::vector<std::string> Leftovers() const;
  /// The first value of a state variable, 0 where it has none.
  double One(GlEnum p_name) const;
  unsigned int OpenList() const { return _list; }

  std::string version = "4.5.0 Recording";
  std::string extensions;
  std::string infoLog = "recorded log";
  std::map<GlEnum, std::vector<int>> answers;
  std::deque<GlEnum> errors;
  GlEnum framebufferStatus = RGL_FRAMEBUFFER_COMPLETE;
  std::map<std::pair<int, int>, std::array<unsigned char, 4>> pixels;
  std::vector<std::string> complaints;
  std::map<unsigned int, RecordingGl::TextureObject> textures;
  std::map<const GlQuadric*, int> quadricNumbers;

  struct BufferObject {
    std::vector<unsigned char> bytes;
    /// A block of its own for the mapped range, so that memory checkers see its ends.
    std::optional<std::vector<unsigned char>> mapping;
    std::size_t mappingOffset = 0;
    GlBitfield mappingAccess = 0;
  };
  std::map<unsigned int, BufferObject> buffers;

private:
  using Values = std::vector<double>;
  /// State variables by name; what exists once per texture unit has the unit's number in the upper half.
  using Key = std::uint64_t;
  using Variables = std::map<Key, Values>;
  struct Array {
    bool enabled = false;
    int size = 4;
    GlEnum type = RGL_FLOAT;
    int stride = 0;
    const void* pointer = nullptr;
    unsigned int buffer = 0;
    unsigned int divisor = 0;
  };
  /// Client arrays by GL's token, generic attributes by index.
  using ArrayMap = std::map<unsigned int, Array>;
  struct AttributeGroup {
    GlBitfield mask = 0;
    Variables variables;
    ArrayMap arrays;
  };
  /// The state that must not change while a display list is compiled.
  struct Context {
    Variables variables;
    MatrixStacks matrices;
    std::vector<AttributeGroup> attributeStack;
  };

  Key KeyOf(GlEnum p_name) const;
  void Set(GlEnum p_name, Values p_values) { _context.variables[KeyOf(p_name)] = std::move(p_values); }
  template <class T>
  void Get(GlEnum p_name, T* p_values);
  std::optional<Values> Query(GlEnum p_name) const;
  void Push(std::vector<AttributeGroup>& p_stack, GlBitfield p_mask, bool p_client);
  void Pop(std::vector<AttributeGroup>& p_stack, const std::string& p_call);

  void CountVertex(const std::string& p_call);
  GlEnum CurrentMode() const { return static_cast<GlEnum>(One(RGL_MATRIX_MODE)); }
  void Multiply(const Matrix& p_right) { _context.matrices.Multiply(CurrentMode(), p_right); }

  // Objects: the existing names of each kind.
  void Generate(const std::string& p_kind, int p_count, unsigned int* p_names);
  unsigned int NewName(const std::string& p_kind);
  bool Exists(const std::string& p_kind, unsigned int p_name) const;
  /// Complains unless the name exists; `p_call` is the function that uses it.
  bool Need(const std::string& p_call, const std::string& p_kind, unsigned int p_name);
  bool Remove(const std::string& p_call, const std::string& p_kind, unsigned int p_name);
  void Unbind(GlEnum p_binding, unsigned int p_name);
  bool NeedQuadric(const std::string& p_call, const GlQuadric* p_quadric);
  std::map<std::string, std::set<unsigned int>> _names;
  std::map<std::string, unsigned int> _made; // the number of each kind so far

  // Pixels.
  /// The memory of one image, in client memory or in the bound pixel buffer.
  struct PixelLayout {
    std::size_t first = 0;
    std::size_t rowBytes = 0;
    std::size_t rowStride = 0;
    std::size_t imageStride = 0;
    std::size_t end = 0;
  };
  std::optional<PixelLayout> Layout(const std::string& p_call, bool p_unpack, int p_width, int p_height, int p_depth,
                                    GlEnum p_format, GlEnum p_type);
  void TexImage(const std::string& p_call, GlEnum p_target, int p_level, RecordingGl::TextureLevel p_image,
                int p_border, const void* p_pixels);
  RecordingGl::TextureObject* BoundTexture(const std::string& p_call, GlEnum p_target);
  /// The first byte of a pixel transfer, in client memory or in the bound pixel buffer; null if the buffer is too
  /// small.
  unsigned char* PixelMemory(const std::string& p_call, GlEnum p_binding, const void* p_pointer, std::size_t p_end);

  // Buffers.
  BufferObject* BoundBuffer(const std::string& p_call, GlEnum p_target);
  BufferObject* BoundRange(const std::string& p_call, GlEnum p_target, GlSize p_offset, GlSize p_size);
  void SetArray(unsigned int p_array, int p_size, GlEnum p_type, int p_stride, const void* p_pointer);
  void Draw(const std::string& p_call, GlEnum p_mode, long long p_first, long long p_count, int p_instances);
  void DrawIndexed(const std::string& p_call, GlEnum p_mode, int p_count, GlEnum p_type, const void* p_indices,
                   int p_instances);
  void CheckArrayEnds(const std::string& p_call, long long p_vertices, long long p_instances);
  void Attach(const std::string& p_call, GlEnum p_target, GlEnum p_attachment, const std::string& p_kind,
              unsigned int p_name);
  void InfoLog(int p_room, int* p_length, char* p_text) const;
  void Status(bool p_done, GlEnum p_statusName, GlEnum p_what, int* p_values) const;

  Context _context;
  std::vector<AttributeGroup> _clientStack;
  ArrayMap _arrays;
  std::optional<GlEnum> _primitive; // of an open Begin
  std::size_t _vertices = 0;        // since Begin
  unsigned int _list = 0;           // being compiled
  std::optional<Context> _beforeList;
  std::set<unsigned int> _compiled; // shaders
  std::set<unsigned int> _linked;
  std::map<std::pair<unsigned int, std::string>, int> _uniforms;
  std::map<const GlQuadric*, bool> _quadrics; // true until they are deleted
  std::deque<char> _quadricAddresses;
};

/// Bytes of one scalar of a GL type, 0 for unknown ones.
std::size_t ScalarBytes(GlEnum p_type);
/// Bytes of one pixel, 0 for an unknown combination.
std::size_t PixelBytes(GlEnum p_format, GlEnum p_type);

} // namespace Vek::Chart::Testing::Recording

#pragma once

#include "platform/Export.h"
#include "platform/ogl/Rgl.h"
#include "platform/utility/Scope.h"

#include <boost/shared_ptr.hpp>

#include <array>
#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace Vek::Chart::Ogl {

/// A GL without a device, for tests: it writes every call down as one line of text, keeps the state that calls can ask
/// for, and complains about misuse that a driver would pass over.
///
/// A line is the name of the function without "gl" ("glu") and the arguments as they were when it returned:
/// - enumerants and bit fields by name ("GL_TRIANGLES", "GL_ENABLE_BIT|GL_LINE_BIT", "GLU_FILL"), unknown ones in hex;
/// - numbers in the shortest form that reads back the same ("0.1", "1", "-0"), stipple patterns in hex ("0xAAAA");
/// - matrices, lights, materials, uniforms and lists of object names by content ("[1 0 0 1]"), a polygon stipple as
///   "mask" and a hash of its 128 bytes, quadrics as "quadric1", texts in quotes;
/// - all other pointers as "ptr" or "null".
///
/// Names of objects are counted from 1001 for textures, 2001 for display lists, 3001 for buffers, 4001 for frame
/// buffers, 5001 for renderbuffers, 6001 for shaders and 7001 for programs, so that a mix-up is noticed.
///
/// While a list is compiled with GL_COMPILE, calls change no state, as in GL; CallList changes none either. GetError
/// answers only with what was queued. The recorder is used on one thread; it may end before objects that were made with
/// it (that is a leak, and complained about), whose deletion is then reported and does nothing.
///
/// \snippet HostSnippets.cpp RecordingGl
/// \ingroup host
class VEK_PLATFORM_API RecordingGl {
public:
  RecordingGl();
  ~RecordingGl();
  RecordingGl(const RecordingGl&) = delete;
  RecordingGl& operator=(const RecordingGl&) = delete;

  /// Scopes opened on it make this recorder the one that is called. It stays so after the scope, for objects that are
  /// released then, unless another recorder was called before.
  const Utility::Unscoped<Rgl>& Handle() const;

  /// All calls so far, in order.
  std::vector<std::string> Lines() const;
  /// The lines of the functions with these names only.
  std::vector<std::string> LinesOf(const std::vector<std::string>& p_names) const;
  /// The lines of all functions but these.
  std::vector<std::string> LinesWithout(const std::vector<std::string>& p_names) const;
  /// What was recorded in a display list.
  std::vector<std::string> ListLines(unsigned int p_list) const;
  /// Forgets the lines so far; the state stays.
  void Clear();

  /// All misuse so far, and what is not in order if everything ended now: objects that were not deleted, an open Begin,
  /// list, matrix or attribute group.
  std::vector<std::string> Complaints() const;
  /// The misuse so far, which is then forgotten.
  std::vector<std::string> TakeComplaints();

  // What the device answers.

  /// What GetString answers for GL_VERSION.
  void SetVersion(const std::string& p_version);
  /// A list separated by blanks; empty unless set.
  void SetExtensions(const std::string& p_extensions);
  /// What GetIntegerv, GetFloatv and GetDoublev answer for a name, instead of the state.
  void SetInteger(GlEnum p_name, const std::vector<int>& p_values);
  /// What CheckFramebufferStatus answers.
  void SetFramebufferStatus(GlEnum p_status);
  /// The colour that ReadPixels finds at a pixel; all others are 0.
  void SetPixel(int p_x, int p_y, const std::array<unsigned char, 4>& p_rgba);
  /// The text of all shader and program logs.
  void SetInfoLog(const std::string& p_text);

  // Failures. A call that fails is logged but does nothing and returns 0 or null (object names: 0); unless it is one of
  // GLU's, GetError then says GL_OUT_OF_MEMORY.
  /// Lets a call fail, counted from 1 over all calls from now on.
  void FailCall(std::size_t p_number);
  /// Lets a call of that name fail, counted from 1 over its calls from now on.
  void Fail(const std::string& p_name, std::size_t p_number = 1);
  /// What GetError answers next, after what is queued already.
  void QueueError(GlEnum p_error);

  // What the objects hold.

  /// One level of a texture, as it was uploaded.
  struct TextureLevel {
    GlEnum internalFormat = 0;         ///< what was asked for
    int width = 0;                     ///< texels along s
    int height = 0;                    ///< texels along t; 1 for a 1-D texture
    int depth = 1;                     ///< texels along r
    GlEnum format = 0;                 ///< of the source
    GlEnum type = 0;                   ///< of the source's components
    std::vector<unsigned char> pixels; ///< rows without padding; empty when no source was given
  };
  /// What a texture holds.
  struct TextureObject {
    GlEnum target = 0;                  ///< what it was bound as first
    std::map<int, TextureLevel> levels; ///< by number
    std::map<GlEnum, int> parameters;   ///< those that were set
  };
  /// Null when there is no such texture; valid until it is deleted.
  const TextureObject* FindTexture(unsigned int p_name) const;
  /// The bytes of a buffer; empty when there is no such buffer.
  std::vector<unsigned char> BufferBytes(unsigned int p_name) const;
  /// The last polygon stipple.
  const std::array<unsigned char, 128>& PolygonStippleMask() const;
  /// The texture environment of the active unit, as TexEnvi set it.
  int TextureEnvironment(GlEnum p_name) const;

  struct State;

private:
  boost::shared_ptr<State> _state;
  Utility::Unscoped<Rgl> _handle;
};

} // namespace Vek::Chart::Ogl

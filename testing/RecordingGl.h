#pragma once

#include "platform/ogl/Rgl.h"
#include "platform/utility/Scope.h"

#include <boost/shared_ptr.hpp>

#include <array>
#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace Vek::Chart::Testing {

/// A GL without a device, for tests. It records every call as one line, keeps the state that calls can query, and lists
/// misuse that a driver would accept.
///
/// A line is the name of the function without "gl" ("glu") and its arguments after the call:
/// - enumerants and bit fields by name ("GL_TRIANGLES", "GL_ENABLE_BIT|GL_LINE_BIT", "GLU_FILL"), unknown ones in hex;
/// - numbers in the shortest form that reads back the same ("0.1", "1", "-0"), stipple patterns in hex ("0xAAAA");
/// - matrices, lights, materials, uniforms and lists of object names by content ("[1 0 0 1]"), a polygon stipple as
///   "mask" and a hash of its 128 bytes, quadrics as "quadric1", strings in quotes;
/// - all other pointers as "ptr" or "null".
///
/// Names of objects are counted from 1001 for textures, 2001 for display lists, 3001 for buffers, 4001 for frame
/// buffers, 5001 for renderbuffers, 6001 for shaders and 7001 for programs, so that a name of the wrong kind is
/// noticed.
///
/// While a list is compiled with GL_COMPILE, calls change no state, as in GL; CallList never changes any. GetError
/// returns queued errors and those of failing calls only. Functions without simulated state (`GetTexImage`,
/// `BufferSubData`, …) are recorded and do nothing. A recorder is used on one thread. Objects may outlive it: they are
/// complaints, and their deletion is reported and does nothing.
///
/// \snippet HostSnippets.cpp RecordingGl
/// \ingroup testing
class RecordingGl {
public:
  RecordingGl();
  ~RecordingGl();
  RecordingGl(const RecordingGl&) = delete;
  RecordingGl& operator=(const RecordingGl&) = delete;

  /// Scopes opened on it direct the thread's calls to this recorder, also after the scope, for objects that are
  /// released then. If another recorder received the calls before, it receives them again after the scope.
  const Utility::Unscoped<Rgl>& Handle() const;

  /// All calls so far, in order.
  std::vector<std::string> Lines() const;
  /// The lines of the functions with these names only.
  std::vector<std::string> LinesOf(const std::vector<std::string>& p_names) const;
  /// The lines of all functions but these.
  std::vector<std::string> LinesWithout(const std::vector<std::string>& p_names) const;
  /// What was recorded in a display list.
  std::vector<std::string> ListLines(unsigned int p_list) const;
  /// Removes the lines so far and keeps the state.
  void Clear();

  /// All misuse so far, followed by what is still open: objects that were not deleted, an open Begin or list, pushed
  /// matrices and attribute groups.
  std::vector<std::string> Complaints() const;
  /// Returns and removes the misuse so far.
  std::vector<std::string> TakeComplaints();

  // Answers of the device.

  /// Sets the answer of GetString for GL_VERSION.
  void SetVersion(const std::string& p_version);
  /// Sets the answer of GetString for GL_EXTENSIONS: names separated by blanks, empty at first.
  void SetExtensions(const std::string& p_extensions);
  /// Sets the answer of GetIntegerv, GetFloatv and GetDoublev for a name; it replaces the state.
  void SetInteger(Ogl::GlEnum p_name, const std::vector<int>& p_values);
  /// Sets the answer of CheckFramebufferStatus.
  void SetFramebufferStatus(Ogl::GlEnum p_status);
  /// Sets the colour that ReadPixels reads at a pixel; all others are 0.
  void SetPixel(int p_x, int p_y, const std::array<unsigned char, 4>& p_rgba);
  /// Sets the log of all shaders and programs.
  void SetInfoLog(const std::string& p_text);

  // Failures. A failing call is recorded, does nothing and returns 0 or null; object names are 0. It queues
  // GL_OUT_OF_MEMORY for GetError unless it is one of GLU.
  /// Makes a call fail, counted from 1 over all calls from now on.
  void FailCall(std::size_t p_number);
  /// Makes a call of that name fail, counted from 1 over its calls from now on.
  void Fail(const std::string& p_name, std::size_t p_number = 1);
  /// Queues an error for GetError.
  void QueueError(Ogl::GlEnum p_error);

  // Contents of objects.

  /// One level of a texture, as it was uploaded.
  struct TextureLevel {
    Ogl::GlEnum internalFormat = 0;    ///< as requested
    int width = 0;                     ///< texels along s
    int height = 0;                    ///< texels along t; 1 for a 1-D texture
    int depth = 1;                     ///< texels along r
    Ogl::GlEnum format = 0;            ///< of the source
    Ogl::GlEnum type = 0;              ///< of the source's components
    std::vector<unsigned char> pixels; ///< rows without padding; empty when no source was given
  };
  /// The contents of a texture.
  struct TextureObject {
    Ogl::GlEnum target = 0;                ///< of the first bind
    std::map<int, TextureLevel> levels;    ///< by number
    std::map<Ogl::GlEnum, int> parameters; ///< those that were set
  };
  /// Null if there is no such texture; valid until it is deleted.
  const TextureObject* FindTexture(unsigned int p_name) const;
  /// The bytes of a buffer; empty if there is no such buffer.
  std::vector<unsigned char> BufferBytes(unsigned int p_name) const;

private:
  struct State;
  boost::shared_ptr<State> _state;
  Utility::Unscoped<Rgl> _handle;
};

} // namespace Vek::Chart::Testing

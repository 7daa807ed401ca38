#pragma once

#include "library/Export.h"
#include "platform/utility/Threads.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <istream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace Vek::Chart::Library {

/// A polygon mesh with groups and materials in plain arrays: all of an OBJ file. ReadObjScene reads one.
///
/// Arrays of vertices have one element a vertex or are empty. The vertices are the positions of the file in its order,
/// used or not, and then the copies: a position with several normals or texture coordinates has one vertex for each
/// combination that occurs.
///
/// \snippet FileSnippets.cpp ReadObjScene
/// \ingroup files
struct VEK_LIBRARY_API ObjScene {
  /// What three, two or one indices are.
  enum Primitive {
    Triangles, ///< three indices each
    Lines,     ///< two indices each
    Points,    ///< one index each
  };
  /// Consecutive indices of the same kind, name and material.
  struct Group {
    std::string name;                ///< of the last `g` line; at most 255 bytes
    std::string object;              ///< of the last `o` line; at most 255 bytes
    int material = -1;               ///< in the list of materials; -1 for none
    Primitive primitive = Triangles; ///< triangles are counter-clockwise if the faces are
    std::size_t first = 0;           ///< in the list of indices
    std::size_t count = 0;           ///< of indices: a multiple of 3, 2 or 1
  };
  /// A material with the defaults of a file that leaves a line out. Colours are red, green and blue from 0 to 1.
  /// Textures are paths of files that exist; empty for none.
  struct Material {
    std::string name;                               ///< as in the file
    std::array<float, 3> ambient{0, 0, 0};          ///< `Ka`
    std::array<float, 3> diffuse{0.8f, 0.8f, 0.8f}; ///< `Kd`
    std::array<float, 3> specular{0, 0, 0};         ///< `Ks`
    std::array<float, 3> emission{0, 0, 0};         ///< `Ke`
    float shininess = 0;                            ///< `Ns`: the exponent of the specular term, 0 to 1000
    float opacity = 1;                              ///< `d`, or 1 - `Tr`
    std::string ambientTexture;                     ///< `map_Ka`
    std::string diffuseTexture;                     ///< `map_Kd`
    std::string specularTexture;                    ///< `map_Ks`
    std::string emissionTexture;                    ///< `map_Ke`
    std::string opacityTexture;                     ///< `map_d`
    std::string bumpTexture;                        ///< `map_Bump`, `bump` or `norm`
    /// An encoded image (PNG, JPEG) for diffuseTexture, from a format that has images in the file itself.
    std::vector<std::uint8_t> diffuseImage;
  };

  std::vector<float> positions;       ///< x, y, z
  std::vector<float> normals;         ///< x, y, z; only empty in a mesh without triangles
  std::vector<float> texCoords;       ///< u, v; (0, 0) is the bottom left of an image; 0 where a vertex has none
  std::vector<float> colors;          ///< red, green, blue, opacity, 0 to 1; white where a vertex has none
  std::vector<std::uint32_t> indices; ///< zero-based, all of them within the vertices
  std::vector<Group> groups;          ///< cover all indices, in the order of the file; none is empty
  std::vector<Material> materials;    ///< those of the material files, and those that only groups name
  /// What was left out, each with path and line, such as a material file that does not exist; at most 100, and the
  /// number of further ones.
  std::vector<std::string> warnings;
};

/// An OBJ file that cannot be read. The text is one line: "path: reason" or "path:line: expected …, got "…"".
/// \ingroup files
class VEK_LIBRARY_API ObjError : public std::runtime_error {
public:
  /// "path: reason".
  ObjError(const std::string& p_path, const std::string& p_reason);
  /// "path:line: expected …, got "…"". Lines count from 1; what was found is cut after 40 bytes.
  ObjError(const std::string& p_path, std::uint64_t p_line, const std::string& p_expected, std::string_view p_found);

  std::uint64_t Line() const { return _line; }              ///< from 1; 0 if the fault is in no line
  const std::string& Reason() const { return _reason; }     ///< the text behind the path, without a line
  const std::string& Expected() const { return _expected; } ///< empty without a line
  const std::string& Found() const { return _found; }       ///< empty without a line

private:
  std::uint64_t _line = 0;
  std::string _reason;
  std::string _expected;
  std::string _found;
};

/// Called now and then with the share of the file that was read, 0 to 1; returns false to cancel.
/// \ingroup files
using ObjProgress = std::function<bool(double p_share)>;

/// Reads a Wavefront OBJ file and its materials.
///
/// - Words are separated by any blanks and tabs; lines end in LF, CR LF or CR, and go on behind a backslash at their
///   end. Comments start with '#', also behind a statement. Lines have at most 64 MiB.
/// - `v` has a position, and behind it either one number, which is ignored, or a colour of three or four. Colours with
///   a component beyond 1 are taken to be 0 to 255, in the whole file. `vn` has a normal, `vt` one to three texture
///   coordinates, of which two are kept. Further numbers are ignored.
/// - `f` has three or more corners: a, a/b, a//c or a/b/c with position a, texture coordinate b and normal c, counted
///   from 1, or backwards from the last one with -1. TriangulatePolygon divides the face. `l` is a line through two
///   positions or more, `p` a list of points; their texture coordinates are not read. The positions
///   of a file without any of them are points.
/// - Corners without normal get one from ComputeNormals, shared by the faces around a position that have the same
///   smoothing group. With `s off` or `s 0`, a face has its own Newell normal. Faces in front of the first `s` are
///   smooth.
/// - `g`, `o` and `usemtl` with another name begin a group. `mtllib` names a file with materials, in the folder of the
///   file; of several materials of one name the first one counts. Paths may have backslashes; of an absolute path that
///   does not exist, the name is looked for in the folder as well.
///
/// Throws ObjError with path and line for a number or index that is none, an index of something that is not above it in
/// the file, too few numbers, and a line that is too long; without a line for a file that cannot be opened or read, is
/// in UTF-16 or binary, has no position, or is cancelled. Faces of less than three corners, curved surfaces, unknown
/// statements, and materials and textures that cannot be read are warnings; the rest is read. Memory stays below 16 MB
/// and 64 times the file; names of groups that would exceed that throw.
///
/// Of several faulty lines the first one is thrown. A stream that fails throws "reading failed", which may hide faults
/// in the last MiB of lines in front of the failure: how many of them are read before depends on the number of threads.
/// Cancelling takes effect between blocks of lines.
///
/// The scene, its warnings and other errors do not depend on the number of threads; files below 1 MiB start none.
///
/// \ingroup files
VEK_LIBRARY_API ObjScene ReadObjScene(const std::string& p_path, const ObjProgress& p_progress = {},
                                      Utility::Threads p_threads = {});
/// Likewise, from a stream; `p_name` takes the place of the path in messages and in the search for materials.
///
/// \ingroup files
VEK_LIBRARY_API ObjScene ReadObjScene(std::istream& p_stream, const std::string& p_name,
                                      const ObjProgress& p_progress = {}, Utility::Threads p_threads = {});

} // namespace Vek::Chart::Library

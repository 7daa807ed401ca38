#pragma once

#include "io/ReadMesh.h"
#include "io/private/Input.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace Vek::Chart::Io::Private {

inline bool IsBlank(char p_character) {
  return p_character == ' ' || (p_character >= '\t' && p_character <= '\r');
}

/// Whether words are equal, whatever their case.
bool IsSameWord(std::string_view p_a, std::string_view p_b);

/// The words of a text one by one, and where they are.
class Words {
public:
  /// The text and the name must outlive this.
  Words(std::string_view p_text, const std::string& p_name, std::size_t p_at = 0)
      : _text(p_text)
      , _name(p_name)
      , _at(p_at) {}

  /// The next word; empty at the end.
  std::string_view Next();
  /// The next word, without taking it.
  std::string_view Peek();
  /// Takes a word in any case. Throws FileError for another one.
  void Take(std::string_view p_word);
  /// The rest of the line of the last word, trimmed. Moves to the next line.
  std::string_view RestOfLine();
  /// The next word as a number. Throws FileError for another one.
  double Number();

  bool AtEnd() { return Peek().empty(); }
  std::size_t Position() const { return _at; }
  /// Throws FileError with the line of the last word, the expectation and the word.
  [[noreturn]] void Fail(const std::string& p_expected) const;

private:
  std::string_view _text;
  const std::string& _name;
  std::size_t _at;
  std::string_view _last;
};

/// Gives a mesh without normals those of its triangles.
void AddNormals(Mesh& p_mesh);

/// Gives each side of an edge vertices of its own where the triangles beside it differ by more than an angle, so that
/// AddNormals smooths only within the sides. Colours and texture coordinates are repeated.
void SplitCreases(Mesh& p_mesh, double p_degrees);

/// Readers of whole files in memory; see ReadMesh.
Mesh ReadPly(std::string_view p_file, const std::string& p_name, const Progress& p_progress);
Mesh ReadStl(std::string_view p_file, const std::string& p_name, const Progress& p_progress);
Mesh ReadGltf(std::string_view p_file, const std::string& p_name, const Progress& p_progress);
/// Whether a file starts as binary glTF or as JSON.
bool IsGltf(std::string_view p_start);
/// Whether a file is binary STL by its size, or text STL by its words.
bool IsBinaryStl(std::string_view p_file);
bool IsTextStl(std::string_view p_file);

} // namespace Vek::Chart::Io::Private

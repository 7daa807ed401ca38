#pragma once

#include "scene/private/InstanceSelection.h"
#include "scene/private/TubeLevels.h"

#include <boost/shared_ptr.hpp>

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace Vek::Chart::Scene::Private {

/// How the rings of a tube are made at its stations.
struct TubeSection {
  enum Kind : unsigned char {
    Facing, ///< the half that faces the eye, round in its fragments
    Closed, ///< all around, with caps
    Ribbon, ///< flat
    Screen, ///< of a width in pixels, facing the eye
  };
  Kind kind = Facing;
  unsigned int strips = 1;                                     ///< between two rings
  double mostPixels = std::numeric_limits<double>::infinity(); ///< the largest diameter

  unsigned int Vertices() const { return kind == Closed ? strips : strips + 1; }
};

/// The sections, those of a kind from the coarsest to the finest. Half tubes have a round outline at any number of
/// strips, and depths that are wrong by a pixel at most. The outline of closed ones is wrong by a fifth of a pixel.
constexpr std::array<TubeSection, 9> TubeSections{{{TubeSection::Facing, 1, 2.6},
                                                   {TubeSection::Facing, 2, 7},
                                                   {TubeSection::Facing, 4, 26},
                                                   {TubeSection::Closed, 4, 1.4},
                                                   {TubeSection::Closed, 6, 3},
                                                   {TubeSection::Closed, 12, 12},
                                                   {TubeSection::Closed, 24},
                                                   {TubeSection::Ribbon, 1},
                                                   {TubeSection::Screen, 1}}};

/// A vertex as shaders get it: the number of its station, lowest byte first, and a code.
using TubeVertex = std::array<std::uint8_t, 4>;
/// The bits of the code. The lowest five have the number of the vertex in its ring.
enum TubeCode : std::uint8_t { CodeOfCap = 32, CodeOfStart = 64, CodeOfCenter = 128 };

/// Which blocks of lines are drawn, with which section and which length of segments: those that the view frustum may
/// show, with errors below a fifth of a pixel, or more where there is no time.
class TubeSelection {
public:
  template <class T>
  using Shared = boost::shared_ptr<const T>;
  /// What decides.
  struct Input {
    Shared<TubeLevels> lines;
    Shared<std::vector<TubeLevels::ValueErrors>> values; ///< null if there are none
    double span = 1; ///< of values between the first and the last colour, or of their logarithms
    bool isLogarithmic = false;
    bool isFlat = false;          ///< ribbons
    bool isOnScreen = false;      ///< of a width in pixels
    bool isOpen = false;          ///< whether insides are seen
    std::size_t mostVertices = 0; ///< about; 0 for any number
    bool hasSamples = false;      ///< whether pixels have several samples
    Projection sizing;            ///< decides on levels
    Projection view;              ///< decides on what may be seen
  };
  /// The drawing of a section: a range of the indices.
  struct Range {
    std::size_t first = 0;
    std::size_t count = 0;
  };

  /// Chooses anew if the input changed; true if the choice changed.
  bool Update(Input p_input);
  /// What decided last.
  const Input& Last() const { return _input; }
  /// Every how many-th line is drawn.
  std::size_t Step() const { return _step; }
  /// Whether there is no time for errors below a fifth of a pixel, nor for several samples.
  bool IsShort() const { return _isShort; }

  std::size_t VertexCount() const { return _vertices; }
  std::size_t IndexCount() const { return _indices; }
  const std::array<Range, TubeSections.size()>& Ranges() const { return _ranges; }
  /// Writes what is drawn: VertexCount() vertices, and IndexCount() indices, three a triangle.
  void Write(TubeVertex* p_vertices, std::uint32_t* p_indices) const;

private:
  static constexpr std::uint8_t LeftOut = 255;
  struct Choice {
    std::uint8_t section = LeftOut, level = 0; ///< see TubeLevels::Steps

    friend bool operator==(const Choice& p_a, const Choice& p_b) {
      return p_a.section == p_b.section && p_a.level == p_b.level;
    }
  };
  struct Rules;

  void Choose(double p_coarseness);
  double Cost() const;
  void Count();
  std::size_t LineOf(std::size_t p_item) const;
  bool Overlaps(std::size_t p_block, bool p_isBefore) const;
  std::size_t RingsOf(std::size_t p_block) const;
  void WriteBlock(std::size_t p_block, TubeVertex* p_vertices, std::uint32_t* p_indices) const;
  void WriteCap(std::size_t p_cap, TubeVertex* p_vertices, std::uint32_t* p_indices) const;

  Input _input;
  bool _isShort = false;
  std::size_t _step = 1, _vertices = 0, _indices = 0;
  std::vector<Choice> _choices;                         ///< of the blocks, and then of the caps
  std::vector<std::uint32_t> _firstVertex, _firstIndex; ///< of each of them
  std::array<Range, TubeSections.size()> _ranges{};
};

} // namespace Vek::Chart::Scene::Private

#pragma once

#include <cstdint>

namespace Vek::Chart::Library {

/// What a `Texture` and a `VolumeTexture` apply at each bind: filters, wrapping and environment.
///
/// Settings are plain numbers. A number without an enumerator leaves that part of the GL state unchanged.
///
/// \snippet ColorSnippets.cpp TextureSettings
/// \ingroup colours
struct TextureSettings {
  /// How texels are sampled.
  enum Filter : std::uint32_t {
    Nearest = 0, ///< the texel whose centre is nearest
    Linear = 1,  ///< the four texels around, in a volume the eight, by distance
  };
  /// What is sampled outside [0, 1].
  enum Wrap : std::uint32_t {
    ClampToEdge = 0, ///< the texels at the edge
    Repeat = 1,      ///< the texture again
  };
  /// How the texture is combined with the incoming colour.
  enum Environment : std::uint32_t {
    Modulate = 0, ///< the product of both
    Decal = 1,    ///< the texture over the colour, by the texture's alpha
    Replace = 2,  ///< the texture alone
  };

  std::uint32_t minFilter = Linear;    ///< a Filter: where texels are smaller than pixels
  std::uint32_t magFilter = Linear;    ///< a Filter: where texels are larger than pixels
  std::uint32_t wrapS = ClampToEdge;   ///< a Wrap, along the texture coordinate s
  std::uint32_t wrapT = ClampToEdge;   ///< a Wrap, along t
  std::uint32_t environment = Replace; ///< an Environment
  /// Whether colours of 8 bits are stored as sRGB, so that sampling yields linear light. Read at the upload only;
  /// volumes other than those of four channels ignore it.
  bool sRgb = false;
};

} // namespace Vek::Chart::Library

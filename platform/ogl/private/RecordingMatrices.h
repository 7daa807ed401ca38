#pragma once

#include "platform/ogl/GlTypes.h"

#include <array>
#include <map>
#include <string>
#include <vector>

namespace Vek::Chart::Ogl::Recording {

using Matrix = std::array<double, 16>; ///< column by column, as GL has it

/// The matrix stacks of a context, in double precision. A value: a copy holds what the original held then.
///
/// Functions that change a stack take the mode that is current in GL; those that can fail answer with what is wrong, or
/// with an empty text.
class MatrixStacks {
public:
  /// The matrix that counts, the identity until something else was loaded.
  const Matrix& Top(GlEnum p_mode) const;
  std::size_t Depth(GlEnum p_mode) const;
  /// How many matrices too many each mode has; modes that have none are left out.
  std::map<GlEnum, std::size_t> Unpopped() const;

  void Load(GlEnum p_mode, const Matrix& p_matrix);
  void Multiply(GlEnum p_mode, const Matrix& p_right);
  std::string Push(GlEnum p_mode);
  std::string Pop(GlEnum p_mode);

private:
  std::vector<Matrix>& Stack(GlEnum p_mode);

  std::map<GlEnum, std::vector<Matrix>> _stacks; // empty ones are not there
};

Matrix IdentityMatrix();
Matrix MatrixOf(const double* p_elements);
Matrix TranslationMatrix(double p_x, double p_y, double p_z);
Matrix ScalingMatrix(double p_x, double p_y, double p_z);
Matrix RotationMatrix(double p_degrees, double p_x, double p_y, double p_z);
/// The extents must not be 0.
Matrix OrthoMatrix(double p_left, double p_right, double p_bottom, double p_top, double p_near, double p_far);

} // namespace Vek::Chart::Ogl::Recording

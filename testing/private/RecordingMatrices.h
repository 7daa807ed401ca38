#pragma once

#include "platform/ogl/GlTypes.h"

#include <array>
#include <map>
#include <string>
#include <vector>

namespace Vek::Chart::Testing::Recording {

using namespace Ogl;

using Matrix = std::array<double, 16>; ///< column by column, as GL has it

/// The matrix stacks of a context, in double precision.
///
/// Functions that change a stack take GL's current matrix mode; those that can fail return the fault, or an empty
/// string.
class MatrixStacks {
public:
  /// The current matrix of a mode, at first the identity.
  const Matrix& Top(GlEnum p_mode) const;
  std::size_t Depth(GlEnum p_mode) const;
  /// The number of matrices that were not popped, for each mode that has any.
  std::map<GlEnum, std::size_t> Unpopped() const;

  void Load(GlEnum p_mode, const Matrix& p_matrix);
  void Multiply(GlEnum p_mode, const Matrix& p_right);
  std::string Push(GlEnum p_mode);
  std::string Pop(GlEnum p_mode);

private:
  std::vector<Matrix>& Stack(GlEnum p_mode);

  std::map<GlEnum, std::vector<Matrix>> _stacks; // without unused stacks
};

Matrix IdentityMatrix();
Matrix MatrixOf(const double* p_elements);
Matrix TranslationMatrix(double p_x, double p_y, double p_z);
Matrix ScalingMatrix(double p_x, double p_y, double p_z);
Matrix RotationMatrix(double p_degrees, double p_x, double p_y, double p_z);
/// The extents must not be 0.
Matrix OrthoMatrix(double p_left, double p_right, double p_bottom, double p_top, double p_near, double p_far);

} // namespace Vek::Chart::Testing::Recording

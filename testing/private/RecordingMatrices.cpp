#include "testing/private/RecordingMatrices.h"

#include "platform/types/Matrix.h"

#include <algorithm>

namespace Vek::Chart::Testing::Recording {
namespace {

constexpr Matrix Identity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
constexpr std::size_t MostMatrices = 32;

} // namespace

const Matrix& MatrixStacks::Top(GlEnum p_mode) const {
  const auto found = _stacks.find(p_mode);
  return found == _stacks.end() ? Identity : found->second.back();
}

std::size_t MatrixStacks::Depth(GlEnum p_mode) const {
  const auto found = _stacks.find(p_mode);
  return found == _stacks.end() ? 1 : found->second.size();
}

std::map<GlEnum, std::size_t> MatrixStacks::Unpopped() const {
  std::map<GlEnum, std::size_t> counts;
  for (const auto& [mode, stack] : _stacks)
    if (stack.size() > 1)
      counts[mode] = stack.size() - 1;
  return counts;
}

std::vector<Matrix>& MatrixStacks::Stack(GlEnum p_mode) {
  return _stacks.try_emplace(p_mode, 1, Identity).first->second;
}

void MatrixStacks::Load(GlEnum p_mode, const Matrix& p_matrix) {
  Stack(p_mode).back() = p_matrix;
}

void MatrixStacks::Multiply(GlEnum p_mode, const Matrix& p_right) {
  Matrix& top = Stack(p_mode).back();
  const Matrix left = top;
  for (std::size_t column = 0; column < 4; ++column)
    for (std::size_t row = 0; row < 4; ++row) {
      double sum = 0;
      for (std::size_t k = 0; k < 4; ++k)
        sum += left[k * 4 + row] * p_right[column * 4 + k];
      top[column * 4 + row] = sum;
    }
}

std::string MatrixStacks::Push(GlEnum p_mode) {
  std::vector<Matrix>& stack = Stack(p_mode);
  if (stack.size() >= MostMatrices)
    return "more than " + std::to_string(MostMatrices) + " matrices";
  stack.push_back(Matrix(stack.back()));
  return {};
}

std::string MatrixStacks::Pop(GlEnum p_mode) {
  std::vector<Matrix>& stack = Stack(p_mode);
  if (stack.size() == 1)
    return "without PushMatrix";
  stack.pop_back();
  return {};
}

Matrix IdentityMatrix() {
  return Identity;
}

Matrix MatrixOf(const double* p_elements) {
  Matrix matrix;
  std::copy_n(p_elements, matrix.size(), matrix.begin());
  return matrix;
}

Matrix TranslationMatrix(double p_x, double p_y, double p_z) {
  return {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, p_x, p_y, p_z, 1};
}

Matrix ScalingMatrix(double p_x, double p_y, double p_z) {
  return {p_x, 0, 0, 0, 0, p_y, 0, 0, 0, 0, p_z, 0, 0, 0, 0, 1};
}

Matrix RotationMatrix(double p_degrees, double p_x, double p_y, double p_z) {
  const Types::Matrix3 columns =
      Types::Matrix3::Rotation(Types::Angle::FromDegrees(p_degrees), {p_x, p_y, p_z}).Transposed();
  const auto x = columns.Row(0);
  const auto y = columns.Row(1);
  const auto z = columns.Row(2);
  return {x.x, x.y, x.z, 0, y.x, y.y, y.z, 0, z.x, z.y, z.z, 0, 0, 0, 0, 1};
}

Matrix OrthoMatrix(double p_left, double p_right, double p_bottom, double p_top, double p_near, double p_far) {
  const double width = p_right - p_left;
  const double height = p_top - p_bottom;
  const double depth = p_far - p_near;
  Matrix matrix = ScalingMatrix(2 / width, 2 / height, -2 / depth);
  matrix[12] = -(p_right + p_left) / width;
  matrix[13] = -(p_top + p_bottom) / height;
  matrix[14] = -(p_far + p_near) / depth;
  return matrix;
}

} // namespace Vek::Chart::Testing::Recording

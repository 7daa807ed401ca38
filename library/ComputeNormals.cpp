#include "library/ComputeNormals.h"

#include "library/private/mesh/FloatNormals.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <array>
#include <cmath>

namespace Vek::Chart::Library {

namespace {

using Vector = Types::Vector3_Base<double>;

Vector ToDouble(const Vector& p_vector) {
  return p_vector;
}
Vector ToDouble(const Ogl::Vec3<float>& p_vector) {
  return {p_vector.x, p_vector.y, p_vector.z};
}

void Narrow(const Vector& p_from, Vector& p_to) {
  p_to = p_from;
}
void Narrow(const Vector& p_from, Ogl::Vec3<float>& p_to) {
  p_to = {static_cast<float>(p_from.x), static_cast<float>(p_from.y), static_cast<float>(p_from.z)};
}

/// Floats, three for a vector, in the place of a pointer to vectors.
struct Triples {
  const float* floats;
  Vector operator[](std::size_t p_index) const {
    const float* const at = floats + 3 * p_index;
    return {at[0], at[1], at[2]};
  }
};

double LargestComponent(const Vector& p_vector) {
  return std::max({std::abs(p_vector.x), std::abs(p_vector.y), std::abs(p_vector.z)});
}

bool IsFinite(const Vector& p_vector) {
  return std::isfinite(p_vector.x) && std::isfinite(p_vector.y) && std::isfinite(p_vector.z);
}

/// The height of the thinnest triangle, by its longest edge. Rounding to float alone turns thinner ones anywhere.
constexpr double ThinnestShare = 1e-7;

/// The normal of a triangle and its weights at the corners, their angles; zeros for a triangle that is left out.
struct Share {
  Vector normal;
  std::array<double, 3> weights{};
};

Share ShareOf(const std::array<Vector, 3>& p_corners) {
  std::array<Vector, 3> edges; // edge i runs from corner i to the next
  double scale = 0;
  for (std::size_t i = 0; i < 3; ++i) {
    edges[i] = p_corners[(i + 1) % 3] - p_corners[i];
    if (!IsFinite(edges[i]))
      return {};
    scale = std::max(scale, LargestComponent(edges[i]));
  }
  if (scale == 0)
    return {};
  for (Vector& edge : edges)
    edge = edge / scale; // so that products neither overflow nor vanish
  const Vector area = Cross(edges[0], edges[1]);
  if (Length(area) <= ThinnestShare)
    return {};
  Share share{Normalize(area), {}};
  for (std::size_t i = 0; i < 3; ++i) {
    const Vector& previous = edges[(i + 2) % 3];
    share.weights[i] = std::atan2(Length(area), -Dot(previous, edges[i]));
  }
  return share;
}

/// Adds the shares of triangles to the sums of their corners: computed block by block, added in the triangles' order.
template <class Positions>
void AddTriangles(const Positions& p_positions, const std::uint32_t* p_indices, std::size_t p_indexCount,
                  Utility::Threads p_threads, std::vector<Vector>& p_sums) {
  constexpr std::size_t BlockSize = 4096; // triangles
  constexpr std::size_t WorthThreads = 100000;
  struct Block {
    std::size_t first = 0;
    std::size_t last = 0;
    std::vector<Share> shares;
  };
  const std::size_t count = p_indexCount / 3;
  const Utility::Threads threads = count < WorthThreads ? Utility::Threads() : p_threads;
  const auto exists = [&](const std::uint32_t* p_corners) {
    return std::max({p_corners[0], p_corners[1], p_corners[2]}) < p_sums.size();
  };
  std::vector<Block> blocks(4 * static_cast<std::size_t>(threads.Count()));
  std::size_t next = 0;
  Utility::BlockSteps steps;
  steps.fill = [&](std::size_t p_slot) {
    Block& block = blocks[p_slot];
    block.first = next;
    next = block.last = std::min(next + BlockSize, count);
    return block.first < block.last;
  };
  steps.work = [&](std::size_t p_slot) {
    Block& block = blocks[p_slot];
    block.shares.clear();
    for (std::size_t i = block.first; i < block.last; ++i) {
      const std::uint32_t* const corners = p_indices + 3 * i;
      block.shares.push_back(exists(corners)
                                 ? ShareOf({ToDouble(p_positions[corners[0]]), ToDouble(p_positions[corners[1]]),
                                            ToDouble(p_positions[corners[2]])})
                                 : Share());
    }
  };
  steps.join = [&](std::size_t p_slot) {
    const Block& block = blocks[p_slot];
    for (std::size_t i = block.first; i < block.last; ++i) {
      const Share& share = block.shares[i - block.first];
      if (share.weights[0] != 0 || share.weights[1] != 0 || share.weights[2] != 0)
        for (std::size_t corner = 0; corner < 3; ++corner)
          p_sums[p_indices[3 * i + corner]] += share.normal * share.weights[corner];
    }
  };
  Utility::RunBlocks(threads, blocks.size(), steps);
}

/// ComputeNormals of any kind of positions. Calls p_forIndices(add), which calls add(indices, count) for each part, and
/// in the end p_setNormal(i, normal), in any thread.
template <class Positions, class ForIndices, class SetNormal>
void Compute(const Positions& p_positions, std::size_t p_positionCount, ForIndices p_forIndices,
             Utility::Threads p_threads, SetNormal p_setNormal) {
  std::vector<Vector> sums(p_positionCount);
  p_forIndices([&](const std::uint32_t* p_indices, std::size_t p_indexCount) {
    AddTriangles(p_positions, p_indices, p_indexCount, p_threads, sums);
  });
  // What is left where triangles cancel out is rounding: a corner's weight is a radian or so.
  constexpr double Cancelled = 1e-12;
  Utility::RunRanges(p_threads, p_positionCount, 8192, [&](std::size_t p_first, std::size_t p_last) {
    for (std::size_t i = p_first; i < p_last; ++i)
      p_setNormal(i, Length(sums[i]) > Cancelled ? Normalize(sums[i]) : Vector(0, 0, 1));
  });
}

template <class Position>
std::vector<Position> Computed(const Position* p_positions, std::size_t p_positionCount, const std::uint32_t* p_indices,
                               std::size_t p_indexCount, Utility::Threads p_threads) {
  std::vector<Position> normals(p_positions == nullptr ? 0 : p_positionCount);
  const auto forIndices = [&](const auto& p_add) { p_add(p_indices, p_indices == nullptr ? 0 : p_indexCount); };
  Compute(p_positions, normals.size(), forIndices, p_threads,
          [&](std::size_t p_index, const Vector& p_normal) { Narrow(p_normal, normals[p_index]); });
  return normals;
}

} // namespace

std::vector<Vector> ComputeNormals(const Vector* p_positions, std::size_t p_positionCount,
                                   const std::uint32_t* p_indices, std::size_t p_indexCount,
                                   Utility::Threads p_threads) {
  return Computed(p_positions, p_positionCount, p_indices, p_indexCount, p_threads);
}

std::vector<Ogl::Vec3<float>> ComputeNormals(const Ogl::Vec3<float>* p_positions, std::size_t p_positionCount,
                                             const std::uint32_t* p_indices, std::size_t p_indexCount,
                                             Utility::Threads p_threads) {
  return Computed(p_positions, p_positionCount, p_indices, p_indexCount, p_threads);
}

bool ComputeNormals(ObjModel& p_model, Utility::Threads p_threads) {
  if (p_model.PrimitiveType() != Ogl::VertexBuffer::Triangles)
    return false;
  const boost::shared_ptr<ObjModel::VertexArray> positions = p_model.Vertices();
  const auto normals = boost::make_shared<ObjModel::VertexArray>(positions ? positions->size() : 0);
  const auto forIndices = [groups = p_model.Groups()](const auto& p_add) {
    if (groups)
      for (const boost::shared_ptr<ObjModel::ObjGroup>& group : *groups)
        if (group)
          p_add(group->indices.data(), group->indices.size());
  };
  Compute(positions ? positions->data() : nullptr, normals->size(), forIndices, p_threads,
          [&](std::size_t p_index, const Vector& p_normal) { Narrow(p_normal, (*normals)[p_index]); });
  p_model.SetNormals(normals);
  return true;
}

namespace Private {

void ComputeFloatNormals(const float* p_positions, std::size_t p_positionCount, const std::uint32_t* p_indices,
                         std::size_t p_indexCount, Utility::Threads p_threads, float* p_normals) {
  Compute(
      Triples{p_positions}, p_positionCount, [&](const auto& p_add) { p_add(p_indices, p_indexCount); }, p_threads,
      [&](std::size_t p_index, const Vector& p_normal) {
        float* const at = p_normals + 3 * p_index;
        at[0] = static_cast<float>(p_normal.x);
        at[1] = static_cast<float>(p_normal.y);
        at[2] = static_cast<float>(p_normal.z);
      });
}

} // namespace Private

} // namespace Vek::Chart::Library

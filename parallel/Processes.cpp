#include "parallel/Processes.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <new>
#include <utility>

namespace Vek::Chart::Parallel {

namespace {

/// Corners that take part in no minimum or maximum.
std::vector<double> Corners(const Processes::Box& p_box) {
  constexpr double Far = std::numeric_limits<double>::infinity();
  if (p_box.Empty())
    return {Far, Far, Far, -Far, -Far, -Far};
  const auto &low = p_box.Min(), &high = p_box.Max();
  return {low.x, low.y, low.z, high.x, high.y, high.z};
}

Processes::Box BoxOf(const double* p_corners) {
  const Types::Vector3_Base<double> low(p_corners[0], p_corners[1], p_corners[2]);
  const Types::Vector3_Base<double> high(p_corners[3], p_corners[4], p_corners[5]);
  return low.x <= high.x ? Processes::Box(low, high) : Processes::Box();
}

std::string ReasonOf(const std::function<void()>& p_step) {
  try {
    p_step();
    return {};
  } catch (const std::bad_alloc&) {
    return "not enough memory";
  } catch (const std::exception& error) {
    return *error.what() == '\0' ? "no reason given" : error.what();
  } catch (...) {
    return "an unknown exception";
  }
}

} // namespace

ProcessError::ProcessError(int p_rank, int p_count, const std::string& p_reason)
    : std::runtime_error("process " + std::to_string(p_rank) + " of " + std::to_string(p_count) + ": " + p_reason)
    , _rank(p_rank) {}

Processes::Processes(MPI_Comm p_communicator)
    : _communicator(new MPI_Comm(MPI_COMM_NULL), [](MPI_Comm* p_owned) {
      if (*p_owned != MPI_COMM_NULL)
        MPI_Comm_free(p_owned);
      delete p_owned;
    }) {
  MPI_Comm_dup(p_communicator, _communicator.get());
}

int Processes::Rank() const {
  int rank = 0;
  MPI_Comm_rank(Communicator(), &rank);
  return rank;
}

int Processes::Count() const {
  int count = 1;
  MPI_Comm_size(Communicator(), &count);
  return count;
}

void Processes::Together(const std::function<void()>& p_step) const {
  const std::string own = ReasonOf(p_step);
  const int rank = own.empty() ? Count() : Rank();
  int first = 0;
  MPI_Allreduce(&rank, &first, 1, MPI_INT, MPI_MIN, Communicator());
  if (first == Count())
    return;
  int length = static_cast<int>(own.size());
  MPI_Bcast(&length, 1, MPI_INT, first, Communicator());
  std::string reason = own;
  reason.resize(static_cast<std::size_t>(length));
  MPI_Bcast(reason.data(), length, MPI_CHAR, first, Communicator());
  throw ProcessError(first, Count(), reason);
}

bool Processes::Any(bool p_own) const {
  const int own = p_own ? 1 : 0;
  int any = 0;
  MPI_Allreduce(&own, &any, 1, MPI_INT, MPI_MAX, Communicator());
  return any != 0;
}

Processes::Box Processes::Union(const Box& p_own) const {
  std::vector<double> own = Corners(p_own), all(own.size());
  std::for_each(own.begin() + 3, own.end(), [](double& p_high) { p_high = -p_high; });
  MPI_Allreduce(own.data(), all.data(), static_cast<int>(own.size()), MPI_DOUBLE, MPI_MIN, Communicator());
  std::for_each(all.begin() + 3, all.end(), [](double& p_high) { p_high = -p_high; });
  return BoxOf(all.data());
}

Processes::Range Processes::Union(const Range& p_own) const {
  const Box all = Union(p_own.Empty() ? Box() : Box({p_own.min, 0, 0}, {p_own.max, 0, 0}));
  return all.Empty() ? Range() : Range(all.Min().x, all.Max().x);
}

std::vector<double> Processes::Sum(std::vector<double> p_own) const {
  MPI_Allreduce(MPI_IN_PLACE, p_own.data(), static_cast<int>(p_own.size()), MPI_DOUBLE, MPI_SUM, Communicator());
  return p_own;
}

std::vector<Processes::Box> Processes::Gather(const Box& p_own) const {
  const std::vector<double> own = Corners(p_own);
  std::vector<double> all(own.size() * static_cast<std::size_t>(Count()));
  MPI_Allgather(own.data(), static_cast<int>(own.size()), MPI_DOUBLE, all.data(), static_cast<int>(own.size()),
                MPI_DOUBLE, Communicator());
  std::vector<Box> boxes;
  for (std::size_t i = 0; i < all.size(); i += own.size())
    boxes.push_back(BoxOf(&all[i]));
  return boxes;
}

QByteArray Processes::Broadcast(QByteArray p_bytes) const {
  int size = p_bytes.size();
  MPI_Bcast(&size, 1, MPI_INT, 0, Communicator());
  p_bytes.resize(size);
  MPI_Bcast(p_bytes.data(), size, MPI_BYTE, 0, Communicator());
  return p_bytes;
}

} // namespace Vek::Chart::Parallel

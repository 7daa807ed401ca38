#pragma once

#include "parallel/Export.h"

#include "platform/types/Geometry.h"
#include "platform/types/Range.h"

#include <mpi.h>

#include <QByteArray>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace Vek::Chart::Parallel {

/// A step that failed in a process. All processes have the same one.
/// \ingroup parallel
class VEK_PARALLEL_API ProcessError : public std::runtime_error {
public:
  /// The text becomes "process 3 of 8: " and the reason.
  ProcessError(int p_rank, int p_count, const std::string& p_reason);
  /// The number of the process, from 0: the lowest one that failed.
  int Rank() const { return _rank; }

private:
  int _rank;
};

/// The processes of an MPI communicator, which compute together.
///
/// All functions but `Rank` and `Count` are collective: every process calls them, in the same order. They work on a
/// duplicate of the communicator, so that messages of the caller's do not meet theirs; copies share it, and the last
/// one must end before MPI_Finalize.
///
/// Errors of MPI end all processes, MPI's default.
///
/// \snippet ParallelSnippets.cpp Processes
/// \ingroup parallel
class VEK_PARALLEL_API Processes {
public:
  using Box = Types::BoundingBox_Base<double>; ///< in data units
  using Range = Types::MinMax_Base<double>;    ///< smallest and largest value

  /// Collective. Implicit, so that a communicator can be passed where processes are wanted.
  Processes(MPI_Comm p_communicator); // NOLINT: implicit

  /// The number of this process, from 0.
  int Rank() const;
  /// How many there are.
  int Count() const;
  /// The duplicate of the communicator.
  MPI_Comm Communicator() const { return *_communicator; }

  /// Runs a step in each process, and waits for all. If it throws in one of them, every process throws the same
  /// ProcessError with rank and reason of the first one. The step calls nothing collective: processes that wait for one
  /// that failed would wait for ever.
  void Together(const std::function<void()>& p_step) const;

  /// Whether something holds in a process.
  bool Any(bool p_own) const;
  /// The box around the boxes of all processes; empty ones do not count.
  Box Union(const Box& p_own) const;
  /// Likewise, of ranges.
  Range Union(const Range& p_own) const;
  /// The sums of numbers, one by one; as many in each process.
  std::vector<double> Sum(std::vector<double> p_own) const;
  /// The boxes of all processes.
  std::vector<Box> Gather(const Box& p_own) const;
  /// The bytes that process 0 has.
  QByteArray Broadcast(QByteArray p_bytes) const;

private:
  std::shared_ptr<MPI_Comm> _communicator;
};

} // namespace Vek::Chart::Parallel

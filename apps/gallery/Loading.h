#pragma once

#include <atomic>
#include <istream>
#include <memory>
#include <string>

namespace Vek::Chart::Gallery {

/// Thrown where a load finds that it was cancelled. No std::exception, so that nobody takes it for an error.
class Cancelled {};

/// How far the making of a picture has come, and whether it is still wanted. The thread that loads moves it on; any
/// thread may ask and cancel.
///
///     Loading loading;
///     std::thread thread([&] { picture = entry.load(inputs, loading); }); // may throw Cancelled
///     bar.SetValue(loading.Progress());
///     loading.Cancel();
///
/// A load is a row of stages; in each, the progress runs from where it is to the end of the stage:
///
///     const WindField field = WindField::ReadFile(path, loading.Stage(0.3)); // reading moves it from 0 to 0.3
///     loading.Stage(1);
///     for (std::size_t i = 0; i < count; ++i, loading.Advance(double(i) / count))
///       BuildRow(i);
class Loading {
public:
  Loading() = default;
  Loading(const Loading&) = delete;
  Loading& operator=(const Loading&) = delete;

  // For any thread.

  /// 0 to 1; never falls.
  double Progress() const { return _progress.load(std::memory_order_relaxed); }
  void Cancel() { _cancelled.store(true, std::memory_order_relaxed); }
  bool IsCancelled() const { return _cancelled.load(std::memory_order_relaxed); }

  // For the thread that loads.

  void CheckCancelled() const {
    if (IsCancelled())
      throw Cancelled();
  }
  /// Ends the stage before, begins the one that ends at `p_end`, and returns itself.
  Loading& Stage(double p_end);
  /// That part of the stage, 0 to 1, is done. Throws Cancelled.
  void Advance(double p_part);
  /// A file as a binary stream whose reading advances the stage. Once cancelled it yields nothing more: it throws
  /// Cancelled through the operations of the stream; a reader that takes that for the end of the file must be followed
  /// by CheckCancelled. Throws InputError "file: …" when the file is missing, a folder, or not readable. The stream
  /// must not outlive this object.
  std::unique_ptr<std::istream> Open(const std::string& p_path);

private:
  std::atomic<double> _progress{0};
  std::atomic<bool> _cancelled{false};
  bool _hasStages = false; ///< without any, all is one stage
  double _from = 0;        ///< the progress at the begin and the end of the stage
  double _to = 1;
};

} // namespace Vek::Chart::Gallery

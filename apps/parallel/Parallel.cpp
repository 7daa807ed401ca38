// vek-parallel: one image of a field that is larger than the memory of a process. Exit codes: 0, 1 for a failure, 2 for
// wrong arguments.

#include "apps/parallel/FieldImage.h"
#include "apps/parallel/FieldOptions.h"

#include "parallel/Processes.h"
#include "scene/SaveImage.h"

#include <QByteArray>
#include <QGuiApplication>

#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace {

using namespace Vek::Chart;

/// All arguments but the value of --field, of which processes may have different copies.
QByteArray CommonArguments(QStringList p_arguments) {
  p_arguments.removeFirst(); // the program
  if (const int field = p_arguments.indexOf(QStringLiteral("--field")); field >= 0 && field + 1 < p_arguments.size())
    p_arguments.removeAt(field + 1);
  return p_arguments.join('\n').toUtf8();
}

/// Reports an error, which is the same in all processes, once.
int Ended(const Parallel::Processes& p_all, const Parallel::ProcessError& p_error, int p_code) {
  if (p_all.Rank() == 0)
    std::cerr << "vek-parallel: " << p_error.what() << std::endl;
  p_all.Any(true); // no process ends before the report, as mpirun then ends all
  return p_code;
}

int Draw(const Parallel::Processes& p_all, const QStringList& p_arguments) {
  const bool isFirst = p_all.Rank() == 0;
  Apps::FieldOptions options;
  const QByteArray own = CommonArguments(p_arguments), first = p_all.Broadcast(own);
  try {
    p_all.Together([&] {
      if (own != first) // otherwise processes would wait for each other
        throw std::invalid_argument("expected the options of process 0, but for the path of the field");
      options = Apps::ParseOptions(p_arguments);
    });
  } catch (const Parallel::ProcessError& error) {
    return Ended(p_all, error, 2);
  }
  if (options.isHelp) {
    if (isFirst)
      std::cout << Apps::HelpText().toStdString();
    return 0;
  }
  try {
    const Parallel::Compositor compositor(p_all);
    const QImage image = Apps::DrawField(compositor, options);
    p_all.Together([&] {
      if (isFirst)
        Scene::SaveImage(image, options.image);
    });
    return 0;
  } catch (const Parallel::ProcessError& error) {
    return Ended(p_all, error, 1);
  }
}

/// Processes on one machine share its cores. Mesa's software rasteriser takes a thread for each core by default, which
/// also keep what is still to be rasterised: hundreds of megabytes. 0 stands for none beside the process's own.
void ShareCores() {
  MPI_Comm machine = MPI_COMM_NULL;
  MPI_Comm_split_type(MPI_COMM_WORLD, MPI_COMM_TYPE_SHARED, 0, MPI_INFO_NULL, &machine);
  int count = 1;
  MPI_Comm_size(machine, &count);
  MPI_Comm_free(&machine);
  if (count > 1 && !qEnvironmentVariableIsSet("LP_NUM_THREADS"))
    qputenv("LP_NUM_THREADS", "0");
}

/// Freed arrays go back to the system, also after larger ones, which glibc would take as a reason to keep them.
void ReturnFreedMemory() {
#if defined(__GLIBC__)
  constexpr int Least = 1 << 20;
  mallopt(M_MMAP_THRESHOLD, Least);
#endif
}

} // namespace

int main(int p_count, char** p_arguments) {
  ReturnFreedMemory();
  MPI_Init(&p_count, &p_arguments);
  ShareCores();
  int code = 1;
  try {
    char name[] = "vek-parallel", option[] = "-platform", platform[] = "offscreen";
    char* qtArguments[] = {name, option, platform, nullptr};
    int qtCount = 3;
    const QGuiApplication application(qtCount, qtArguments);
    QStringList arguments;
    for (int i = 0; i < p_count; ++i)
      arguments.push_back(QString::fromLocal8Bit(p_arguments[i]));
    code = Draw(Parallel::Processes(MPI_COMM_WORLD), arguments);
  } catch (const std::exception& error) { // outside of a common step, where the other processes would wait
    int rank = 0;
    MPI_Comm_rank(MPI_COMM_WORLD, &rank);
    std::cerr << "vek-parallel: process " << rank << ": " << error.what() << std::endl;
    MPI_Abort(MPI_COMM_WORLD, 1);
  }
  MPI_Finalize();
  return code;
}

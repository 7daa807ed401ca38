// Tests of several processes: each runs all of them, in the same order.

#include "tests/support/Test.h"

#include <mpi.h>

#if defined(__SANITIZE_ADDRESS__)
#define VEK_FINDS_LEAKS
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define VEK_FINDS_LEAKS
#endif
#endif
#ifdef VEK_FINDS_LEAKS
#include <sanitizer/lsan_interface.h>
#endif

namespace {

// MPI loads and unloads modules that leak, which nothing could name afterwards: leaks of its start do not count, and
// those of the tests are looked for before its end.

void StartMpi(int* p_count, char*** p_arguments) {
#ifdef VEK_FINDS_LEAKS
  const __lsan::ScopedDisabler isOfMpi;
#endif
  MPI_Init(p_count, p_arguments);
}

void EndMpi() {
#ifdef VEK_FINDS_LEAKS
  __lsan_do_leak_check();
#endif
  MPI_Finalize();
}

} // namespace

int main(int p_count, char** p_arguments) {
  StartMpi(&p_count, &p_arguments);
  int rank = 0;
  MPI_Comm_rank(MPI_COMM_WORLD, &rank);
  testing::InitGoogleTest(&p_count, p_arguments);
  if (rank != 0)
    testing::GTEST_FLAG(output) = ""; // one report
  MakeApplication();
  const int failed = RUN_ALL_TESTS();
  EndMpi();
  return failed;
}

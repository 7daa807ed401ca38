// Tests of several processes: each runs all of them, in the same order.

#include "tests/support/Test.h"

#include <mpi.h>

int main(int p_count, char** p_arguments) {
  MPI_Init(&p_count, &p_arguments);
  int rank = 0;
  MPI_Comm_rank(MPI_COMM_WORLD, &rank);
  testing::InitGoogleTest(&p_count, p_arguments);
  if (rank != 0)
    testing::GTEST_FLAG(output) = ""; // one report
  MakeApplication();
  const int failed = RUN_ALL_TESTS();
  MPI_Finalize();
  return failed;
}

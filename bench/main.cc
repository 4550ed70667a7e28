// The main function of all benchmarks: warns when the times mean nothing.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

int main(int argc, char** argv) {
#ifndef __OPTIMIZE__
  std::fprintf(stderr, "warning: not optimised, the figures mean nothing: build for release\n");
  benchmark::AddCustomContext("networkgrpc_optimised", "no");
#else
  benchmark::AddCustomContext("networkgrpc_optimised", "yes");
#endif
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  // The library's lines, such as those of setampname, are discarded.
  const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
  if (nowhere < 0 || dup2(nowhere, STDERR_FILENO) < 0) return 1;
  return benchmark::RunSpecifiedBenchmarks() == 0 ? 1 : 0;
}

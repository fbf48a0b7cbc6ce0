// The program of all benchmarks.
#include <cstdlib>

#include "BenchDates.h"

int main(int argc, char** argv) {
  setenv("LC_ALL", "C", 1);  // the month first and a 12-hour clock, as the peers write them
  bench::AddCalendar();
  bench::AddRecurrence();
  bench::AddParsing();
  bench::AddFormatting();
  bench::AddLists();
  bench::AddFiles();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}

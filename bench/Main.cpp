// The program of all benchmarks: runs them and prints the tables.
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>

#include "Bench.h"
#include "Machine.h"
#include "Results.h"

namespace {

// Collects what the benchmarks measure. Work without input and output takes the processor's time,
// which other programs on the machine disturb less.
class Collector : public benchmark::BenchmarkReporter {
 public:
  explicit Collector(bench::Results* results) : results_(results) {}

  bool ReportContext(const Context& /*context*/) override { return true; }

  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.run_type != Run::RT_Iteration) continue;
      const std::string& name = run.run_name.function_name;
      if (run.error_occurred) {
        results_->AddFailure(name, run.error_message);
      } else {
        const bool real = !run.run_name.time_type.empty();
        results_->Add(name, real ? run.GetAdjustedRealTime() : run.GetAdjustedCPUTime());
      }
    }
  }

 private:
  bench::Results* results_;
};

// What the library costs before it is called, from a file with lines of two cells.
bench::Table AtRest(const char* path) {
  bench::Table table("What the library costs before it is called", {"what", "how much"});
  std::ifstream file(path);
  for (std::string line; std::getline(file, line);) {
    const std::size_t tab = line.find('\t');
    if (tab != std::string::npos) table.Add({line.substr(0, tab), line.substr(tab + 1)});
  }
  return table;
}

// The value of an option of the form --name=value, or null.
const char* Option(const char* argument, const char* name) {
  const std::size_t length = std::strlen(name);
  return std::strncmp(argument, name, length) == 0 ? argument + length : nullptr;
}

}  // namespace

int main(int argc, char** argv) {
  bench::SetEnvironment(bench::kVariables);
  bench::AllowManyFiles();
  benchmark::Initialize(&argc, argv);
  const char* markdown = nullptr;
  std::vector<bench::Table> tables = {bench::MachineTable()};
  bench::Table at_rest = AtRest("");
  for (int i = 1; i < argc; ++i) {
    if (const char* const path = Option(argv[i], "--at-rest=")) {
      at_rest = AtRest(path);
    } else if (const char* const file = Option(argv[i], "--markdown=")) {
      markdown = file;
    } else {
      std::cerr << "usage: orzcore_bench [--at-rest=FILE] [--markdown=FILE] [--benchmark_...]\n";
      return 2;
    }
  }
  bench::AddCalendar();
  bench::AddRecurrence();
  bench::AddParsing();
  bench::AddFormatting();
  bench::AddLists();
  bench::AddFiles();
  bench::AddSpreads();
  bench::AddGrowths();

  bench::Results results;
  Collector collector(&results);
  benchmark::RunSpecifiedBenchmarks(&collector);
  benchmark::Shutdown();

  for (bench::Table& table : results.Tables()) tables.push_back(std::move(table));
  tables.push_back(std::move(at_rest));
  for (const bench::Table& table : tables) table.Print(std::cout, bench::Style::kText);
  if (markdown != nullptr) {
    std::ofstream file(markdown);
    for (const bench::Table& table : tables) table.Print(file, bench::Style::kMarkdown);
    if (!file.flush()) return 1;
  }
  std::cout << results.CountMissed() << " of " << results.CountAims() << " aims missed\n";
  return 0;
}

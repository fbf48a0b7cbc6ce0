// The program of all benchmarks. scripts/bench runs it and makes tables of its report.
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <utility>

#include "Bench.h"

namespace orzcore::bench {

void SetEnvironment(int variables) {
  std::vector<std::pair<std::string, std::string>> kept = {{"LC_ALL", "C"}};
  for (const char* const name : {"TMPDIR", "TZ"}) {
    if (const char* const value = std::getenv(name)) kept.emplace_back(name, value);
  }
  clearenv();
  for (const auto& [name, value] : kept) setenv(name.c_str(), value.c_str(), 1);
  for (int i = static_cast<int>(kept.size()); i < variables; ++i) {
    setenv(("VARIABLE_" + std::to_string(i)).c_str(), "value", 1);
  }
}

const std::string& FileDirectory() {
  static const std::string directory = [] {
    std::string path = std::filesystem::temp_directory_path() / "orzcore_bench_XXXXXX";
    if (mkdtemp(path.data()) == nullptr) {
      throw std::system_error(errno, std::generic_category(), path);
    }
    return path;
  }();
  return directory;
}

}  // namespace orzcore::bench

namespace bench = orzcore::bench;

int main(int argc, char** argv) {
  bench::SetEnvironment(bench::kVariables);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  benchmark::AddCustomContext("compiler", COMPILER);
  benchmark::AddCustomContext("libical", LIBICAL_VERSION);
  benchmark::AddCustomContext("ICU", ICU_VERSION);
  benchmark::AddCustomContext("Abseil", ABSEIL_VERSION);
  benchmark::AddCustomContext("Boost", BOOST_VERSION);
  bench::AddCalendar();
  bench::AddRecurrence();
  bench::AddParsing();
  bench::AddFormatting();
  bench::AddLists();
  bench::AddFiles();
  bench::AddSpreads();
  bench::AddGrowths();
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  std::filesystem::remove_all(bench::FileDirectory());
  return 0;
}

#include "Machine.h"

#include <gnu/libc-version.h>
#include <sys/resource.h>
#include <sys/utsname.h>

#include <cstdlib>
#include <fstream>
#include <thread>
#include <utility>
#include <vector>

#ifdef ORZCORE_BENCH_LIBICAL
#include <libical/ical.h>
#endif
#ifdef ORZCORE_BENCH_ICU
#include <unicode/uvernum.h>
#endif
#ifdef ORZCORE_BENCH_ABSEIL
#include <absl/base/config.h>
#endif
#ifdef ORZCORE_BENCH_BOOST
#include <boost/version.hpp>
#endif

namespace bench {
namespace {

std::string Processor() {
  std::ifstream file("/proc/cpuinfo");
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with("model name")) return line.substr(line.find(':') + 2);
  }
  return "unknown";
}

// The release without what a distributor or a host adds to it.
std::string Kernel() {
  utsname names = {};
  uname(&names);
  const std::string release = names.release;
  return std::string(names.sysname) + ' ' +
         release.substr(0, release.find_first_not_of("0123456789.")) + ", " + names.machine;
}

std::string Compiler() {
#ifdef __clang__
  return "Clang " __clang_version__;
#else
  return "GCC " __VERSION__;
#endif
}

}  // namespace

Table MachineTable() {
  Table table("The machine", {"what", "which"});
  table.Add({"processor", Processor()});
  table.Add({"cores", std::to_string(std::thread::hardware_concurrency())});
  table.Add({"system", Kernel()});
  table.Add({"compiler", Compiler()});
  table.Add({"C library", std::string("glibc ") + gnu_get_libc_version()});
#ifdef ORZCORE_BENCH_LIBICAL
  table.Add({"libical", ICAL_VERSION});
#endif
#ifdef ORZCORE_BENCH_ICU
  table.Add({"ICU", U_ICU_VERSION});
#endif
#ifdef ORZCORE_BENCH_ABSEIL
  table.Add({"Abseil", std::to_string(ABSL_LTS_RELEASE_VERSION) + '.' +
                           std::to_string(ABSL_LTS_RELEASE_PATCH_LEVEL)});
#endif
#ifdef ORZCORE_BENCH_BOOST
  table.Add({"Boost", std::to_string(BOOST_VERSION / 100000) + '.' +
                          std::to_string(BOOST_VERSION / 100 % 1000)});
#endif
  return table;
}

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

void AllowManyFiles() {
  rlimit limit = {};
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return;
  limit.rlim_cur = limit.rlim_max;
  setrlimit(RLIMIT_NOFILE, &limit);
}

}  // namespace bench

// What loading a shared library costs: the pages that it dirties, and the time.
// Prints lines of two cells with a tab between them.
#include <dlfcn.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kRounds = 201;

// Kilobytes of this process's own copies of the pages of a file.
int PrivateKilobytes(const std::string& path) {
  std::ifstream maps("/proc/self/smaps");
  bool is_ours = false;
  int total = 0;
  for (std::string line; std::getline(maps, line);) {
    std::istringstream words(line);
    std::string name;
    int kilobytes = 0;
    words >> name;
    if (name.back() != ':') {  // the head of a mapping
      is_ours = line.ends_with(path);
    } else if (is_ours && name == "Private_Dirty:" && words >> kilobytes) {
      total += kilobytes;
    }
  }
  return total;
}

// Microseconds to load the library with all its symbols bound; -1 if it cannot be unloaded again.
double Load(const char* path) {
  const auto begin = Clock::now();
  void* const library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
  const std::chrono::duration<double, std::micro> time = Clock::now() - begin;
  const bool is_unloaded = library != nullptr && dlclose(library) == 0 &&
                           dlopen(path, RTLD_NOW | RTLD_NOLOAD) == nullptr;
  return is_unloaded ? time.count() : -1;
}

}  // namespace

int main(int argc, char** argv) {
  char* const path = argc == 2 ? realpath(argv[1], nullptr) : nullptr;
  if (path == nullptr) {
    std::fputs("usage: orzcore_load LIBRARY\n", stderr);
    return 2;
  }
  std::vector<double> times;
  for (int i = 0; i < kRounds; ++i) times.push_back(Load(path));
  std::nth_element(times.begin(), times.begin() + kRounds / 2, times.end());
  if (*std::min_element(times.begin(), times.end()) < 0) {
    std::fputs("orzcore_load: the library cannot be loaded and unloaded\n", stderr);
    return 1;
  }
  if (dlopen(path, RTLD_NOW | RTLD_LOCAL) == nullptr) return 1;
  std::printf("memory that a process has of its own after loading\t%d KiB\n",
              PrivateKilobytes(path));
  std::printf("time to load, beside the C++ library\t%.0f us\n", times[kRounds / 2]);
  std::free(path);
  return 0;
}

// Where the benchmarks keep their files, and the bare descriptors of the system.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <string>

namespace bench {

/// The directory of all files. It is made at first use, and goes with the program.
const std::string& FileDirectory();

class Descriptor {
 public:
  explicit Descriptor(const std::string& path) : number_(open(path.c_str(), O_RDWR | O_CLOEXEC)) {}
  ~Descriptor() {
    if (number_ >= 0) close(number_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  int Number() const { return number_; }

 private:
  int number_;
};

}  // namespace bench

// What was measured, and the tables of it.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "Table.h"
#include "Works.h"

namespace bench {

class Results {
 public:
  /// Takes one measurement of the benchmark "work/who": the time of one call in nanoseconds.
  void Add(const std::string& benchmark, double nanoseconds);

  /// Notes that a benchmark failed. Its row says so.
  void AddFailure(const std::string& benchmark, const std::string& message);

  /// The tables of comparisons, spreads and growths. Ratios are those of medians.
  std::vector<Table> Tables() const;

  int CountAims() const;    ///< how many aims could be compared
  int CountMissed() const;  ///< how many of those were missed

 private:
  struct Entry {
    std::string who;
    std::vector<double> times;
    std::string failure;
  };
  struct Median {
    std::string who;
    double time;
  };
  struct Comparison {
    double ours;
    std::vector<Median> peers;
    double ratio;  // ours by the peer's that counts; 0 without one
  };

  Entry& Find(const std::string& benchmark);
  // The fastest first.
  std::vector<Median> Medians(std::string_view work) const;
  std::string Failure(std::string_view work) const;
  bool Compare(const Work& work, Comparison* comparison) const;

  Table Comparisons() const;
  Table Spreads() const;
  Table Growths() const;

  std::map<std::string, std::vector<Entry>, std::less<>> works_;  // entries as they came
};

}  // namespace bench

// What the benchmarks share: random inputs, answers that can be compared, and the measured loop.
#pragma once

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstddef>
#include <ctime>
#include <functional>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "Works.h"
#include "orzcore/calendar.h"

namespace bench {

constexpr std::size_t kInputs = 4096;  // more than a branch predictor learns at once
static_assert((kInputs & (kInputs - 1)) == 0, "the loop wraps with a mask");

/// Random numbers, the same in every run.
class Random {
 public:
  int Between(int first, int last) { return std::uniform_int_distribution(first, last)(engine_); }

  un_date_time Date(int first_year, int last_year) {
    const int year = Between(first_year, last_year);
    const int month = Between(1, 12);
    const int last_day = OZDate::DaysInMonth(static_cast<unsigned short>(month - 1),
                                             static_cast<unsigned short>(year));
    return un_date_time::Of(year, month, Between(1, last_day), Between(0, OZDate::kEndOfDay));
  }

 private:
  std::mt19937 engine_{1984};
};

/// As many inputs as the loop walks, each made by `make`.
template <typename Make>
auto Inputs(Make make) {
  std::vector<decltype(make())> inputs;
  inputs.reserve(kInputs);
  while (inputs.size() < kInputs) inputs.push_back(make());
  return inputs;
}

/// Each of the inputs as `convert` turns it: into a peer's type, or into its answer.
template <typename Input, typename Convert>
auto Converted(const std::vector<Input>& inputs, Convert convert) {
  return Inputs([&, i = std::size_t{0}]() mutable { return convert(inputs[i++]); });
}

inline std::chrono::year_month_day ToChrono(un_date_time date) {
  return {std::chrono::year(static_cast<int>(date.year)),
          std::chrono::month(static_cast<unsigned>(date.month)),
          std::chrono::day(static_cast<unsigned>(date.day))};
}

/// What is compared of an answer: of a date the year, month and day.
template <typename T>
const T& Comparable(const T& answer) {
  return answer;
}
inline std::chrono::year_month_day Comparable(un_date_time answer) { return ToChrono(answer); }

/// Registers the benchmark of a row that the tables know, done by `who`: ours, a peer, or what names
/// the input.
template <typename Function>
benchmark::internal::Benchmark* Register(std::string_view row, const std::string& who,
                                         Function function) {
  if (FindWork(row) == nullptr)
    throw std::logic_error("the tables have no row " + std::string(row));
  return benchmark::RegisterBenchmark((std::string(row) + "/" + who).c_str(), function);
}

/// Registers a benchmark that does `work` for one input after the other. It fails unless `work`
/// gives these answers, which `convert` brings into the same form outside of the measurement.
template <typename Input, typename Function, typename Answer, typename Convert = std::identity>
void Add(std::string_view row, const std::string& who, const std::vector<Input>& inputs,
         Function work, const std::vector<Answer>& answers, Convert convert = {}) {
  Register(row, who, [=](benchmark::State& state) {
    for (std::size_t i = 0; i < kInputs; ++i) {
      if (Comparable(convert(work(inputs[i]))) == Comparable(answers[i])) continue;
      state.SkipWithError(("another answer for input " + std::to_string(i)).c_str());
      return;
    }
    std::size_t i = 0;
    for (auto _ : state) {
      benchmark::DoNotOptimize(work(inputs[i]));
      i = (i + 1) & (kInputs - 1);
    }
  });
}

void AddCalendar();
void AddRecurrence();
void AddParsing();
void AddFormatting();
void AddLists();
void AddFiles();
void AddSpreads();
void AddGrowths();

}  // namespace bench

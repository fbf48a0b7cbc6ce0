// What the benchmarks share: random inputs, answers that can be compared, and the measured loop.
// The name of a benchmark is "work/who", in growth tables "work/who/n". `who` is "ours", a peer, or
// the name of an input. tables.py knows the works and makes tables of them.
#pragma once

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstddef>
#include <cstdio>
#include <ctime>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "orzcore/calendar.h"
#include "orzcore/parser.h"

namespace orzcore::bench {

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

/// As many inputs as the loop uses, each made by `make`.
template <typename Make>
auto Inputs(Make make) {
  std::vector<decltype(make())> inputs;
  inputs.reserve(kInputs);
  while (inputs.size() < kInputs) inputs.push_back(make());
  return inputs;
}

/// The result of `convert` for each input: the input in a peer's type, or the answer to it.
template <typename Input, typename Convert>
auto Converted(const std::vector<Input>& inputs, Convert convert) {
  return Inputs([&, i = std::size_t{0}]() mutable { return convert(inputs[i++]); });
}

/// A short text, as `printf` makes it.
template <typename... Arguments>
std::string Format(const char* format, Arguments... arguments) {
  char text[64];
  std::snprintf(text, sizeof(text), format, arguments...);
  return text;
}

inline std::chrono::year_month_day ToChrono(un_date_time date) {
  return {std::chrono::year(static_cast<int>(date.year)),
          std::chrono::month(static_cast<unsigned>(date.month)),
          std::chrono::day(static_cast<unsigned>(date.day))};
}

/// The part of an answer that is compared: of a date the year, month and day, of an interval its
/// value.
template <typename T>
const T& Comparable(const T& answer) {
  return answer;
}
inline std::chrono::year_month_day Comparable(un_date_time answer) { return ToChrono(answer); }
inline int Comparable(ST_TIME_RETURN_VAL answer) { return answer.value; }

template <typename Function>
benchmark::internal::Benchmark* Register(const std::string& work, const std::string& who,
                                         Function function) {
  return benchmark::RegisterBenchmark((work + '/' + who).c_str(), function);
}

/// Registers a benchmark that calls `function` for one input after the other. It fails unless
/// `function` gives these answers. `convert` brings its results into the type of the answers,
/// outside of the measurement.
template <typename Input, typename Function, typename Answer, typename Convert = std::identity>
void Add(const std::string& work, const std::string& who, const std::vector<Input>& inputs,
         Function function, const std::vector<Answer>& answers, Convert convert = {}) {
  Register(work, who, [=](benchmark::State& state) {
    for (std::size_t i = 0; i < kInputs; ++i) {
      if (Comparable(convert(function(inputs[i]))) == Comparable(answers[i])) continue;
      return state.SkipWithError(("another answer for input " + std::to_string(i)).c_str());
    }
    std::size_t i = 0;
    for (auto _ : state) {
      benchmark::DoNotOptimize(function(inputs[i]));
      i = (i + 1) & (kInputs - 1);
    }
  });
}

/// Gives the process the environment of a usual session, whatever started it: the C locale, in
/// which the peers write the month first and have a 12-hour clock, and `variables` variables in
/// all. The directory of temporary files and the time zone stay as they are.
constexpr int kVariables = 40;
void SetEnvironment(int variables);

/// The directory of all files that are measured. It is made at the first call; `main` removes it.
const std::string& FileDirectory();

void AddCalendar();
void AddRecurrence();
void AddParsing();
void AddFormatting();
void AddLists();
void AddFiles();
void AddSpreads();
void AddGrowths();

}  // namespace orzcore::bench

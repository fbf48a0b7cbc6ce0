#include "Results.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace bench {
namespace {

constexpr std::string_view kOurs = "ours";

template <typename... Arguments>
std::string Format(const char* format, Arguments... arguments) {
  char text[64];
  std::snprintf(text, sizeof(text), format, arguments...);
  return text;
}

// With three digits.
std::string Significant(double number) {
  const int decimals = number < 10 ? 2 : number < 100 ? 1 : 0;
  return Format("%.*f", decimals, number);
}

std::string Time(double nanoseconds) {
  double time = nanoseconds;
  for (const char* unit : {" ns", " us", " ms"}) {
    if (time < 999.5) return Significant(time) + unit;
    time /= 1000;
  }
  return Significant(time) + " s";
}

double MedianOf(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  const std::size_t middle = values.size() / 2;
  return values.size() % 2 != 0 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

std::string Ratio(const Work& work, double ratio) {
  if (ratio == 0) return "-";
  if (work.aim == Aim::kFaster) return Significant(1 / ratio) + " x faster";
  return Format("%.2f x", ratio);
}

std::string AimText(const Work& work) {
  switch (work.aim) {
    case Aim::kAtMost:
      return Format("at most %.4g x", work.limit);
    case Aim::kFaster:
      return Format("%.4g x faster", work.limit);
    default:
      return "-";
  }
}

bool IsMet(const Work& work, double ratio) {
  return work.aim == Aim::kFaster ? ratio * work.limit <= 1 : ratio <= work.limit;
}

double SizeOf(const std::string& who) { return std::strtod(who.c_str(), nullptr); }

// How the time of the last steps grows: a time that does not depend on the size, or what each
// further one costs, or the power that it grows with.
std::string Law(const std::vector<double>& sizes, const std::vector<double>& times) {
  constexpr double kNoise = 1.5;
  constexpr double kLinear = 1.35;  // with the caches that a larger size falls out of
  const std::size_t last = times.size() - 1;
  if (times[last] < kNoise * times[0]) return "constant";
  const double power =
      std::log(times[last] / times[last - 1]) / std::log(sizes[last] / sizes[last - 1]);
  if (power > kLinear) return Format("n^%.1f", power);
  const double each = (times[last] - times[last - 1]) / (sizes[last] - sizes[last - 1]);
  return "linear, " + Time(each) + " each";
}

}  // namespace

Results::Entry& Results::Find(const std::string& benchmark) {
  const std::size_t slash = benchmark.find('/');
  std::vector<Entry>& entries = works_[benchmark.substr(0, slash)];
  const std::string who = benchmark.substr(slash + 1);
  for (Entry& entry : entries) {
    if (entry.who == who) return entry;
  }
  return entries.emplace_back(Entry{who, {}, {}});
}

void Results::Add(const std::string& benchmark, double nanoseconds) {
  Find(benchmark).times.push_back(nanoseconds);
}

void Results::AddFailure(const std::string& benchmark, const std::string& message) {
  Find(benchmark).failure = message;
}

std::vector<Results::Median> Results::Medians(std::string_view work) const {
  std::vector<Median> medians;
  const auto found = works_.find(work);
  if (found == works_.end()) return medians;
  for (const Entry& entry : found->second) {
    if (!entry.times.empty()) medians.push_back({entry.who, MedianOf(entry.times)});
  }
  std::sort(medians.begin(), medians.end(),
            [](const Median& a, const Median& b) { return a.time < b.time; });
  return medians;
}

std::string Results::Failure(std::string_view work) const {
  const auto found = works_.find(work);
  if (found == works_.end()) return {};
  for (const Entry& entry : found->second) {
    if (!entry.failure.empty()) return entry.who + " failed: " + entry.failure;
  }
  return {};
}

bool Results::Compare(const Work& work, Comparison* comparison) const {
  *comparison = {};
  for (const Median& median : Medians(work.name)) {
    if (median.who == kOurs) {
      comparison->ours = median.time;
    } else {
      comparison->peers.push_back(median);
    }
  }
  if (comparison->ours == 0) return false;
  double reference = 0;
  for (const Median& peer : work.peers_do.empty() ? comparison->peers : Medians(work.peers_do)) {
    if (peer.who == kOurs || (!work.peer.empty() && peer.who != work.peer)) continue;
    if (reference == 0 || peer.time < reference) reference = peer.time;
  }
  if (reference != 0) comparison->ratio = comparison->ours / reference;
  return true;
}

int Results::CountAims() const {
  return static_cast<int>(std::count_if(std::begin(kWorks), std::end(kWorks), [&](const Work& w) {
    Comparison comparison;
    return w.aim != Aim::kNone && Compare(w, &comparison) && comparison.ratio != 0;
  }));
}

int Results::CountMissed() const {
  return static_cast<int>(std::count_if(std::begin(kWorks), std::end(kWorks), [&](const Work& w) {
    Comparison comparison;
    return w.aim != Aim::kNone && Compare(w, &comparison) && comparison.ratio != 0 &&
           !IsMet(w, comparison.ratio);
  }));
}

Table Results::Comparisons() const {
  Table table("Beside what else one could use",
              {"work", "ours", "peers", "ours by peer", "aim", "met"});
  for (const Work& work : kWorks) {
    if (work.kind != Kind::kComparison) continue;
    const std::string failure = Failure(work.name);
    Comparison comparison;
    if (!Compare(work, &comparison) || !failure.empty()) {
      if (!failure.empty()) table.Add({std::string(work.name), "-", failure, "-", "-", "-"});
      continue;
    }
    std::string peers;
    for (const Median& peer : comparison.peers) {
      peers += (peers.empty() ? "" : ", ") + peer.who + " " + Time(peer.time);
    }
    if (!work.peers_do.empty()) peers = "none; the fastest of *" + std::string(work.peers_do) + "*";
    const bool counts = work.aim != Aim::kNone && comparison.ratio != 0;
    table.Add({std::string(work.name), Time(comparison.ours), peers.empty() ? "-" : peers,
               Ratio(work, comparison.ratio), AimText(work),
               !counts                         ? "-"
               : IsMet(work, comparison.ratio) ? "met"
                                               : "missed"});
  }
  return table;
}

Table Results::Spreads() const {
  Table table("How the cost depends on what is asked",
              {"work", "inputs", "cheapest", "median", "dearest"});
  const auto name = [](const Median& median) { return Time(median.time) + ": " + median.who; };
  for (const Work& work : kWorks) {
    if (work.kind != Kind::kSpread) continue;
    const std::vector<Median> inputs = Medians(work.name);
    const std::string failure = Failure(work.name);
    if (!failure.empty()) table.Add({std::string(work.name), "-", failure, "-", "-"});
    if (inputs.empty() || !failure.empty()) continue;
    table.Add({std::string(work.name), std::to_string(inputs.size()), name(inputs.front()),
               name(inputs[inputs.size() / 2]), name(inputs.back())});
  }
  return table;
}

Table Results::Growths() const {
  Table table("How the cost grows", {"work", "time at n", "growth"});
  for (const Work& work : kWorks) {
    if (work.kind != Kind::kGrowth) continue;
    const std::string failure = Failure(work.name);
    if (!failure.empty()) table.Add({std::string(work.name), failure, "-"});
    std::vector<Median> steps = Medians(work.name);
    if (steps.size() < 2 || !failure.empty()) continue;
    std::sort(steps.begin(), steps.end(),
              [](const Median& a, const Median& b) { return SizeOf(a.who) < SizeOf(b.who); });
    std::string cell;
    std::vector<double> sizes;
    std::vector<double> times;
    for (const Median& step : steps) {
      cell += (cell.empty() ? "" : ", ") + step.who + ": " + Time(step.time);
      sizes.push_back(SizeOf(step.who));
      times.push_back(step.time);
    }
    table.Add({std::string(work.name), cell, Law(sizes, times)});
  }
  return table;
}

std::vector<Table> Results::Tables() const { return {Comparisons(), Spreads(), Growths()}; }

}  // namespace bench

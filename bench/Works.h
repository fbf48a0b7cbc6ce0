// Every work that is measured, in the order of the tables, with what it is aimed at.
#pragma once

#include <string_view>

namespace bench {

/// Which table a work is a row of.
enum class Kind {
  kComparison,  ///< ours beside its peers
  kSpread,      ///< many inputs of one kind: the cheapest, the middle and the dearest of them
  kGrowth,      ///< one work at several sizes, which are numbers
};

enum class Aim {
  kNone,
  kAtMost,  ///< as many times the peer's time at most
  kFaster,  ///< as many times faster than the peer at least
};

struct Work {
  Kind kind;
  std::string_view name;
  Aim aim = Aim::kNone;
  double limit = 0;
  std::string_view peer = {};      ///< whom the ratio compares with; empty for the fastest
  std::string_view peers_do = {};  ///< the work that the peers do, where they cannot do this one
};

constexpr std::string_view kPlainDate = "parse Jan 5, 1999";

constexpr Work kWorks[] = {
    {Kind::kComparison, "weekday and day number", Aim::kAtMost, 1.5},
    {Kind::kComparison, "move forward by days", Aim::kAtMost, 1.5},
    {Kind::kComparison, "move back by days", Aim::kAtMost, 1.5},
    {Kind::kComparison, "move forward by months", Aim::kAtMost, 1.5},
    {Kind::kComparison, "move back by months", Aim::kAtMost, 1.5},
    {Kind::kComparison, "move forward by years"},
    {Kind::kComparison, "move back by years"},
    {Kind::kComparison, "read the clock"},
    {Kind::kComparison, "next mon, wed, fri", Aim::kFaster, 100},
    {Kind::kComparison, "next odd mon, wed, fri", Aim::kFaster, 100},
    {Kind::kComparison, "next monthly 15", Aim::kFaster, 100},
    {Kind::kComparison, "next monthly 2nd tue", Aim::kFaster, 100},
    {Kind::kComparison, "next monthly last tue", Aim::kFaster, 100},
    {Kind::kComparison, "next quarterly day 10", Aim::kFaster, 100},
    {Kind::kComparison, "next quarterly 2nd tue", Aim::kFaster, 100},
    {Kind::kComparison, "next yearly 4 jul", Aim::kFaster, 100},
    {Kind::kComparison, "next yearly 4th thu nov", Aim::kFaster, 100},
    {Kind::kComparison, kPlainDate, Aim::kFaster, 5},
    {Kind::kComparison, "parse next fri", Aim::kFaster, 5, {}, kPlainDate},
    {Kind::kComparison, "parse +3 d", Aim::kFaster, 5, {}, kPlainDate},
    {Kind::kComparison, "parse 1:05pm"},
    {Kind::kComparison, "parse 12345"},
    {Kind::kComparison, "parse 123.456"},
    {Kind::kComparison, "parse 1.5 h"},
    {Kind::kComparison, "parse 30 d"},
    {Kind::kComparison, "parse priority c3"},
    {Kind::kComparison, "write Fri-Mar 15", Aim::kAtMost, 1, "strftime"},
    {Kind::kComparison, "write Mar 15,2024", Aim::kAtMost, 1, "strftime"},
    {Kind::kComparison, "write Fri-Mar 15,2024", Aim::kAtMost, 1, "strftime"},
    {Kind::kComparison, "write 1:05pm"},
    {Kind::kComparison, "lock and unlock a byte", Aim::kAtMost, 1.15},
    {Kind::kComparison, "lock and unlock 767 bytes", Aim::kAtMost, 1.15},
    {Kind::kComparison, "virtual lock, whole range"},
    {Kind::kComparison, "virtual lock, shared byte"},
    {Kind::kComparison, "read 64 B"},
    {Kind::kComparison, "read 1 KiB", Aim::kAtMost, 1.15},
    {Kind::kComparison, "read 64 KiB"},
    {Kind::kComparison, "write 64 B"},
    {Kind::kComparison, "write 1 KiB", Aim::kAtMost, 1.15},
    {Kind::kComparison, "write 64 KiB"},
    {Kind::kComparison, "open and close a shared file", Aim::kNone, 0, "open + fcntl"},
    {Kind::kComparison, "write and flush 1 KiB"},
    {Kind::kComparison, "list of 1000, add and remove at the head", Aim::kAtMost, 1, "boost"},
    {Kind::kComparison, "list of 1000, add and remove at the tail", Aim::kAtMost, 1, "boost"},
    {Kind::kComparison, "list of 1000, add at the tail, remove at the head", Aim::kAtMost, 1,
     "boost"},
    {Kind::kComparison, "list of 1000, walk", Aim::kNone, 0, "boost"},
    {Kind::kSpread, "next occurrence, every form of a rule"},
    {Kind::kSpread, "next occurrence, around the calendar's edges"},
    {Kind::kSpread, "next occurrence, random rules and dates"},
    {Kind::kSpread, "parse a date, every form"},
    {Kind::kGrowth, "parse a date in a text of n characters"},
    {Kind::kGrowth, "write a date, n variables in the environment"},
    {Kind::kGrowth, "lock and unlock a byte beside n users"},
    {Kind::kGrowth, "lock and unlock a byte beside n users, fcntl"},
    {Kind::kGrowth, "lock and unlock a byte beside n users, fcntl and marks"},
    {Kind::kGrowth, "RemoveItem of the first of n nodes"},
    {Kind::kGrowth, "RemoveItem of the last of n nodes"},
    {Kind::kGrowth, "make and destroy an OZFile beside n"},
    {Kind::kGrowth, "destroy the oldest of n OZFile, make a new one"},
    {Kind::kGrowth, "FlushAllFiles, 10 of n files marked"},
};

/// The work of that name, or null.
constexpr const Work* FindWork(std::string_view name) {
  for (const Work& work : kWorks) {
    if (work.name == name) return &work;
  }
  return nullptr;
}

}  // namespace bench

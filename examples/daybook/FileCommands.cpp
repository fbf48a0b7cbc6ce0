// The commands that copy, rename and delete daybooks.
#include <iostream>

#include "Commands.h"
#include "Store.h"
#include "terminal/Terminal.h"
#include "terminal/Text.h"

ExitStatus RunCopy(const Options& options) {
  const auto damaged = Store(options, Store::kReading).CopyTo(options.Words()[1]);
  for (const int id : damaged) {
    std::cerr << "daybook: entry " << id << " is damaged, and is not in the copy\n";
  }
  return damaged.empty() ? kSuccess : kNegative;
}

ExitStatus RunRename(const Options& options) {
  Store(options, Store::kChanging).Rename(options.Words()[1]);
  return kSuccess;
}

ExitStatus RunDelete(const Options& options) {
  Store store(options, Store::kChanging);
  if (!options.Has("--yes")) {
    if (!IsTerminal(Stream::kInput)) throw UsageError("delete needs --yes where it cannot ask");
    const std::size_t entries = store.ReadAll().entries.size();
    if (!Confirm("Delete " + options.Words().front() + " with " +
                 Counted(entries, "entry", "entries") + '?')) {
      throw Rejection("nothing is deleted");
    }
  }
  store.Delete();
  return kSuccess;
}

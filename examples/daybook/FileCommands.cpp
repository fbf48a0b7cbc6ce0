// The commands that copy, rename and delete daybooks.
#include "Commands.h"
#include "Store.h"

ExitStatus RunCopy(const Options& options) {
  Store(options.Words()[0], Store::kReading).CopyTo(options.Words()[1]);
  return kSuccess;
}

ExitStatus RunRename(const Options& options) {
  Store(options.Words()[0], Store::kChanging).Rename(options.Words()[1]);
  return kSuccess;
}

ExitStatus RunDelete(const Options& options) {
  Store(options.Words()[0], Store::kChanging).Delete();
  return kSuccess;
}

// The string resources that modules have registered.
#include <algorithm>

#include "orzcore/platform.h"

namespace {

constinit OZStringTable* gTables = nullptr;

}  // namespace

void OZStringTable::Register(const void* module) {
  Unregister();
  module_ = module;
  next_ = gTables;
  gTables = this;
}

void OZStringTable::Unregister() {
  for (OZStringTable** link = &gTables; *link != nullptr; link = &(*link)->next_) {
    if (*link != this) continue;
    *link = next_;
    return;
  }
}

const char* OZStringTable::Find(const void* module, unsigned int id) {
  for (const OZStringTable* table = gTables; table != nullptr; table = table->next_) {
    if (table->module_ != module) continue;
    const OZString* const end = table->strings_ + table->count_;
    const OZString* const found = std::find_if(
        table->strings_, end, [id](const OZString& string) { return string.id == id; });
    if (found != end) return found->text;
  }
  return nullptr;
}

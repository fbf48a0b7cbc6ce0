// String resources: the tables that modules have registered, and the call that reads them.
#include <algorithm>
#include <cstring>

#include "orzcore/platform.h"
#include "platform/system.h"

namespace orzcore::platform {
namespace {

// The registered tables, the newest first.
constinit OZStringTable* gTables = nullptr;

}  // namespace

int LoadStringA(const void* instance, unsigned int id, char* buffer, unsigned int size) {
  const char* const text = OZStringTable::Find(instance, id);
  if (size == 0) return 0;
  if (text == nullptr) return LoadResourceString(instance, id, buffer, size);
  const std::size_t count = std::min(std::strlen(text), std::size_t{size} - 1);
  std::memcpy(buffer, text, count);
  buffer[count] = '\0';
  return static_cast<int>(count);
}

}  // namespace orzcore::platform

namespace platform = orzcore::platform;

void OZStringTable::Register(const void* module) {
  Unregister();
  module_ = module;
  next_ = platform::gTables;
  platform::gTables = this;
}

void OZStringTable::Unregister() {
  for (OZStringTable** link = &platform::gTables; *link != nullptr; link = &(*link)->next_) {
    if (*link != this) continue;
    *link = next_;
    return;
  }
}

const char* OZStringTable::Find(const void* module, unsigned int id) {
  for (const OZStringTable* table = platform::gTables; table != nullptr; table = table->next_) {
    if (table->module_ != module) continue;
    const OZString* const end = table->strings_ + table->count_;
    const OZString* const found = std::find_if(
        table->strings_, end, [id](const OZString& string) { return string.id == id; });
    if (found != end) return found->text;
  }
  return nullptr;
}

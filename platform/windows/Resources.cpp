// The string resources of modules.
#include "platform/system.h"
#include "platform/windows/Native.h"

namespace orzcore::platform {
namespace {

// Programs may use any address as the handle of their strings. Only a module has resources.
bool IsModule(const void* instance) {
  HMODULE module = nullptr;
  const DWORD flags =
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
  return ::GetModuleHandleExA(flags, static_cast<const char*>(instance), &module) != 0 &&
         module == instance;
}

}  // namespace

int LoadResourceString(const void* instance, unsigned int id, char* buffer, unsigned int size) {
  if (instance != nullptr && !IsModule(instance)) return 0;  // null: the module of the program
  const char first = *buffer;
  const auto module = static_cast<HINSTANCE>(const_cast<void*>(instance));
  const int length = ::LoadStringA(module, id, buffer, static_cast<int>(size));
  if (length == 0) *buffer = first;
  return length;
}

}  // namespace orzcore::platform

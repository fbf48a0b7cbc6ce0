// The string resources of modules.
#include "platform/system.h"

namespace orzcore::platform {

int LoadResourceString(const void* /*instance*/, unsigned int /*id*/, char* /*buffer*/,
                       unsigned int /*size*/) {
  return 0;
}

}  // namespace orzcore::platform

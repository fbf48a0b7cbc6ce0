// What the volumes of this machine can do.
#include "platform/posix/Volume.h"

namespace platform {

constinit Volume gVolume;

}  // namespace platform

// What the volumes of this machine can do.
#include "platform/posix/Volume.h"

namespace orzcore::platform {

constinit Volume gVolume;

}  // namespace orzcore::platform

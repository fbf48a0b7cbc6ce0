// The note about a close that could not write its data to the disk.
#include "platform/posix/FailedSync.h"

#include <utility>

namespace orzcore::platform {
namespace {

constinit FailedSync gNote = {};

}  // namespace

void NoteFailedSync(const FileIdentity& file, int host_error) { gNote = {host_error, file}; }

FailedSync TakeFailedSync() { return std::exchange(gNote, {}); }

}  // namespace orzcore::platform

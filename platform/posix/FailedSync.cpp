// The note of data that a close could not force out.
#include "platform/posix/FailedSync.h"

#include <utility>

namespace orzcore::platform {
namespace {

constinit FailedSync gNote = {};

}  // namespace

void NoteFailedSync(const FileIdentity& file, int host_error) { gNote = {host_error, file}; }

FailedSync TakeFailedSync() { return std::exchange(gNote, {}); }

}  // namespace orzcore::platform

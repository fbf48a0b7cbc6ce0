// The note about a close that could not write its data to the disk.
#include "platform/windows/FailedFlush.h"

#include <utility>

namespace orzcore::platform {
namespace {

constinit FailedFlush gNote = {};

}  // namespace

FileIdentity::FileIdentity(HANDLE file) {
  BY_HANDLE_FILE_INFORMATION status = {};
  ::GetFileInformationByHandle(file, &status);
  volume = status.dwVolumeSerialNumber;
  index_high = status.nFileIndexHigh;
  index_low = status.nFileIndexLow;
}

void NoteFailedFlush(const FailedFlush& note) { gNote = note; }

FailedFlush TakeFailedFlush() { return std::exchange(gNote, {}); }

}  // namespace orzcore::platform

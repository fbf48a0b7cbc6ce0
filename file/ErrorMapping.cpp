// Turns error numbers of the system and of its C runtime into error codes. There are three tables,
// since some numbers have a different code in each.
#include "orzcore/file.h"
#include "platform/files.h"

namespace orzcore::file {
namespace {

struct MapRow {
  std::int64_t number;
  OZError error;
};

constexpr MapRow kSystemErrors[] = {
    {platform::kNoError, eErrNone},
    {platform::kInvalidFunction, eErrNotSupported},  // the volume has no locks
    {platform::kFileNotFound, eErrNotFound},
    {platform::kPathNotFound, eErrNotFound},
    {platform::kTooManyOpenFiles, eErrTooManyOpenFiles},
    {platform::kAccessDenied, eErrAccessDenied},
    {platform::kBadHandle, eErrInvalidData},
    {platform::kNotEnoughMemory, eErrOutOfMemory},
    {platform::kInvalidAccess, eErrAccessDenied},
    {platform::kInvalidData, eErrInvalidData},
    {platform::kOutOfMemory, eErrOutOfMemory},
    {platform::kInvalidDrive, eErrNotFound},
    {platform::kNoMoreFiles, eErrNotFound},
    {platform::kWriteProtected, eErrWriteProtected},
    {platform::kSeekFault, eErrSeek},
    {platform::kUnknownMedium, eErrInvalidData},
    {platform::kSectorNotFound, eErrInvalidData},
    {platform::kWriteFault, eErrWrite},
    {platform::kReadFault, eErrRead},
    {platform::kSharingViolation, eErrSharing},
    {platform::kLockViolation, eErrLocked},
    {platform::kSharingBufferExceeded, eErrSharing},
    {platform::kNotSupported, eErrNotSupported},
    {platform::kFileExists, eErrCannotCreate},
    {platform::kBadParameter, eErrInvalidArgument},
    {platform::kNetworkWriteFault, eErrWrite},
    {platform::kDiskFull, eErrDiskFull},
    {platform::kNegativeSeek, eErrSeek},
};

constexpr MapRow kRuntimeErrors[] = {
    {platform::kRuntimeNone, eErrNone},
    {platform::kRuntimeInvalidFunction, eErrNotSupported},
    {platform::kRuntimeNoSuchFile, eErrNotFound},
    {platform::kRuntimeNoSuchPath, eErrNotFound},
    {platform::kRuntimeTooManyOpenFiles, eErrTooManyOpenFiles},
    {platform::kRuntimeAccessDenied, eErrAccessDenied},
    {platform::kRuntimeMemoryDamaged, eErrOutOfMemory},
    {platform::kRuntimeNotEnoughMemory, eErrOutOfMemory},
    {platform::kRuntimeInvalidBlock, eErrOutOfMemory},
    {platform::kRuntimeInvalidArgument, eErrNotSupported},
    {platform::kRuntimeTooManyFilesInSystem, eErrTooManyOpenFiles},
    {platform::kRuntimeDiskFull, eErrDiskFull},
    {platform::kRuntimeOutOfRange, eErrOutOfRange},
    {platform::kRuntimeFileExists, eErrCannotCreate},
    {platform::kRuntimeLocked, eErrLocked},
    {platform::kRuntimeNotPermitted, eErrFileVersion},
};

// Status numbers from 19 on are numbers of the system. Those below are numbers of the runtime.
constexpr unsigned short kFirstSystemStatus = 19;

constexpr MapRow kStatusErrors[] = {
    {platform::kWriteProtected, eErrWriteProtected},
    {platform::kSeekFault, eErrSeek},
    {platform::kWriteFault, eErrWrite},
    {platform::kReadFault, eErrRead},
    {platform::kSharingViolation, eErrInUse},
    {platform::kLockViolation, eErrLocked},
    {platform::kSharingBufferExceeded, eErrInUse},
    {platform::kFileExists, eErrFileExists},
    {platform::kInvalidPassword, eErrWrongPassword},
    {platform::kNetworkWriteFault, eErrWrite},
};

template <std::size_t kRows>
OZError Map(const MapRow (&table)[kRows], std::int64_t number) {
  for (const MapRow& row : table) {
    if (row.number == number) return row.error;
  }
  return eErrUnknown;
}

}  // namespace
}  // namespace orzcore::file

namespace file = orzcore::file;

OZError OZFile::MapWinErrorToOZErr(std::uint32_t win_error) {
  return file::Map(file::kSystemErrors, win_error);
}

OZError OZFile::MapErrnoToOZErr(std::int32_t errno_value) {
  return file::Map(file::kRuntimeErrors, errno_value);
}

OZError OZFile::MapFinfoToOZErr(unsigned short finfo) {
  return finfo < file::kFirstSystemStatus ? MapErrnoToOZErr(finfo)
                                          : file::Map(file::kStatusErrors, finfo);
}

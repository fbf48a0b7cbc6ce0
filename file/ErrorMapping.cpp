// Numbers from below as error codes. The tables overlap but do not agree.
#include "orzcore/file.h"

namespace {

struct MapRow {
  std::int64_t number;
  OZError error;
};

constexpr MapRow kWinErrors[] = {
    {0, eErrNone},              // no error
    {1, eErrNotSupported},      // invalid function: the volume has no locks
    {2, eErrNotFound},          // file not found
    {3, eErrNotFound},          // path not found
    {4, eErrTooManyOpenFiles},  // too many open files
    {5, eErrAccessDenied},      // access denied
    {6, eErrInvalidData},       // invalid handle
    {8, eErrOutOfMemory},       // not enough memory
    {12, eErrAccessDenied},     // invalid access
    {13, eErrInvalidData},      // invalid data
    {14, eErrOutOfMemory},      // out of memory
    {15, eErrNotFound},         // invalid drive
    {18, eErrNotFound},         // no more files
    {19, eErrWriteProtected},   // write protect
    {25, eErrSeek},             // seek
    {26, eErrInvalidData},      // unknown medium
    {27, eErrInvalidData},      // sector not found
    {29, eErrWrite},            // write fault
    {30, eErrRead},             // read fault
    {32, eErrSharing},          // sharing violation
    {33, eErrLocked},           // lock violation
    {36, eErrSharing},          // sharing buffer exceeded
    {50, eErrNotSupported},     // not supported
    {80, eErrCannotCreate},     // file exists
    {87, eErrInvalidArgument},  // invalid parameter
    {88, eErrWrite},            // write fault on the network
    {112, eErrDiskFull},        // disk full
    {131, eErrSeek},            // negative seek
};

constexpr MapRow kErrnos[] = {
    {0, eErrNone},               // no error
    {1, eErrNotSupported},       // invalid function
    {2, eErrNotFound},           // no such file
    {3, eErrNotFound},           // no such path
    {4, eErrTooManyOpenFiles},   // too many open files
    {5, eErrAccessDenied},       // access denied
    {7, eErrOutOfMemory},        // memory control blocks destroyed
    {8, eErrOutOfMemory},        // not enough memory
    {9, eErrOutOfMemory},        // invalid memory block
    {19, eErrNotSupported},      // invalid argument
    {23, eErrTooManyOpenFiles},  // too many open files in the system
    {28, eErrDiskFull},          // no space left on the device
    {34, eErrOutOfRange},        // result out of range
    {35, eErrCannotCreate},      // file exists
    {36, eErrLocked},            // lock violation or deadlock
    {37, eErrFileVersion},       // operation not permitted
};

constexpr unsigned short kFirstFinfo = 19;  // below it, the runtime's numbers hold

constexpr MapRow kFinfos[] = {
    {19, eErrWriteProtected},  // write protect
    {25, eErrSeek},            // seek
    {29, eErrWrite},           // write fault
    {30, eErrRead},            // read fault
    {32, eErrInUse},           // sharing violation
    {33, eErrLocked},          // lock violation
    {36, eErrInUse},           // sharing buffer exceeded
    {80, eErrFileExists},      // file exists
    {86, eErrWrongPassword},   // invalid password
    {88, eErrWrite},           // write fault on the network
};

template <std::size_t kRows>
OZError Map(const MapRow (&table)[kRows], std::int64_t number) {
  for (const MapRow& row : table) {
    if (row.number == number) return row.error;
  }
  return eErrUnknown;
}

}  // namespace

OZError OZFile::MapWinErrorToOZErr(std::uint32_t win_error) { return Map(kWinErrors, win_error); }

OZError OZFile::MapErrnoToOZErr(std::int32_t errno_value) { return Map(kErrnos, errno_value); }

OZError OZFile::MapFinfoToOZErr(unsigned short finfo) {
  return finfo < kFirstFinfo ? MapErrnoToOZErr(finfo) : Map(kFinfos, finfo);
}

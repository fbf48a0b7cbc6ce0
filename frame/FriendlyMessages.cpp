// Turning an error into a message that a user can act on.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string_view>

#include "frame/Library.h"
#include "orzcore/frame.h"

namespace orzcore::frame {
namespace {

// The sizes of the message and of its parts, in bytes with the terminator.
constexpr unsigned int kMessageSize = 400;
constexpr unsigned int kCouldNotSize = 40;
constexpr unsigned int kReasonSize = 100;
constexpr unsigned int kAdviceSize = 200;
constexpr unsigned int kDetailSize = 82;
constexpr unsigned int kCaptionSize = 256;

struct MessageRow {
  OZError error;
  short reason;  // the id of the reason's string; the next id is that of the advice
};

constexpr MessageRow kMessages[] = {
    {eErrNoFileHandles, 8},
    {eErrRootDirectoryFull, 10},
    {eErrNoSuchFile, 12},
    {eErrNoSuchPath, 14},
    {eErrNoSuchDrive, 16},
    {eErrHardware, 18},
    {eErrNoRights, 20},
    {eErrDiskFull, 22},
    {eErrRead, 24},
    {eErrWrite, 26},
    {eErrFileVersion, 28},
    {eErrOutOfMemory, 30},
    {eErrLocked, 32},
    {eErrUnlock, 32},
    {eErrCannotCreate, 34},
    {eErrNotOpen, 36},
    {eErrNotFound, 38},
    {eErrNameTaken, 40},
    {eErrRenameAcrossDevices, 42},
    {eErrInvalidData, 42},
    {eErrCorrupted1, 42},
    {eErrCorrupted2, 42},
    {eErrCorrupted3, 42},
    {eErrCorrupted4, 42},
    {eErrCorrupted5, 42},
    {eErrDatabaseFull, 44},
    {eErrAccessDenied, 46},
    {eErrWrongPassword, 48},
    {eErrInUse, 50},
    {eErrDosTooOld, 52},
    {eErrWindowsTooOld, 54},
    {eErrOutOfRange, 56},
};
constexpr short kInternalError = 58;

short ReasonOf(OZError error) {
  for (const MessageRow& row : kMessages) {
    if (row.error == error) return row.reason;
  }
  return kInternalError;
}

// Joins the parts of a message. What does not fit is cut.
class MessageBuilder {
 public:
  void Append(std::string_view text) {
    const std::size_t count = std::min(text.size(), kMessageSize - 1 - length_);
    std::memcpy(text_ + length_, text.data(), count);
    length_ += count;
  }

  // Appends a string of the library, cut to `size` - 1 characters. A missing string counts as
  // empty.
  void AppendString(short id, unsigned int size) {
    char string[kAdviceSize] = {};
    gLibraryErrorInfo.LoadStringA(id, string, size);
    Append(string);
  }

  // Appends the line for technical support.
  void AppendDetail(const OZErrorInfo& info) {
    char detail[kDetailSize] = {};
    const int written =
        std::snprintf(detail, sizeof(detail), "\nLine: %d  File: %s  Error Code: %d  Release: %d",
                      static_cast<int>(info.mLine), info.mFile != nullptr ? info.mFile : "",
                      static_cast<int>(info.mError), static_cast<int>(info.mRelease));
    if (written > 0) Append(detail);
  }

  const char* Text() const { return text_; }

 private:
  char text_[kMessageSize] = {};
  std::size_t length_ = 0;
};

}  // namespace
}  // namespace orzcore::frame

namespace frame = orzcore::frame;

void OZErrorMgr::FriendlyErrorMsg(OZErrorInfo* info, const char* subject) {
  if (info->mError == eErrNone || info->mError == eErrSilent) return;
  const short reason = frame::ReasonOf(info->mError);
  frame::MessageBuilder message;
  message.Append(subject != nullptr ? subject : "This operation");
  message.AppendString(frame::kStringCouldNot, frame::kCouldNotSize);
  message.AppendString(reason, frame::kReasonSize);
  message.AppendString(static_cast<short>(reason + 1), frame::kAdviceSize);
  message.AppendDetail(*info);

  char caption[frame::kCaptionSize] = {};
  frame::gLibraryErrorInfo.LoadStringA(frame::kStringCompany, caption, frame::kCaptionSize);
  AlertUser(info, message.Text(), caption, kWarning);
}

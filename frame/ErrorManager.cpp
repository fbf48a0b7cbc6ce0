// Alerts: finding their texts, showing them, and holding them back in a queue.
#include <cstring>
#include <limits>
#include <memory>
#include <new>

#include "frame/Library.h"
#include "orzcore/frame.h"
#include "platform/system.h"

namespace orzcore::frame {
namespace {

constexpr unsigned int kBoxTextSize = 256;

struct BoxAnswer {
  int button;
  OZErrorMgr::Answer answer;
};

// All other buttons count as yes. A box that could not be shown counts as yes, too.
constexpr BoxAnswer kAnswers[] = {
    {2, OZErrorMgr::eAnswerCancel},
    {7, OZErrorMgr::eAnswerNo},
};

// Copies a text into a buffer of zeros, cut to the size of the buffer. A null text is empty.
void CopyInto(char (&buffer)[kBoxTextSize], const char* text) {
  if (text == nullptr) return;
  std::memcpy(buffer, text, strnlen(text, kBoxTextSize - 1));
}

int AnswerOf(int button) {
  for (const BoxAnswer& row : kAnswers) {
    if (row.button == button) return row.answer;
  }
  return OZErrorMgr::eAnswerYes;
}

bool CarriesTexts(const OZErrorInfo& info) {
  return info.mTextKind == eTextOfCaller || info.mTextKind == eTextOfQueue;
}

void SetTexts(OZErrorInfo* info, const char* text, const char* caption) {
  info->mTextKind = eTextOfCaller;
  info->mText.text = text;
  info->mCaption.text = caption;
}

// Returns a copy for the queue. It is null if the text is null or there is no memory.
std::unique_ptr<char[]> CopyText(const char* text) {
  if (text == nullptr) return nullptr;
  const std::size_t size = std::strlen(text) + 1;
  std::unique_ptr<char[]> copy(new (std::nothrow) char[size]);
  if (copy != nullptr) std::memcpy(copy.get(), text, size);
  return copy;
}

// Frees the copies that a slot owns.
void ReleaseTexts(OZErrorInfo* slot) {
  if (slot->mTextKind != eTextOfQueue) return;
  delete[] slot->mText.text;
  delete[] slot->mCaption.text;
  slot->mText.text = nullptr;
  slot->mCaption.text = nullptr;
}

// Replaces the caller's texts in a slot by copies. Returns false if there is no memory.
bool OwnTexts(OZErrorInfo* slot) {
  std::unique_ptr<char[]> text = CopyText(slot->mText.text);
  std::unique_ptr<char[]> caption = CopyText(slot->mCaption.text);
  const bool complete = (text != nullptr || slot->mText.text == nullptr) &&
                        (caption != nullptr || slot->mCaption.text == nullptr);
  if (!complete) return false;
  slot->mTextKind = eTextOfQueue;
  slot->mText.text = text.release();
  slot->mCaption.text = caption.release();
  return true;
}

}  // namespace
}  // namespace orzcore::frame

namespace frame = orzcore::frame;
namespace platform = orzcore::platform;

int OZErrorInfo::LoadStringA(short id, char* buffer, unsigned int size) const {
  const auto wide_id = static_cast<unsigned int>(int{id});
  return platform::LoadStringA(mInstance, wide_id, buffer, size) != 0 ? 0 : -1;
}

OZErrorMgr::OZErrorMgr() {
  for (OZErrorInfo& slot : mQueue) slot = OZErrorInfo(OZErrorInfo::kZero);
}

OZErrorMgr::~OZErrorMgr() {
  for (OZErrorInfo& slot : mQueue) frame::ReleaseTexts(&slot);
}

void OZErrorMgr::MutexBegin() {
  if (mMutexDepth < std::numeric_limits<unsigned short>::max()) ++mMutexDepth;
}

void OZErrorMgr::MutexEnd() {
  if (mMutexDepth == 0) return;
  --mMutexDepth;
  if (mMutexDepth != 0) return;
  // Each alert leaves its slot before it is shown. While its box is open, the program may call
  // `MutexBegin` and `MutexEnd` again, and the alerts between these calls use the free slots.
  while (mQueueCount != 0) {
    --mQueueCount;
    OZErrorInfo& slot = mQueue[mQueueCount];
    OZErrorInfo alert = slot;
    if (slot.mTextKind == eTextOfQueue) {
      slot.mText.text = nullptr;
      slot.mCaption.text = nullptr;
    }
    AlertUserNow(&alert, alert.mBoxFlags);
    frame::ReleaseTexts(&alert);
  }
}

int OZErrorMgr::AlertUser(OZErrorInfo* info, unsigned short flags) {
  if (mMutexDepth == 0) return AlertUserNow(info, flags);
  if (mQueueCount >= kQueueLength) return eAnswerYes;
  info->mBoxFlags = flags;
  OZErrorInfo copy(OZErrorInfo::kZero);
  std::memcpy(&copy, info, sizeof(copy));  // an assignment would read uninitialised fields
  if (frame::CarriesTexts(copy) && !frame::OwnTexts(&copy)) return eAnswerYes;
  mQueue[mQueueCount] = copy;
  ++mQueueCount;
  return eAnswerYes;
}

int OZErrorMgr::AlertUser(OZErrorInfo* info, const char* text, const char* caption,
                          unsigned short flags) {
  frame::SetTexts(info, text, caption);
  info->mError = eErrPlainText;
  return AlertUser(info, flags);
}

int OZErrorMgr::AlertUserNow(OZErrorInfo* info, unsigned short flags) {
  char text[frame::kBoxTextSize] = {};
  char caption[frame::kBoxTextSize] = {};
  info->mBoxFlags = flags;
  if (frame::CarriesTexts(*info)) {
    frame::CopyInto(text, info->mText.text);
    frame::CopyInto(caption, info->mCaption.text);
  } else if (info->mTextKind == eTextResource) {
    info->LoadStringA(info->mText.id, text, frame::kBoxTextSize);
    info->LoadStringA(info->mCaption.id, caption, frame::kBoxTextSize);
  }
  if (*caption == '\0') {
    frame::gLibraryErrorInfo.LoadStringA(frame::kStringCompany, caption, frame::kBoxTextSize);
  }
  const int button = platform::MessageBoxA(platform::GetActiveWindow(), text,
                                           *caption != '\0' ? caption : nullptr, flags);
  return frame::AnswerOf(button);
}

int OZErrorMgr::AlertUserNow(OZErrorInfo* info, short text, short caption, unsigned short flags) {
  info->mTextKind = eTextResource;
  info->mText.id = text;
  info->mCaption.id = caption;
  return AlertUserNow(info, flags);
}

int OZErrorMgr::AlertUserNow(OZErrorInfo* info, const char* text, const char* caption,
                             unsigned short flags) {
  frame::SetTexts(info, text, caption);
  return AlertUserNow(info, flags);
}

void OZErrorMgr::Library::AlertFileInUse() {
  AlertUserNow(&frame::gLibraryErrorInfo, frame::kStringInUse, 0, kWarning);
}

void OZErrorMgr::BeepUserNow(unsigned short type) { platform::MessageBeep(type); }

void OZErrorMgr::Trace(OZError /*error*/, const char* /*source*/, int /*line*/, int /*last*/) {}

void OZErrorMgr::Tracef(OZError /*error*/, int /*level*/, const char* /*format*/, ...) {}

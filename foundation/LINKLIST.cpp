// The intrusive list. What costs more than a few instructions is here; the rest is in the header.
#include "orzcore/foundation.h"

void IRLinkedList::Initialize() {
  mNext = this;
  mPrev = this;
  mCurrent = this;
}

IRNode* IRLinkedList::RemoveItem(IRNode* node) {
  Rewind();
  IRNode* found = Next();
  while (found != nullptr && found != node) found = Next();
  Rewind();
  if (found == nullptr) return nullptr;
  found->mPrev->mNext = found->mNext;
  found->mNext->mPrev = found->mPrev;
  return found;
}

void IRLinkedList::MergeLists(IRLinkedList* other) {
  Rewind();
  if (other->mNext == other) return;
  mPrev->mNext = other->mNext;
  other->mNext->mPrev = mPrev;
  mPrev = other->mPrev;
  mPrev->mNext = this;
  other->mNext = other;
  other->mPrev = other;
}

OZError IRLinkedList::SplitList(IRLinkedList* other, unsigned int count) {
  Rewind();
  if (other->mNext != other) {
    OZErrorMgr::Trace(eErrInvalidArgument, "LINKLIST", __LINE__, 1);
    return eErrInvalidArgument;
  }
  if (mNext == this) return count == 0 ? eErrNone : eErrInvalidArgument;
  IRNode* last = mNext;
  for (unsigned int walked = 1; walked < count; ++walked) {
    last = last->mNext;
    if (last == this) return eErrInvalidArgument;
  }
  other->mNext = mNext;
  other->mPrev = last;
  mNext->mPrev = other;
  mNext = last->mNext;
  mNext->mPrev = this;
  last->mNext = other;
  return eErrNone;
}

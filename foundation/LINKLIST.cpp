// The longer operations of the intrusive list. The short ones are in the header.
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
  Join(found->mPrev, found->mNext);
  return found;
}

void IRLinkedList::MergeLists(IRLinkedList* other) {
  Rewind();
  if (other->mNext == other) return;
  Join(mPrev, other->mNext);
  Join(other->mPrev, this);
  Join(other, other);
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
  IRNode* const rest = last->mNext;
  Join(other, mNext);
  Join(last, other);
  Join(this, rest);
  return eErrNone;
}

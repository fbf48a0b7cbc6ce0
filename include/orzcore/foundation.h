/// @file
/// Small building blocks that know nothing of the organizer: string helpers, an intrusive list and
/// discardable memory.
///
/// All texts are zero-terminated bytes in code page 1252. The string helpers neither allocate nor
/// keep state. No pointer may be null.
#pragma once

#include <cstdint>

#include "orzcore/export.h"
#include "orzcore/frame.h"

/// Compares two texts without regard to case, accented letters included: both are lower-cased by
/// the rules of code page 1252 and compared as unsigned bytes. The characters between Z and a sort
/// before the letters.
///
/// @return -1 if a sorts before b, 1 if it sorts after b, 0 if they count as equal
ORZCORE_API int Ansiicmp(const char* a, const char* b);

/// Compares the first `count` bytes of two texts as `Ansiicmp` does.
///
/// @return -1, 0 or 1; 0 for a count of 0
ORZCORE_API int Ansinicmp(const char* a, const char* b, unsigned short count);

extern "C" {

/// Compares two texts without regard to the case of the letters A to Z: both are upper-cased and
/// compared as unsigned bytes. The characters between Z and a sort after the letters.
///
/// @return -1 if a sorts before b, 1 if it sorts after b, 0 if they count as equal
ORZCORE_API int stricmp(const char* a, const char* b);

/// Compares the first `count` bytes of two texts as `stricmp` does.
///
/// @return -1, 0 or 1; 0 for a count of 0
ORZCORE_API int strnicmp(const char* a, const char* b, std::uint32_t count);

}  // extern "C"

/// Adds 1 to the decimal number at the end of a text, in place. The first character never changes,
/// so a carry into it is lost: A99 becomes A00. From the right, each character from 9 up to code
/// 126 becomes 0 and carries; the first other one, a digit or not, goes up by 1 and ends the carry:
/// A- becomes A. (full stop).
ORZCORE_API void IncrementAsciiNumber(char* text);

/// Finds the first byte of a block that differs from a value.
///
/// @param block  the bytes to search
/// @param value  its low 8 bits are the value
/// @param count  bytes to search; a negative count returns `block` without reading it
/// @return the first different byte, or null if there is none
ORZCORE_API const unsigned char* Memchr_ne(const unsigned char* block, short value, short count);

/// Moves `count` bytes from `source` to `destination`, which may overlap, and writes a terminator
/// behind them. A terminator in the source does not end the move.
///
/// @param destination  room for `count` + 1 bytes
/// @param count        0 or above; with a negative count nothing is written
ORZCORE_API void Strextr(char* destination, const char* source, short count);

/// Copies a text up to its terminator or up to `maximum` bytes, whichever comes first.
///
/// @param destination  room for `maximum` bytes, and for one more if `terminate` is not 0
/// @param maximum      0 or less copies nothing
/// @param terminate    if not 0, one terminator follows the last copied byte; otherwise none is
///                     written. Nothing is padded.
ORZCORE_API void String_copy(char* destination, const char* source, short maximum, int terminate);

/// Removes every blank from a text, in place, and every comma too if `commas` is not 0. No other
/// white space is touched.
ORZCORE_API void Strip(char* text, int commas);

/// The links of an object that can be on a list. A listed object derives from it first, so that a
/// pointer to the object is a pointer to its node.
class IRNode {
 protected:
  IRNode* mNext;  ///< next node on the ring; the links mean nothing while the node is on no list
  IRNode* mPrev;  ///< previous node on the ring

  friend class IRLinkedList;
};

/// An intrusive, circular, doubly linked list with a cursor. The list is the sentinel of its own
/// ring; being on a list costs no allocation.
///
/// The list owns nothing: the caller keeps the nodes alive while they are listed, and they are
/// untouched when the list dies. A node is on one list at a time. `Initialize` comes before any
/// other operation, unless the list is constant-initialised by `IRLinkedList(kEmpty)`.
///
/// Every operation that changes the list resets its cursor first.
class ORZCORE_API IRLinkedList : public IRNode {
 public:
  /// Asks a constructor for an empty list.
  enum Empty { kEmpty };

  /// A list to be initialised with `Initialize`.
  IRLinkedList() = default;

  /// An empty list, ready for use before any constructor has run.
  explicit constexpr IRLinkedList(Empty /*empty*/) : mCurrent(this) {
    mNext = this;
    mPrev = this;
  }

  IRLinkedList(const IRLinkedList&) = delete;
  IRLinkedList& operator=(const IRLinkedList&) = delete;

  /// Makes the list empty, whatever it held.
  void Initialize();

  /// Adds a node as the first.
  void AddToHead(IRNode* node) {
    IRNode* const first = mNext;
    Rewind();
    Link(node, this, first);
  }

  /// Adds a node as the last.
  void AddToTail(IRNode* node) {
    IRNode* const last = mPrev;
    Rewind();
    Link(node, last, this);
  }

  /// Moves the cursor to the next node and returns it: the first one after a reset. Returns null at
  /// the end, where the cursor stays on the last node.
  IRNode* Next() {
    IRNode* const next = mCurrent->mNext;
    if (next == this) return nullptr;
    mCurrent = next;
    return next;
  }

  /// Moves the cursor to the previous node and returns it: the last one after a reset. Returns null
  /// at the start, where the cursor stays on the first node.
  IRNode* Prev() {
    IRNode* const previous = mCurrent->mPrev;
    if (previous == this) return nullptr;
    mCurrent = previous;
    return previous;
  }

  /// Removes the first node, clears its links and returns it. Returns null if the list is empty.
  IRNode* RemoveFromHead() {
    IRNode* const node = mNext;
    Rewind();
    if (node == this) return nullptr;
    IRNode* const next = node->mNext;
    Clear(node);
    next->mPrev = this;
    mNext = next;  // last, so that a loop finds it in a register
    return node;
  }

  /// Removes the last node, clears its links and returns it. Returns null if the list is empty.
  IRNode* RemoveFromTail() {
    IRNode* const node = mPrev;
    Rewind();
    if (node == this) return nullptr;
    IRNode* const previous = node->mPrev;
    Clear(node);
    previous->mNext = this;
    mPrev = previous;  // likewise
    return node;
  }

  /// Searches the list for a node and removes it, leaving the node's own links as they were.
  ///
  /// @return the node, or null if it is not on this list
  IRNode* RemoveItem(IRNode* node);

  /// Moves all nodes of another list behind those of this one, in constant time. The other list's
  /// cursor stays where it was: its owner calls `Rewind` before the next walk.
  void MergeLists(IRLinkedList* other);

  /// Moves the first nodes of this list to another one, which must be empty. The other list's
  /// cursor stays where it was: its owner calls `Rewind` before the next walk.
  ///
  /// @param count  how many nodes; 0 moves one node as 1 does, or none if this list is empty
  /// @return 0; 215 if the other list is not empty or this one is too short, and nothing is moved
  OZError SplitList(IRLinkedList* other, unsigned int count);

  /// Resets the cursor, so that `Next` returns the first node and `Prev` the last.
  void Rewind() { mCurrent = this; }

 protected:
  IRNode* mCurrent;  ///< the node that `Next` or `Prev` returned last, or the list itself

 private:
  static void Join(IRNode* previous, IRNode* next) {
    previous->mNext = next;
    next->mPrev = previous;
  }

  static void Link(IRNode* node, IRNode* previous, IRNode* next) {
    Join(previous, node);
    Join(node, next);
  }

  static void Clear(IRNode* node) {
    node->mNext = nullptr;
    node->mPrev = nullptr;
  }
};

/// One block of memory that the system may throw away when memory runs short, as long as it is not
/// locked. A new block, and one that replaces a discarded one, reads as zeros.
class ORZCORE_API IRDiscardableMemory {
 public:
  /// No block, of size 0. It needs `AllocateMemory` before it can be locked.
  IRDiscardableMemory();

  /// @param size      bytes
  /// @param allocate  if not 0, the block is allocated now; if that fails or with 0, `LockMemory`
  ///                  allocates it
  IRDiscardableMemory(std::uint32_t size, int allocate);

  /// Unlocks the block if it is locked, and frees it.
  ~IRDiscardableMemory();

  IRDiscardableMemory(const IRDiscardableMemory&) = delete;
  IRDiscardableMemory& operator=(const IRDiscardableMemory&) = delete;

  /// Allocates a block of `size` bytes in place of the present one, which must not be locked.
  ///
  /// @return 0, or 111 if there is no memory: there is no block then, and the size is as before
  OZError AllocateMemory(std::uint32_t size);

  /// Returns 1 if there is a block, discarded or not, else 0.
  int IsAllocated() const;

  /// Returns 1 if there is no block or its content is lost, else 0. While the block is unlocked the
  /// answer may change at any moment.
  int IsDiscarded() const;

  /// Locks the block, so that `mPointer` is valid until the matching `UnlockMemory`. A discarded
  /// block is replaced by a new one; ask `IsDiscarded` before if the content matters.
  ///
  /// @return 0, or 111 if there is no memory or the size is 0
  OZError LockMemory();

  /// Takes back one `LockMemory`. At the last one the block becomes discardable again.
  void UnlockMemory();

  void* mPointer;  ///< the block while it is locked, else null

 protected:
  std::uint32_t mSize;       ///< bytes of the block
  std::uint32_t mLockCount;  ///< how many times it is locked
  void* mHandle;             ///< the block, or null
};

/// @file
/// General building blocks: string helpers, an intrusive list and discardable memory.
///
/// All texts are zero-terminated bytes in code page 1252. The string helpers do not allocate memory
/// and keep no state. No pointer may be null.
#pragma once

#include <cstddef>
#include <cstdint>

#include "orzcore/export.h"
#include "orzcore/frame.h"

/// Compares two texts and ignores case, also of accented letters. Both are converted to lower case
/// by code page 1252 and compared as unsigned bytes, so the characters between Z and a sort before
/// the letters.
///
/// @return -1 if `a` sorts before `b`, 1 if it sorts after `b`, 0 if they count as equal
ORZCORE_API int Ansiicmp(const char* a, const char* b);

/// Compares the first `count` bytes of two texts as `Ansiicmp` does.
///
/// @return -1, 0 or 1; 0 for a count of 0
ORZCORE_API int Ansinicmp(const char* a, const char* b, unsigned short count);

extern "C" {

/// Compares two texts and ignores the case of the letters A to Z. Both are converted to upper case
/// and compared as unsigned bytes, so the characters between Z and a sort after these letters.
///
/// @return -1 if `a` sorts before `b`, 1 if it sorts after `b`, 0 if they count as equal
ORZCORE_API int stricmp(const char* a, const char* b);

/// Compares the first `count` bytes of two texts as `stricmp` does.
///
/// @return -1, 0 or 1; 0 for a count of 0
ORZCORE_API int strnicmp(const char* a, const char* b, std::size_t count);

}  // extern "C"

/// Adds 1 to the decimal number at the end of a text, in place: A09 becomes A10.
///
/// It begins with the last character and goes to the left, but never changes the first character:
/// A99 becomes A00. A character from 9 to code 126 becomes 0, and the character to its left is
/// next. Any other character is replaced by the character with the next code, and the operation
/// ends: A3 becomes A4, and A- becomes "A." with a full stop. Code 255 becomes a terminator, so the
/// text ends there.
ORZCORE_API void IncrementAsciiNumber(char* text);

/// Finds the first byte of a block that differs from a value.
///
/// @param block  the bytes to search
/// @param value  the value, in its low 8 bits
/// @param count  bytes to search
/// @return the first different byte, or null if there is none; `block` if `count` is negative
ORZCORE_API const unsigned char* Memchr_ne(const unsigned char* block, short value, short count);

/// Copies exactly `count` bytes, and writes a terminator after them. A terminator among the bytes
/// is copied like any other byte. The two buffers may overlap.
///
/// @param destination  room for `count` + 1 bytes
/// @param source       the bytes to copy
/// @param count        bytes to copy; with a negative count nothing is written
ORZCORE_API void Strextr(char* destination, const char* source, short count);

/// Copies a text without its terminator, but at most `maximum` bytes.
///
/// @param destination  room for `maximum` bytes, and for one more if `terminate` is not 0
/// @param source       the text to copy
/// @param maximum      the most bytes to copy; 0 or less copies nothing
/// @param terminate    if not 0, a terminator is written after the last copied byte
ORZCORE_API void String_copy(char* destination, const char* source, short maximum, int terminate);

/// Removes all blanks from a text, in place, and all commas too if `commas` is not 0. Tabs and
/// other white space remain.
ORZCORE_API void Strip(char* text, int commas);

/// The links of an object that can be on a list. Such an object has this as its first base class,
/// so a pointer to the object is also a pointer to its node.
class IRNode {
 protected:
  IRNode* mNext;  ///< the next node; meaningful only while the node is on a list
  IRNode* mPrev;  ///< the previous node; meaningful only while the node is on a list

  /// Returns whether the node is on a list: its neighbours are linked to it. Must not be called for
  /// a node that was never on a list, or that left its list by `RemoveItem` and whose former
  /// neighbours are destroyed.
  bool IsLinked() const { return mNext != nullptr && mNext->mPrev == this && mPrev->mNext == this; }

  /// Removes the node from its list, in constant time. The cursor of the list must have been reset
  /// before. The links of the node itself do not change.
  void Unlink() {
    mPrev->mNext = mNext;
    mNext->mPrev = mPrev;
  }

  friend class IRLinkedList;
};

/// An intrusive, circular, doubly linked list with a cursor. No operation allocates memory.
///
/// The list owns nothing. The caller keeps the nodes alive while they are on the list; destroying
/// the list does not change them. A node can be on one list at a time. Call `Initialize` before any
/// other operation, or make the list with `IRLinkedList(kEmpty)`.
///
/// Every operation that changes the list resets its cursor, as `Rewind` does.
class ORZCORE_API IRLinkedList : public IRNode {
 public:
  /// The argument of the constructor that makes an empty list.
  enum Empty { kEmpty };

  /// Makes an uninitialised list: call `Initialize` before anything else.
  IRLinkedList() = default;

  /// Makes an empty list. A static list made in this way (`constinit`) can be used before any
  /// constructor has run.
  explicit constexpr IRLinkedList(Empty /*empty*/) : mCurrent(this) {
    mNext = this;
    mPrev = this;
  }

  IRLinkedList(const IRLinkedList&) = delete;
  IRLinkedList& operator=(const IRLinkedList&) = delete;

  /// Makes the list empty. Nodes that were on it are not changed.
  void Initialize();

  /// Adds a node at the head of the list.
  void AddToHead(IRNode* node) {
    IRNode* const first = mNext;
    Rewind();
    Link(node, this, first);
  }

  /// Adds a node at the tail of the list.
  void AddToTail(IRNode* node) {
    IRNode* const last = mPrev;
    Rewind();
    Link(node, last, this);
  }

  /// Moves the cursor to the next node and returns that node. After a reset it is the first node.
  /// After the last node it returns null, and the cursor stays on the last node.
  IRNode* Next() {
    IRNode* const next = mCurrent->mNext;
    if (next == this) return nullptr;
    mCurrent = next;
    return next;
  }

  /// Moves the cursor to the previous node and returns that node. After a reset it is the last
  /// node. Before the first node it returns null, and the cursor stays on the first node.
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
    mNext = next;  // written last: in a loop of calls it is then still in a register
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
    mPrev = previous;  // written last, as above
    return node;
  }

  /// Searches the list for a node and removes it. The links of the node itself do not change.
  ///
  /// @return the node, or null if it is not on this list
  IRNode* RemoveItem(IRNode* node);

  /// Moves all nodes of another list to the tail of this one, in constant time. The cursor of the
  /// other list is not reset: call its `Rewind` before walking it again.
  ///
  /// @param other  the other list, empty afterwards
  void MergeLists(IRLinkedList* other);

  /// Moves the first nodes of this list to another one. The cursor of the other list is not reset:
  /// call its `Rewind` before walking it again.
  ///
  /// @param other  the other list, which must be empty
  /// @param count  how many nodes to move; 0 moves one node as 1 does, or none if this list is
  ///               empty
  /// @return `eErrNone` (0); `eErrInvalidArgument` (215) if the other list is not empty or this one
  ///         has fewer nodes, and then nothing is moved
  OZError SplitList(IRLinkedList* other, unsigned int count);

  /// Resets the cursor: the next call of `Next` returns the first node, and of `Prev` the last.
  void Rewind() { mCurrent = this; }

 protected:
  IRNode* mCurrent;  ///< the cursor: the node that was returned last, or this list after a reset

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

/// A block of memory that the system may discard when memory runs short, while it is not locked. A
/// new block contains zeros, even if it replaces a discarded one.
class ORZCORE_API IRDiscardableMemory {
 public:
  /// Makes an object without a block. Call `AllocateMemory` before `LockMemory`.
  IRDiscardableMemory();

  /// Makes an object for a block of `size` bytes.
  ///
  /// @param size      bytes of the block
  /// @param allocate  if not 0, the block is allocated now. If it is 0 or the allocation fails,
  ///                  `LockMemory` allocates the block.
  IRDiscardableMemory(std::uint32_t size, int allocate);

  /// Frees the block, even if it is locked.
  ~IRDiscardableMemory();

  IRDiscardableMemory(const IRDiscardableMemory&) = delete;
  IRDiscardableMemory& operator=(const IRDiscardableMemory&) = delete;

  /// Frees the block, which must not be locked, and allocates a new one.
  ///
  /// @param size  bytes of the new block
  /// @return `eErrNone` (0); `eErrOutOfMemory` (111) if there is no memory. Then the object has no
  ///         block, and its size is unchanged.
  OZError AllocateMemory(std::uint32_t size);

  /// Returns 1 if the object has a block, discarded or not, else 0.
  int IsAllocated() const;

  /// Returns 1 if there is no block or if it has been discarded, else 0. While the block is not
  /// locked, it may be discarded at any moment after the call.
  int IsDiscarded() const;

  /// Locks the block: `mPointer` is valid until the matching `UnlockMemory`. A missing or discarded
  /// block is replaced by a new one, and the call returns 0 as usual. To detect a new block, write
  /// a mark into the content: a new block does not have it.
  ///
  /// @return `eErrNone` (0); `eErrOutOfMemory` (111) if there is no memory or the size is 0
  OZError LockMemory();

  /// Undoes one `LockMemory`. After the last one, the system may discard the block, and `mPointer`
  /// is null. Does nothing if the block is not locked.
  void UnlockMemory();

  void* mPointer;  ///< the address of the block while it is locked, else null

 protected:
  std::uint32_t mSize;       ///< bytes of the block
  std::uint32_t mLockCount;  ///< how many times the block is locked
  void* mHandle;             ///< the handle of the block, or null
};

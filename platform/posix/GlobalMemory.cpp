// Blocks of memory that the kernel may take while they are not locked. docs/internals.md explains
// how a taken page is noticed: "Discardable memory".
#include <sys/mman.h>
#include <unistd.h>

#include <atomic>
#include <cstddef>
#include <memory>
#include <new>

#include "platform/system.h"

namespace orzcore::platform {
namespace {

constexpr unsigned int kSupportedFlags = kGlobalMovable | kGlobalZeroFilled | kGlobalDiscardable;

// The first word of each page while the kernel may take the page. A page that it took reads as
// zeros.
constexpr std::uint64_t kMark = ~std::uint64_t{0};

// Pages of zeros that belong to one block alone.
class Mapping {
 public:
  explicit Mapping(std::size_t size)
      : size_(size),
        address_(mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)) {}
  ~Mapping() {
    if (Exists()) munmap(address_, size_);
  }
  Mapping(const Mapping&) = delete;
  Mapping& operator=(const Mapping&) = delete;

  bool Exists() const { return address_ != MAP_FAILED; }
  void* Address() const { return address_; }

  // The first word of the page that begins at `offset`. The host maps whole pages, so every block
  // except an empty one has it.
  std::atomic_ref<std::uint64_t> WordAt(std::size_t offset) const {
    return std::atomic_ref(
        *reinterpret_cast<std::uint64_t*>(static_cast<char*>(address_) + offset));
  }

  // Lets the kernel take each page until somebody writes to the page. If the call fails, the kernel
  // takes none, and nothing is lost.
  void Offer() const { madvise(address_, size_, MADV_FREE); }

 private:
  std::size_t size_;
  void* address_;
};

class Block {
 public:
  explicit Block(std::size_t size)
      : page_size_(static_cast<std::size_t>(sysconf(_SC_PAGESIZE))),
        page_count_(size / page_size_ + (size % page_size_ == 0 ? 0 : 1)),
        state_(size == 0 ? State::kDiscarded : State::kWhole),
        saved_words_(new (std::nothrow) std::uint64_t[page_count_]),
        mapping_(size) {}

  // Returns true if there was memory for every part of the block.
  bool IsComplete() const {
    return saved_words_ != nullptr && (page_count_ == 0 || mapping_.Exists());
  }

  bool IsDiscarded() const {
    return state_ == State::kDiscarded || (state_ == State::kOffered && MissesPage());
  }

  void* Lock() {
    if (state_ == State::kOffered) state_ = TakeBack() ? State::kWhole : State::kDiscarded;
    if (state_ == State::kDiscarded) return nullptr;
    ++lock_count_;
    return mapping_.Address();
  }

  bool Unlock() {
    if (lock_count_ == 0) return false;
    --lock_count_;
    if (lock_count_ == 0) Offer();
    return lock_count_ > 0;
  }

 private:
  enum class State {
    kWhole,     // new or locked: the content is complete
    kOffered,   // unlocked: each page begins with a mark, and `saved_words_` has the words
    kDiscarded  // final: a block never leaves this state
  };

  void Offer() {
    for (std::size_t page = 0; page < page_count_; ++page) {
      saved_words_[page] = WordOf(page).exchange(kMark, std::memory_order_relaxed);
    }
    mapping_.Offer();
    state_ = State::kOffered;
  }

  // One exchange both reads the mark and writes the word, since the kernel may take a page between
  // a read and a write.
  bool TakeBack() {
    for (std::size_t page = 0; page < page_count_; ++page) {
      if (WordOf(page).exchange(saved_words_[page]) != kMark) return false;
    }
    return true;
  }

  bool MissesPage() const {
    for (std::size_t page = 0; page < page_count_; ++page) {
      if (WordOf(page).load() != kMark) return true;
    }
    return false;
  }

  std::atomic_ref<std::uint64_t> WordOf(std::size_t page) const {
    return mapping_.WordAt(page * page_size_);
  }

  std::size_t page_size_;
  std::size_t page_count_;
  State state_;
  std::uint32_t lock_count_ = 0;
  // Allocated together with the block, so that unlocking cannot fail.
  std::unique_ptr<std::uint64_t[]> saved_words_;
  Mapping mapping_;
};

Block* BlockOf(void* handle) { return static_cast<Block*>(handle); }

}  // namespace

void* GlobalAlloc(unsigned int flags, std::uint32_t size) {
  if (flags != kSupportedFlags) return nullptr;
  std::unique_ptr<Block> block(new (std::nothrow) Block(size));
  if (block == nullptr || !block->IsComplete()) return nullptr;
  return block.release();
}

void* GlobalFree(void* block) {
  delete BlockOf(block);
  return nullptr;
}

void* GlobalLock(void* block) { return BlockOf(block)->Lock(); }

int GlobalUnlock(void* block) { return BlockOf(block)->Unlock() ? 1 : 0; }

unsigned int GlobalFlags(void* block) {
  return BlockOf(block)->IsDiscarded() ? kGlobalDiscarded : 0;
}

}  // namespace orzcore::platform

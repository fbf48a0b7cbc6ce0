#include "support/FailingNew.h"

#include <cstdlib>
#include <new>

namespace {

bool gFailing = false;
int gAllowed = 0;

void* Allocate(std::size_t size) {
  if (gFailing && gAllowed-- <= 0) return nullptr;
  return std::malloc(size);
}

}  // namespace

FailingNew::FailingNew(int allowed) {
  gFailing = true;
  gAllowed = allowed;
}
FailingNew::~FailingNew() { gFailing = false; }

void* operator new(std::size_t size) {
  void* const block = Allocate(size);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}
void* operator new[](std::size_t size) { return operator new(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void operator delete(void* block) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t) noexcept { std::free(block); }

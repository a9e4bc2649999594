#include "kit/guarded.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <new>

namespace qx::test {

PageEnd::PageEnd(std::size_t capacity) {
  const std::size_t page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  const std::size_t data = (capacity + 16 + page - 1) / page * page;
  mapped_ = data + page;
  void* p = mmap(nullptr, mapped_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (p == MAP_FAILED) throw std::bad_alloc();
  base_ = static_cast<std::uint8_t*>(p);
  end_ = base_ + data;
  if (mprotect(end_, page, PROT_NONE) != 0) throw std::bad_alloc();
}

PageEnd::~PageEnd() { munmap(base_, mapped_); }

std::uint8_t* PageEnd::place(std::size_t bytes, std::size_t offset) const {
  const std::uintptr_t last = reinterpret_cast<std::uintptr_t>(end_) - bytes;
  const std::uintptr_t at = ((last - (offset & 15)) & ~std::uintptr_t{15}) + (offset & 15);
  return reinterpret_cast<std::uint8_t*>(at);
}

Guarded::Guarded(std::size_t bytes, std::size_t offset)
    : storage_(bytes + 2 * kGuard + 128, kMarker), bytes_(bytes) {
  const std::uintptr_t start = reinterpret_cast<std::uintptr_t>(storage_.data()) + kGuard;
  const std::uintptr_t at = ((start + 63) & ~std::uintptr_t{63}) + (offset & 63);
  data_ = reinterpret_cast<std::uint8_t*>(at);
}

bool Guarded::guards_intact() const {
  const std::uint8_t* begin = storage_.data();
  const std::uint8_t* end = begin + storage_.size();
  auto marker = [](std::uint8_t b) { return b == kMarker; };
  const std::uint8_t* data = data_;
  return std::all_of(begin, data, marker) && std::all_of(data + bytes_, end, marker);
}

}  // namespace qx::test

#include "kit/guarded.h"

#if defined(_WIN32)
#include <windows.h>
#else
#include <sys/mman.h>
#include <unistd.h>
#endif

#include <algorithm>
#include <cstdint>
#include <new>

namespace qx::test {

namespace {

std::size_t page_size() {
#if defined(_WIN32)
  SYSTEM_INFO info;
  GetSystemInfo(&info);
  return info.dwPageSize;
#else
  return static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
#endif
}

// `bytes` (whole pages) of fresh read-write memory, then the page at `bytes` made inaccessible.
std::uint8_t* map_with_guard(std::size_t bytes, std::size_t page) {
#if defined(_WIN32)
  void* p = VirtualAlloc(nullptr, bytes + page, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
  DWORD old;
  if (!p || !VirtualProtect(static_cast<std::uint8_t*>(p) + bytes, page, PAGE_NOACCESS, &old))
    throw std::bad_alloc();
#else
  void* p = mmap(nullptr, bytes + page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (p == MAP_FAILED || mprotect(static_cast<std::uint8_t*>(p) + bytes, page, PROT_NONE) != 0)
    throw std::bad_alloc();
#endif
  return static_cast<std::uint8_t*>(p);
}

}  // namespace

PageEnd::PageEnd(std::size_t capacity) {
  const std::size_t page = page_size();
  const std::size_t data = (capacity + 16 + page - 1) / page * page;
  mapped_ = data + page;
  base_ = map_with_guard(data, page);
  end_ = base_ + data;
}

PageEnd::~PageEnd() {
#if defined(_WIN32)
  VirtualFree(base_, 0, MEM_RELEASE);
#else
  munmap(base_, mapped_);
#endif
}

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

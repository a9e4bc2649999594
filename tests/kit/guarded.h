// Memory that catches out-of-bounds access in tests.
//   PageEnd: lines that end just before an inaccessible page, so any read past the last byte the
//            contract allows faults.
//   Guarded: an output buffer with marker bytes before and after it that must come back untouched.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace qx::test {

class PageEnd {
 public:
  explicit PageEnd(std::size_t capacity);  // bytes that can be placed before the guard page
  ~PageEnd();
  PageEnd(const PageEnd&) = delete;
  PageEnd& operator=(const PageEnd&) = delete;

  // Room for `bytes` bytes starting at an address that is `offset` mod 16 and ending at most 15
  // bytes before the inaccessible page (exactly at it when the two agree).
  std::uint8_t* place(std::size_t bytes, std::size_t offset = 0) const;
  template <class T>
  T* place_as(std::size_t n, std::size_t offset = 0) const {
    return reinterpret_cast<T*>(place(n * sizeof(T), offset));
  }
  // Room for `bytes` bytes that end exactly at the inaccessible page.
  std::uint8_t* flush(std::size_t bytes) const { return end_ - bytes; }

 private:
  std::uint8_t* base_ = nullptr;
  std::size_t mapped_ = 0;
  std::uint8_t* end_ = nullptr;  // first inaccessible byte
};

class Guarded {
 public:
  static constexpr std::size_t kGuard = 64;
  static constexpr std::uint8_t kMarker = 0xA5;

  // `bytes` writable bytes at an address that is `offset` mod 64, every byte set to kMarker.
  Guarded(std::size_t bytes, std::size_t offset);
  std::uint8_t* data() { return data_; }
  template <class T>
  T* as() {
    return reinterpret_cast<T*>(data_);
  }
  // True when both guard zones still hold only markers.
  bool guards_intact() const;

 private:
  std::vector<std::uint8_t> storage_;
  std::uint8_t* data_;
  std::size_t bytes_;
};

}  // namespace qx::test

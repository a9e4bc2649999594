// What the fuzz targets share: reading the fuzzer's choices, exact-size buffers, and reporting a
// difference.
//
// Every buffer a target hands to a kernel is a heap block of exactly the bytes the kernel's
// contract lets it touch, ending at the block's end, so that AddressSanitizer faults any read or
// write past the documented extent; the few bytes in front of a misaligned buffer are poisoned
// too, as far as the sanitizer's 8-byte granules allow.
#pragma once

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <functional>
#include <new>
#include <random>
#include <string>
#include <vector>

#include "frame/isa.h"

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#include <sanitizer/asan_interface.h>
#define QX_FUZZ_POISON(p, n) ASAN_POISON_MEMORY_REGION(p, n)
#define QX_FUZZ_UNPOISON(p, n) ASAN_UNPOISON_MEMORY_REGION(p, n)
#endif
#endif
#ifndef QX_FUZZ_POISON
#define QX_FUZZ_POISON(p, n) static_cast<void>(0)
#define QX_FUZZ_UNPOISON(p, n) static_cast<void>(0)
#endif

namespace qx::fuzz {

using Input = FuzzedDataProvider;

// `bytes` bytes at an address that is `offset` mod 16, ending exactly at the end of its heap block.
// Zero bytes give a pointer that may not be dereferenced at all.
class Buffer {
 public:
  Buffer(std::size_t bytes, std::size_t offset)
      : offset_(offset % 16),
        bytes_(bytes),
        base_(static_cast<std::uint8_t*>(::operator new (offset_ + bytes, std::align_val_t{16}))) {
    QX_FUZZ_POISON(base_, offset_);
  }
  ~Buffer() {
    QX_FUZZ_UNPOISON(base_, offset_);
    ::operator delete (base_, std::align_val_t{16});
  }
  Buffer(const Buffer&) = delete;
  Buffer& operator=(const Buffer&) = delete;

  std::uint8_t* data() const { return base_ + offset_; }
  template <class T>
  T* as() const {
    return reinterpret_cast<T*>(data());
  }
  std::size_t size() const { return bytes_; }
  std::vector<std::uint8_t> contents() const { return {data(), data() + bytes_}; }
  void assign(const std::vector<std::uint8_t>& from) const {
    if (!from.empty()) std::memcpy(data(), from.data(), std::min(bytes_, from.size()));
  }

 private:
  std::size_t offset_, bytes_;
  std::uint8_t* base_;
};

// `n` bytes of test data: as many as the input still has, the rest from a generator seeded by it,
// with the edge values 0, 1, 254 and 255 common.
inline std::vector<std::uint8_t> bytes(Input& in, std::size_t n) {
  std::vector<std::uint8_t> out = in.ConsumeBytes<std::uint8_t>(n);
  std::mt19937 rng(in.ConsumeIntegral<std::uint32_t>() ^ static_cast<std::uint32_t>(n));
  static constexpr std::uint8_t kEdges[] = {0, 1, 254, 255};
  while (out.size() < n) {
    const std::uint32_t r = rng();
    out.push_back((r & 3u) == 0 ? kEdges[(r >> 2) & 3u] : static_cast<std::uint8_t>(r >> 8));
  }
  return out;
}

// A misalignment mod 16 that the input picks among the multiples of `align`.
inline std::size_t offset(Input& in, std::size_t align) {
  return align * in.ConsumeIntegralInRange<std::size_t>(0, 16 / align - 1);
}

// A count mostly in the range where the group, vector and tail boundaries lie, sometimes anywhere
// at or below zero.
inline std::int32_t count(Input& in, std::int32_t most) {
  if (in.ConsumeIntegralInRange(0, 63) == 0)
    return in.ConsumeIntegralInRange<std::int32_t>(INT32_MIN, 0);
  return in.ConsumeIntegralInRange<std::int32_t>(-9, most);
}

// Stops the run with a description of the first byte where `got` differs from `want`.
inline void expect_same(const std::vector<std::uint8_t>& got, const std::vector<std::uint8_t>& want,
                        const std::string& kernel, const std::string& form, const char* what) {
  if (got == want) return;
  std::size_t i = 0;
  while (i < got.size() && i < want.size() && got[i] == want[i]) ++i;
  std::fprintf(stderr, "%s/%s: %s differs from the scalar form at byte %zu of %zu\n",
               kernel.c_str(), form.c_str(), what, i, want.size());
  __builtin_trap();
}

// One form of a kernel (or its export) behind the export's calling shape.
template <class Fn>
struct Named {
  std::string name;
  Isa isa;  // what the processor must support to run it
  std::function<Fn> fn;
};

// A kernel's forms in order, the scalar form first, then its export.
template <class Fn, std::size_t N>
std::vector<Named<Fn>> listed(const Form<Fn> (&forms)[N], Fn* exported) {
  std::vector<Named<Fn>> out;
  for (const Form<Fn>& f : forms) out.push_back({isa_name(f.isa), f.isa, f.fn});
  out.push_back({"export", Isa::kScalar, exported});
  return out;
}

// Runs `call(form, dst)` for every form this processor runs, each on a fresh exact-size output of
// `dst_bytes` at misalignment `dst_offset` that holds `prior`, and expects every output to equal
// the first (the scalar form's).
template <class Fn, class Call>
void expect_forms_agree(const std::vector<Named<Fn>>& forms, const std::string& kernel,
                        std::size_t dst_bytes, std::size_t dst_offset,
                        const std::vector<std::uint8_t>& prior, Call call) {
  std::vector<std::uint8_t> want;
  for (const Named<Fn>& f : forms) {
    if (!cpu_supports(f.isa)) continue;
    Buffer dst(dst_bytes, dst_offset);
    dst.assign(prior);
    call(f.fn, dst.data());
    if (&f == &forms.front())
      want = dst.contents();
    else
      expect_same(dst.contents(), want, kernel, f.name, "output");
  }
}

}  // namespace qx::fuzz

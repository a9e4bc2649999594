// The catalogue of line kernels: every kernel that walks a line through the shared frame, with all
// its forms behind one calling shape, so that one differential test and one benchmark serve them
// all. A kernel joins with one line in catalog.cpp.
#pragma once

#include <cstdint>
#include <functional>
#include <random>
#include <span>
#include <string>
#include <vector>

#include "frame/isa.h"

namespace qx::harness {

// The buffers and scalar arguments of one call, whatever the kernel's argument order.
struct LineCall {
  std::uint32_t* dst;
  const std::uint32_t* in[2];  // pixel inputs in argument order (bg, fg / src1, src2 / src)
  const std::uint8_t* mask;
  const std::uint8_t* lut;
  std::uint32_t param;  // fill value, opacity or weight
  std::int32_t count;
};

struct LineForm {
  std::string name;  // the form's instruction set, or "export" for the exported entry point
  Isa isa;
  std::function<void(const LineCall&)> run;
  bool supported() const { return cpu_supports(isa); }
};

struct LineKernel {
  std::string name;  // the export's name without the qx_ prefix
  int inputs = 0;    // pixel input lines
  bool mask = false;
  bool lut = false;
  bool param = false;
  std::vector<LineForm> forms;  // forms[0] is the scalar form, the reference for the others
  std::size_t chosen = 0;       // forms[chosen] is what the export runs here (qx::best_form)
};

// Calling shapes, keyed by the function type of a kernel's forms.
template <class Fn>
struct Signature;
template <>
struct Signature<void(std::uint32_t*, std::uint32_t, std::int32_t)> {  // fill
  static constexpr int inputs = 0;
  static constexpr bool mask = false, lut = false, param = true;
  template <class F>
  static void call(F* f, const LineCall& c) {
    f(c.dst, c.param, c.count);
  }
};
template <>
struct Signature<void(std::uint32_t*, const std::uint32_t*, std::int32_t)> {  // dst, src, count
  static constexpr int inputs = 1;
  static constexpr bool mask = false, lut = false, param = false;
  template <class F>
  static void call(F* f, const LineCall& c) {
    f(c.dst, c.in[0], c.count);
  }
};
template <>
struct Signature<void(std::uint32_t*, const std::uint32_t*, const std::uint8_t*, std::int32_t)> {
  static constexpr int inputs = 1;  // dst, src, mask, count
  static constexpr bool mask = true, lut = false, param = false;
  template <class F>
  static void call(F* f, const LineCall& c) {
    f(c.dst, c.in[0], c.mask, c.count);
  }
};
template <>
struct Signature<void(std::uint32_t*, const std::uint32_t*, const std::uint32_t*, std::uint32_t,
                      std::int32_t)> {  // dst, src1, src2, weight, count
  static constexpr int inputs = 2;
  static constexpr bool mask = false, lut = false, param = true;
  template <class F>
  static void call(F* f, const LineCall& c) {
    f(c.dst, c.in[0], c.in[1], c.param, c.count);
  }
};
template <>
struct Signature<void(std::uint32_t*, const std::uint32_t*, const std::uint32_t*, std::int32_t)> {
  static constexpr int inputs = 2;  // blend families: dst, bg, fg, count
  static constexpr bool mask = false, lut = false, param = false;
  template <class F>
  static void call(F* f, const LineCall& c) {
    f(c.dst, c.in[0], c.in[1], c.count);
  }
};
template <>
struct Signature<void(std::uint32_t*, const std::uint32_t*, const std::uint32_t*, std::int32_t,
                      std::uint32_t)> {  // _t
  static constexpr int inputs = 2;
  static constexpr bool mask = false, lut = false, param = true;
  template <class F>
  static void call(F* f, const LineCall& c) {
    f(c.dst, c.in[0], c.in[1], c.count, c.param);
  }
};
template <>
struct Signature<void(std::uint32_t*, const std::uint32_t*, const std::uint32_t*, std::int32_t,
                      const std::uint8_t*)> {  // _m
  static constexpr int inputs = 2;
  static constexpr bool mask = true, lut = false, param = false;
  template <class F>
  static void call(F* f, const LineCall& c) {
    f(c.dst, c.in[0], c.in[1], c.count, c.mask);
  }
};
template <>
struct Signature<void(std::uint32_t*, const std::uint32_t*, const std::uint32_t*, std::int32_t,
                      const std::uint8_t*, std::uint32_t)> {  // _mt
  static constexpr int inputs = 2;
  static constexpr bool mask = true, lut = false, param = true;
  template <class F>
  static void call(F* f, const LineCall& c) {
    f(c.dst, c.in[0], c.in[1], c.count, c.mask, c.param);
  }
};
template <>
struct Signature<void(std::uint32_t*, const std::uint32_t*, const std::uint32_t*, std::int32_t,
                      const std::uint8_t*, const std::uint8_t*, std::uint32_t)> {  // _mlt
  static constexpr int inputs = 2;
  static constexpr bool mask = true, lut = true, param = true;
  template <class F>
  static void call(F* f, const LineCall& c) {
    f(c.dst, c.in[0], c.in[1], c.count, c.mask, c.lut, c.param);
  }
};

// A kernel's forms, followed by its exported entry point (which runs the form chosen for this
// processor), all behind one calling shape.
template <class Fn, std::size_t N>
LineKernel line_kernel(std::string name, const Form<Fn> (&forms)[N], Fn* exported) {
  using S = Signature<Fn>;
  LineKernel k{std::move(name), S::inputs, S::mask, S::lut, S::param, {}};
  for (const Form<Fn>& f : forms) {
    Fn* fn = f.fn;
    if (fn == best_form(forms)) k.chosen = k.forms.size();
    k.forms.push_back({isa_name(f.isa), f.isa, [fn](const LineCall& c) { S::call(fn, c); }});
  }
  k.forms.push_back(
      {"export", Isa::kScalar, [exported](const LineCall& c) { S::call(exported, c); }});
  return k;
}

// Every line kernel of the library.
const std::vector<LineKernel>& line_kernels();
const LineKernel& line_kernel_named(const std::string& name);

// ---- test data ----

using Rng = std::mt19937;

// Random pixels with the edge values mixed in: about one byte in four is 0, 1, 254 or 255, so
// alpha 0 and 255 and saturated channels are common.
void random_pixels(std::span<std::uint32_t> out, Rng& rng);
// Random bytes (masks, tables) with the same edge values mixed in.
void random_bytes(std::span<std::uint8_t> out, Rng& rng);

}  // namespace qx::harness

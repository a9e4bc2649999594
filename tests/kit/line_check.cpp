#include "kit/line_check.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstring>
#include <functional>
#include <numeric>
#include <sstream>
#include <vector>

#include "kit/guarded.h"

namespace qx::test {
namespace {

constexpr std::int32_t kLongest = 1923;

std::vector<std::int32_t> counts() {
  std::vector<std::int32_t> c = {INT32_MIN};
  for (std::int32_t n = -9; n <= 70; ++n) c.push_back(n);
  for (std::int32_t n = 1920; n <= kLongest; ++n) c.push_back(n);
  return c;
}

// Opacities and weights around every clamp and scale boundary, and beyond 256 as unsigned.
constexpr std::uint32_t kParams[] = {
    0,   1,   2,    127,        128,        129,        254,        255,
    256, 257, 1000, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF, 0x80FF0000, 0x12345678};

std::uint32_t fnv(const std::string& s) {
  std::uint32_t h = 2166136261u;
  for (char ch : s) h = (h ^ static_cast<std::uint8_t>(ch)) * 16777619u;
  return h;
}

}  // namespace

std::string check_line_form(const harness::LineKernel& k, const harness::LineForm& form) {
  harness::Rng rng(fnv(k.name));
  const harness::LineForm& scalar = k.forms.front();
  const PageEnd in_pages[2] = {PageEnd(4 * kLongest + 64), PageEnd(4 * kLongest + 64)};
  const PageEnd mask_page(kLongest + 64);

  std::vector<std::uint32_t> src[2];
  std::vector<std::uint8_t> mask, lut(256);
  std::vector<std::uint32_t> ref;
  std::size_t param_at = 0;

  for (const std::int32_t count : counts()) {
    const std::size_t n = static_cast<std::size_t>(std::max(count, 0));
    // Masks are readable up to the next whole group of four.
    const std::size_t mask_bytes = (n + 3) / 4 * 4;
    for (auto& s : src) {
      s.resize(n + 4);
      harness::random_pixels(s, rng);
    }
    mask.resize(mask_bytes);
    harness::random_bytes(mask, rng);
    switch (count & 3) {  // tables: mostly random, sometimes identity or all zero
      case 1:
        std::iota(lut.begin(), lut.end(), std::uint8_t{0});
        break;
      case 2:
        harness::random_bytes(lut, rng);
        break;
      case 3:
        std::fill(lut.begin(), lut.end(), std::uint8_t{0});
        break;
      default:
        harness::random_bytes(lut, rng);
        break;
    }
    std::uint8_t* m = mask_page.flush(mask_bytes);
    std::copy(mask.begin(), mask.end(), m);

    const int pointers = 1 + k.inputs;
    const int combos = 1 << (2 * pointers);  // 4 misalignments per pointer
    for (int combo = 0; combo < combos; ++combo) {
      const std::uint32_t param = kParams[param_at++ % std::size(kParams)];
      const std::size_t dst_off = 4 * (combo & 3);
      // count <= 0 reads nothing, so a null mask must do.
      harness::LineCall call{
          nullptr, {nullptr, nullptr}, count > 0 ? m : nullptr, lut.data(), param, count};
      for (int i = 0; i < k.inputs; ++i) {
        const std::size_t off = 4 * ((combo >> (2 * (i + 1))) & 3);
        auto* line = in_pages[i].place_as<std::uint32_t>(n, off);
        std::memcpy(line, src[i].data(), 4 * n);
        call.in[i] = line;
      }

      ref.assign(n + 4, 0);
      harness::LineCall ref_call = call;
      ref_call.dst = ref.data();
      scalar.run(ref_call);

      // Separate output, then dst aliasing each input in turn.
      for (int alias = -1; alias < k.inputs; ++alias) {
        if (alias >= 0 && combo != 0 && n < 1920 && count % 5 != 0) continue;  // in-place: a sample
        Guarded out(4 * n, dst_off);
        harness::LineCall c = call;
        c.dst = out.as<std::uint32_t>();
        if (alias >= 0) {
          std::memcpy(out.data(), src[alias].data(), 4 * n);
          c.in[alias] = c.dst;
        }
        form.run(c);
        std::ostringstream where;
        where << k.name << "/" << form.name << " count " << count << " dst+" << dst_off << " combo "
              << combo << " param " << param;
        if (alias >= 0) where << " in place on input " << alias;
        if (!out.guards_intact()) return where.str() + ": wrote outside dst";
        for (std::size_t i = 0; i < n; ++i) {
          if (c.dst[i] != ref[i]) {
            std::ostringstream s;
            s << where.str() << ": pixel " << i << " is 0x" << std::hex << c.dst[i]
              << ", scalar gives 0x" << ref[i];
            return s.str();
          }
        }
      }
    }
  }
  return {};
}

}  // namespace qx::test

// The differential fuzz of the line kernels that walk the shared frame (the catalogue in
// harness/catalog.h): the input picks a kernel, a count, the misalignment of every line, in-place
// use, the opacity or weight (all 32 bits), the mask, the table and the pixels; every form this
// processor runs and the export must give the scalar form's bytes, touching nothing outside the
// lines, the mask up to its next multiple of four bytes, and the 256-byte table.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "catalog.h"
#include "fuzz_kit.h"

namespace qx::fuzz {

inline std::vector<const harness::LineKernel*> line_kernels_named(
    std::initializer_list<const char*> names) {
  std::vector<const harness::LineKernel*> out;
  for (const char* name : names) out.push_back(&harness::line_kernel_named(name));
  return out;
}

inline void fuzz_line_kernel(Input& in, const harness::LineKernel& k) {
  const std::int32_t n_count = count(in, 1100);
  const std::size_t n = n_count > 0 ? static_cast<std::size_t>(n_count) : 0;
  const std::uint32_t param = in.ConsumeIntegral<std::uint32_t>();
  const int alias = in.ConsumeIntegralInRange(-1, k.inputs - 1);  // dst is this input line
  const bool null_mask = n == 0 && in.ConsumeBool();              // count <= 0 reads no mask

  std::vector<std::uint8_t> pixels[2];
  std::unique_ptr<Buffer> lines[2];
  for (int i = 0; i < k.inputs; ++i) {
    pixels[i] = bytes(in, 4 * n);
    lines[i] = std::make_unique<Buffer>(4 * n, offset(in, 4));
    lines[i]->assign(pixels[i]);
  }
  const Buffer mask(k.mask ? (n + 3) / 4 * 4 : 0, offset(in, 1));
  mask.assign(bytes(in, mask.size()));
  const Buffer lut(k.lut ? 256 : 0, offset(in, 1));
  lut.assign(bytes(in, lut.size()));
  const std::vector<std::uint8_t> prior = bytes(in, 4 * n);
  const std::size_t dst_offset = offset(in, 4);

  harness::LineCall call{nullptr,
                         {k.inputs > 0 ? lines[0]->as<std::uint32_t>() : nullptr,
                          k.inputs > 1 ? lines[1]->as<std::uint32_t>() : nullptr},
                         k.mask && !null_mask ? mask.data() : nullptr,
                         k.lut ? lut.data() : nullptr,
                         param,
                         n_count};
  // Runs a form with dst separate (alias < 0) or on input line `alias`; returns dst.
  const auto run = [&](const harness::LineForm& f, int on) {
    Buffer dst(4 * n, dst_offset);
    harness::LineCall c = call;
    c.dst = dst.as<std::uint32_t>();
    dst.assign(on < 0 ? prior : pixels[on]);
    if (on >= 0) c.in[on] = c.dst;
    f.run(c);
    return dst.contents();
  };
  const char* what = alias < 0 ? "output" : "in-place output";
  std::vector<std::uint8_t> want;
  for (const harness::LineForm& f : k.forms) {
    if (!f.supported()) continue;
    const bool reference = &f == &k.forms.front();
    if (reference) want = run(f, -1);
    if (!reference || alias >= 0) expect_same(run(f, alias), want, k.name, f.name, what);
  }
}

}  // namespace qx::fuzz

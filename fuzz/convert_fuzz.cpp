// The conversions: qx_argb2ayuv and qx_ayuv2argb (see line_fuzz.h), and qx_v210yuv422p10, whose
// source is exactly the (count + 5) / 6 blocks holding the line's pixels and whose output is
// exactly its three planes (nothing for an odd or non-positive count); every form and the export
// against the scalar form.
#include "convert/convert.h"
#include "line_fuzz.h"
#include "qxpixlib.h"

namespace qx::fuzz {
namespace {

void fuzz_v210(Input& in) {
  static const auto forms = listed(v210yuv422p10_forms, qx_v210yuv422p10);
  const std::int32_t n = count(in, 1300);
  const bool unpacks = n > 0 && n % 2 == 0;
  const std::size_t pixels = unpacks ? static_cast<std::size_t>(n) : 0;
  const Buffer src(16 * ((pixels + 5) / 6), offset(in, 4));
  src.assign(bytes(in, src.size()));
  const std::size_t dst_offset = offset(in, 2);
  expect_forms_agree(forms, "v210yuv422p10", 4 * pixels, dst_offset, bytes(in, 4 * pixels),
                     [&](const auto& fn, std::uint8_t* dst) {
                       fn(reinterpret_cast<std::uint16_t*>(dst), src.as<std::uint32_t>(), n);
                     });
}

}  // namespace
}  // namespace qx::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const auto kernels = qx::fuzz::line_kernels_named({"argb2ayuv", "ayuv2argb"});
  qx::fuzz::Input in(data, size);
  const std::size_t pick = in.ConsumeIntegralInRange<std::size_t>(0, kernels.size());
  if (pick == kernels.size())
    qx::fuzz::fuzz_v210(in);
  else
    qx::fuzz::fuzz_line_kernel(in, *kernels[pick]);
  return 0;
}

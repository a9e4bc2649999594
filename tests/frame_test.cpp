// The library frame: ReciprocalTable, the no-op entry and qx_fill's bytes. (The loop frame's
// bounds, tail and mask contract: line_forms_test and family_test, through every kernel.)
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "frame/fill.h"
#include "frame/reciprocal.h"
#include "kit/guarded.h"
#include "qxpixlib.h"

extern "C" void qx_c_call_stub_as_converter(std::uint32_t* dst, const std::uint32_t* src,
                                            std::int32_t count);

namespace qx::test {
namespace {

TEST(Frame, ReciprocalTable) {
  struct {
    int index;
    std::uint16_t value;
  } const cases[] = {{0, 0}, {1, 65535}, {2, 32767}, {3, 21845}, {4, 16383}, {255, 257}};
  for (auto c : cases) EXPECT_EQ(ReciprocalTable[c.index], c.value) << c.index;
}

// Hosts call the stub as a converter (dst, src, count); nothing may be written.
TEST(Frame, StubConvertsNothing) {
  Guarded g(64, 0);
  const std::uint32_t src[16] = {0x11223344};
  qx_pixinit();
  qx_c_call_stub_as_converter(g.as<std::uint32_t>(), src, 16);
  EXPECT_TRUE(g.guards_intact());
  for (int i = 0; i < 64; ++i) EXPECT_EQ(g.data()[i], Guarded::kMarker);
}

TEST(Fill, StoresTheValueAsMemoryBytes) {
  for (const auto& form : fill_forms) {
    if (!cpu_supports(form.isa)) continue;
    Guarded g(4 * 5, 4);
    form.fn(g.as<std::uint32_t>(), 0x80FF0000u, 5);  // half-transparent red
    const std::uint8_t px[4] = {0x00, 0x00, 0xFF, 0x80};
    for (int i = 0; i < 5; ++i)
      EXPECT_EQ(std::memcmp(g.data() + 4 * i, px, 4), 0) << isa_name(form.isa);
    EXPECT_TRUE(g.guards_intact());
  }
}

}  // namespace
}  // namespace qx::test

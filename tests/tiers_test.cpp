// The tier cap, QXPIXLIB_MAX_ISA: its names, and the form every export chose under the cap this
// process runs with. CTest runs the suite's export tests once per tier with the cap set
// (CMakeLists.txt), so each tier's forms are proven through the exports as a host on such a
// processor calls them.
#include <gtest/gtest.h>

#include <cctype>
#include <cstdlib>
#include <string>
#include <vector>

#include "alpha/alpha.h"
#include "blend/blend.h"
#include "convert/convert.h"
#include "frame/fill.h"
#include "frame/isa.h"
#include "lblend/lblend.h"
#include "sblend/sblend.h"
#include "scale/linzoom.h"
#include "scale/resample.h"

namespace qx::test {
namespace {

const char* cap_variable() { return std::getenv("QXPIXLIB_MAX_ISA"); }

// Under a cap that names a tier this processor lacks, the run would only repeat a lower tier's.
class TierEnvironment : public testing::Environment {
 public:
  void SetUp() override {
    Isa cap;
    const char* name = cap_variable();
    if (name && isa_from_name(name, cap) && !cpu_supports(cap))
      GTEST_SKIP() << "SKIPPED: this processor lacks the " << name << " tier";
  }
};
[[maybe_unused]] testing::Environment* const kTierEnvironment =
    testing::AddGlobalTestEnvironment(new TierEnvironment);

// The tiers, in order, as far as they have names.
std::vector<Isa> tiers() {
  std::vector<Isa> all;
  for (int i = 0; std::string(isa_name(static_cast<Isa>(i))) != "?"; ++i)
    all.push_back(static_cast<Isa>(i));
  return all;
}

TEST(TierCap, TakesEveryTierNameInAnyCase) {
  for (const Isa isa : tiers()) {
    std::string name = isa_name(isa);
    for (const bool upper : {false, true}) {
      if (upper)
        for (char& c : name) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
      Isa parsed = Isa::kScalar;
      EXPECT_TRUE(isa_from_name(name.c_str(), parsed)) << name;
      EXPECT_EQ(parsed, isa) << name;
    }
  }
  for (const char* unknown : {"", "sse", "sse22", "avx-512", "avx2 ", " scalar", "native"}) {
    Isa parsed = Isa::kSse2;
    EXPECT_FALSE(isa_from_name(unknown, parsed)) << '"' << unknown << '"';
    EXPECT_EQ(parsed, Isa::kSse2) << '"' << unknown << '"';
  }
}

// Expects the form chosen for kForms to be the best one at or below `cap` that this processor runs.
template <const auto& kForms>
void expect_chosen(const char* forms_name, Isa cap) {
  const auto chosen_fn = chosen<kForms>();
  Isa want = Isa::kScalar, got = Isa::kScalar;
  bool listed = false;
  for (const auto& f : kForms) {
    if (f.isa <= cap && cpu_supports(f.isa)) want = f.isa;
    if (f.fn == chosen_fn) got = f.isa, listed = true;
  }
  EXPECT_TRUE(listed) << forms_name;
  EXPECT_EQ(std::string(isa_name(got)), isa_name(want)) << forms_name;
}

// Every forms list an export calls through, as M(list).
#define QX_FORMS_LISTS(M) \
  M(fill_forms)           \
  M(argb2ayuv_forms)      \
  M(ayuv2argb_forms)      \
  M(v210yuv422p10_forms)  \
  M(blend_forms)          \
  M(blend_t_forms)        \
  M(blend_m_forms)        \
  M(blend_mt_forms)       \
  M(blend_mlt_forms)      \
  M(lblend_forms)         \
  M(lblend_t_forms)       \
  M(lblend_m_forms)       \
  M(lblend_mt_forms)      \
  M(lblend_mlt_forms)     \
  M(sblend_forms)         \
  M(sblend_t_forms)       \
  M(sblend_m_forms)       \
  M(sblend_mt_forms)      \
  M(sblend_mlt_forms)     \
  M(alpha_forms)          \
  M(mask_forms)           \
  M(lin_pix_forms)        \
  M(zoom_in2x1d_forms)    \
  M(zoom_in2x2d_forms) M(scale_1d_forms) M(scale_horz_forms) M(zoom_out_forms)

// The cap this process runs under decides every export's form: a cap that did not reach the choice
// (or chose above it) fails here rather than pass silently with the top tier's forms.
TEST(TierCap, EveryExportUsesTheBestFormAtOrBelowTheCap) {
  Isa cap = tiers().back();  // unset or unknown: no cap
  if (const char* name = cap_variable()) isa_from_name(name, cap);
  EXPECT_EQ(max_isa(), cap);
#define QX_EXPECT_CHOSEN(forms) expect_chosen<forms>(#forms, cap);
  QX_FORMS_LISTS(QX_EXPECT_CHOSEN)
#undef QX_EXPECT_CHOSEN
}

// Every export has a form for each vector instruction set this build has: a form left out of its
// list would pass every other test, the export running a lower one. The first set is the
// architecture's baseline (SSE2, NEON), which every processor runs.
TEST(TierCap, EveryExportHasAFormForEachVectorSet) {
#define QX_VECTOR_ISA_(ns, isa, unused) Isa::isa,
  const std::vector<Isa> sets = {QX_FOR_EACH_VECTOR_ISA(QX_VECTOR_ISA_, 0)};
#undef QX_VECTOR_ISA_
  if (!sets.empty()) {
    EXPECT_TRUE(cpu_supports(sets.front())) << isa_name(sets.front());
  }
  const auto expect_every_set = [&](const auto& forms, const char* forms_name) {
    for (const Isa isa : sets) {
      bool listed = false;
      for (const auto& f : forms) listed = listed || f.isa == isa;
      EXPECT_TRUE(listed) << forms_name << " has no " << isa_name(isa) << " form";
    }
  };
#define QX_EXPECT_EVERY_SET(forms) expect_every_set(forms, #forms);
  QX_FORMS_LISTS(QX_EXPECT_EVERY_SET)
#undef QX_EXPECT_EVERY_SET
}

}  // namespace
}  // namespace qx::test

// qxpix names the form each export runs from its own table of forms (it sees only the public
// interface); the table must list exactly the library's forms, and the pick must be the library's.
#include "tiers.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>

#include "alpha/alpha.h"
#include "blend/blend.h"
#include "convert/convert.h"
#include "frame/fill.h"
#include "lblend/lblend.h"
#include "sblend/sblend.h"
#include "scale/linzoom.h"
#include "scale/resample.h"

namespace {

struct Forms {
  std::set<std::string> tiers;
  std::string chosen;  // the tier of the form qx::chosen runs on this processor
};

template <const auto& kForms>
Forms forms_of() {
  Forms f;
  const auto fn = qx::chosen<kForms>();
  for (const auto& form : kForms) {
    f.tiers.insert(qx::isa_name(form.isa));
    if (form.fn == fn) f.chosen = qx::isa_name(form.isa);
  }
  return f;
}

// Each export that does work, with the forms list its export calls through.
std::map<std::string, Forms> library_forms() {
#define QX_FAMILY_ROWS(base)                                                                       \
  {"qx_" #base, forms_of<qx::base##_forms>()}, {"qx_" #base "_t", forms_of<qx::base##_t_forms>()}, \
      {"qx_" #base "_m", forms_of<qx::base##_m_forms>()},                                          \
      {"qx_" #base "_mt", forms_of<qx::base##_mt_forms>()}, {                                      \
    "qx_" #base "_mlt", forms_of<qx::base##_mlt_forms>()                                           \
  }
  return {
      {"qx_fill", forms_of<qx::fill_forms>()},
      {"qx_argb2ayuv", forms_of<qx::argb2ayuv_forms>()},
      {"qx_ayuv2argb", forms_of<qx::ayuv2argb_forms>()},
      {"qx_v210yuv422p10", forms_of<qx::v210yuv422p10_forms>()},
      QX_FAMILY_ROWS(blend),
      QX_FAMILY_ROWS(lblend),
      QX_FAMILY_ROWS(sblend),
      {"qx_alpha", forms_of<qx::alpha_forms>()},
      {"qx_mask", forms_of<qx::mask_forms>()},
      {"qx_lin_pix", forms_of<qx::lin_pix_forms>()},
      {"qx_zoom_in2x1d", forms_of<qx::zoom_in2x1d_forms>()},
      {"qx_zoom_in2x2d", forms_of<qx::zoom_in2x2d_forms>()},
      {"qx_scale_1d", forms_of<qx::scale_1d_forms>()},
      {"qx_scale_horz", forms_of<qx::scale_horz_forms>()},
      {"qx_zoom_outNx", forms_of<qx::zoom_out_forms>()},
  };
#undef QX_FAMILY_ROWS
}

TEST(QxpixTiers, TableListsTheLibrarysFormsAndPicksAsItDoes) {
  std::map<std::string, Forms> table;
  for (const qxpix::ExportTiers& e : qxpix::kExportTiers) {
    Forms& f = table[std::string(e.name)];
    for (int t = 0; t < qxpix::kTierCount; ++t)
      if (e.tiers >> t & 1) f.tiers.insert(std::string(qxpix::kTierNames[t]));
    f.chosen = qxpix::tier_name(qxpix::chosen_tier(e.name));
  }
  const std::map<std::string, Forms> library = library_forms();
  ASSERT_EQ(table.size(), library.size());
  for (const auto& [name, forms] : library) {
    SCOPED_TRACE(name);
    ASSERT_TRUE(table.count(name));
    EXPECT_EQ(table[name].tiers, forms.tiers);
    EXPECT_EQ(table[name].chosen, forms.chosen);
  }
}

TEST(QxpixTiers, NamesMatchTheLibrarys) {
  for (int t = 0; t < qxpix::kTierCount; ++t)
    EXPECT_EQ(qxpix::kTierNames[t], qx::isa_name(static_cast<qx::Isa>(t)));
}

}  // namespace

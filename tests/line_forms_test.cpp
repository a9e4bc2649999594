// Every form of every line kernel against its scalar form (see kit/line_check.h).
#include <gtest/gtest.h>

#include "catalog.h"
#include "kit/line_check.h"

namespace qx::test {
namespace {

struct FormCase {
  const harness::LineKernel* kernel;
  std::size_t form;
};

std::vector<FormCase> all_forms() {
  std::vector<FormCase> cases;
  for (const harness::LineKernel& k : harness::line_kernels())
    for (std::size_t f = 0; f < k.forms.size(); ++f) cases.push_back({&k, f});
  return cases;
}

void PrintTo(const FormCase& c, std::ostream* os) {
  *os << c.kernel->name << "/" << c.kernel->forms[c.form].name;
}

class LineForms : public testing::TestWithParam<FormCase> {};

TEST_P(LineForms, MatchScalarForm) {
  const auto& [kernel, form_index] = GetParam();
  const harness::LineForm& form = kernel->forms[form_index];
  if (!form.supported()) GTEST_SKIP() << form.name << " is not supported on this processor";
  EXPECT_EQ(check_line_form(*kernel, form), "");
}

INSTANTIATE_TEST_SUITE_P(All, LineForms, testing::ValuesIn(all_forms()),
                         [](const testing::TestParamInfo<FormCase>& info) {
                           return info.param.kernel->name + "_" +
                                  info.param.kernel->forms[info.param.form].name;
                         });

}  // namespace
}  // namespace qx::test

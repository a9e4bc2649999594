// Differential checking of a line kernel's forms against its scalar form.
#pragma once

#include <cstdint>
#include <string>

#include "catalog.h"

namespace qx::test {

// Runs form `form` of `kernel` on random lines for counts from -9 to 70, 1920 to 1923 and
// INT32_MIN, with dst and every input at each 16-byte misalignment of 0, 4, 8 and 12, in-place on
// each input, inputs and masks ending right before an inaccessible page (a null mask when
// count <= 0, which reads nothing), and the extra arguments varied (edge opacities and weights,
// random masks, random, identity and zero tables). Each output must
// equal the scalar form's byte for byte and leave the guard zones around dst untouched.
// Returns an empty string on success, else a description of the first difference.
std::string check_line_form(const harness::LineKernel& kernel, const harness::LineForm& form);

}  // namespace qx::test

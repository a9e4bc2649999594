// The line kernels of the harness catalogue, every form, one call per row: on a 1920-pixel line
// and on a 1920x1080 frame.
#include "bench.h"
#include "catalog.h"

namespace qxbench {

using qx::harness::LineCall;
using qx::harness::LineForm;
using qx::harness::LineKernel;

void add_line_kernels() {
  for (const LineKernel& k : qx::harness::line_kernels()) {
    for (const Mode mode : {Mode::kLine, Mode::kFrame}) {
      const int rows = rows_of(mode);
      const Row row{k.name, "", mode, mode == Mode::kLine ? "1920" : "1920x1080",
                    double{kWidth} * rows};
      add_memcpy(row, std::size_t{4} * kWidth);
      if (k.inputs == 2) add_stream(row);
      for (std::size_t i = 0; i < k.forms.size(); ++i) {
        const LineForm& f = k.forms[i];
        if (f.name == "export" || !f.supported()) continue;
        Entry e = make_entry(row, Role::kForm, f.name, [&f, rows] {
          const Buffers& b = buffers();
          for (int y = 0; y < rows; ++y) {
            const std::size_t at = std::size_t{kWidth} * y;
            f.run(LineCall{b.dst + at, {b.a + at, b.b + at}, b.mask + at, b.lut, 200, kWidth});
          }
        });
        e.chosen = i == k.chosen;
        add(std::move(e));
      }
    }
  }
}

}  // namespace qxbench

// The benchmark's catalogue of measurements: every form of every kernel, the memcpy and stream
// references and the peers, in two modes, each tagged with the summary row it belongs to.
//
// Modes: kLine runs one 1920-pixel line (cache-resident after the first iteration); kFrame runs a
// 1920x1080 picture line by line. Kernels that change the size (zoom, scale) take 1920-pixel
// source lines and count their output pixels.
//
// Benchmark names: BM_<kernel>/<label>/<size>, <label> a form's name, "memcpy", "stream" or a
// peer's "library:function".
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "frame/isa.h"

namespace qxbench {

inline constexpr int kWidth = 1920;
inline constexpr int kHeight = 1080;

enum class Mode { kLine, kFrame };

inline int rows_of(Mode mode) { return mode == Mode::kLine ? 1 : kHeight; }

enum class Role {
  kMemcpy,  // memcpy of the kernel's output bytes: the speed of light for the job
  kStream,  // two lines read and one written with no arithmetic: the speed of light for a blend
  kForm,    // one form of the kernel
  kPeer,    // another library doing the same or a related job
};

// One summary row in one mode: a kernel (the export's name without qx_) and a case of it with its
// own row ("x2" for scale_1d), or "".
struct Row {
  std::string kernel, variant;
  Mode mode;
  std::string size;
  double pixels;  // output pixels per iteration
};

struct Entry {
  std::string kernel, variant;  // as in Row
  Mode mode;
  Role role;
  std::string label;          // see the names above
  std::string size;           // the last part of the benchmark's name
  double pixels;              // output pixels per iteration
  std::function<void()> run;  // one iteration
  bool chosen = false;        // kForm: the form the export runs on this processor
  std::string note;           // kPeer: how its result differs from the kernel's

  std::string name() const { return "BM_" + kernel + "/" + label + "/" + size; }
  std::string row() const { return variant.empty() ? kernel : kernel + " " + variant; }
};

inline Entry make_entry(const Row& row, Role role, std::string label, std::function<void()> run) {
  return {row.kernel, row.variant, row.mode,       role,  std::move(label),
          row.size,   row.pixels,  std::move(run), false, {}};
}

// Our kernels, in the order of the summary rows.
void add_line_kernels();
void add_picture_kernels();

// Registers every entry with Google Benchmark: line mode first, then frame mode, each row's
// references, forms and peers together. Peers take the size and pixel count of their row.
void register_benchmarks();

// Every entry, in the order registered (valid after register_benchmarks()).
const std::vector<Entry>& entries();

// ---- adding entries ----------------------------------------------------------------------------

void add(Entry entry);

// memcpy of `bytes_per_row` bytes for each of `rows` rows (the mode's rows when 0).
void add_memcpy(const Row& row, std::size_t bytes_per_row, int rows = 0);
// Two 1920-pixel lines read and one written for each of the mode's rows.
void add_stream(const Row& row);
// A peer beside our row `kernel variant` in `mode`; may be called from a static initialiser.
void add_peer(std::string kernel, std::string variant, Mode mode, std::string label,
              std::string note, std::function<void()> run);

// Every form of `forms` this processor runs, `call(fn)` making one iteration with form fn. The form
// qx::best_form picks is the one the export calls.
template <class Fn, std::size_t N, class Call>
void add_forms(const Row& row, const qx::Form<Fn> (&forms)[N], Call call) {
  Fn* const chosen = qx::best_form(forms);
  for (const qx::Form<Fn>& f : forms) {
    if (!qx::cpu_supports(f.isa)) continue;
    Entry e = make_entry(row, Role::kForm, qx::isa_name(f.isa), [call, fn = f.fn] { call(fn); });
    e.chosen = f.fn == chosen;
    add(std::move(e));
  }
}

// ---- data --------------------------------------------------------------------------------------

// Random inputs and room for any output, shared by every measurement. Every buffer starts 16 bytes
// past a 64-byte boundary, as a large malloc block does: rows are 16-byte aligned but not 32- or
// 64-byte aligned (a 1920-pixel row is a whole number of cache lines, so every row alike).
struct Buffers {
  std::uint32_t* a;     // 3840 x 2160 random pixels; the first 1920 x 1080 are the picture input
  std::uint32_t* b;     // 1920 x 1080 random pixels: the second input of two-input kernels
  std::uint32_t* dst;   // 3840 x 2160 pixels of output
  std::uint8_t* mask;   // 1920 x 1080 random bytes
  std::uint8_t* lut;    // 256 random bytes
  std::uint8_t* plane;  // 3 x 1920 x 1080 random bytes: planar inputs and outputs of peers
};
const Buffers& buffers();

}  // namespace qxbench

// Pictures in the library's pixel layout, and their files: PNG in and out, written so that a
// failed or interrupted run never leaves a partial file under the name the user asked for.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace qxpix {

// Something the user must hear about: the file (or option) it concerns and what is wrong with it.
// Printed as one line, "qxpix: <subject>: <problem>".
struct Failure : std::runtime_error {
  Failure(std::string subject, const std::string& problem)
      : std::runtime_error(problem), subject(std::move(subject)) {}
  std::string subject;
};

struct FreeDeleter {
  void operator()(void* p) const { std::free(p); }
};

// A 2-D array of samples. By default rows each start on a 64-byte boundary: `stride` (in samples)
// is a whole number of 64-byte blocks, so every row may be read and written in whole 16-byte
// vectors up to the next multiple of 16 bytes (a mask row, read 4 bytes at a time, is always
// readable to the next multiple of 4 pixels). Samples past `width` are zero when allocated.
template <class T>
struct Grid {
  int width = 0, height = 0;
  std::ptrdiff_t stride = 0;
  std::unique_ptr<T[], FreeDeleter> data;

  Grid() = default;
  Grid(int w, int h) : Grid(w, h, (w + kBlock - 1) / kBlock * kBlock) {}
  // Rows exactly `row_stride` samples apart (a packed block when it equals w); only the first
  // row is then sure to be 64-byte aligned.
  Grid(int w, int h, std::ptrdiff_t row_stride) : width(w), height(h), stride(row_stride) {
    const std::size_t used = sizeof(T) * static_cast<std::size_t>(stride) * std::max(h, 1);
    const std::size_t bytes = std::max<std::size_t>((used + 63) / 64 * 64, 64);
    data.reset(static_cast<T*>(std::aligned_alloc(64, bytes)));
    if (!data) throw std::bad_alloc();
    std::fill_n(data.get(), bytes / sizeof(T), T{});
  }
  static constexpr std::ptrdiff_t kBlock = 64 / sizeof(T);

  T* row(int y) { return data.get() + stride * y; }
  const T* row(int y) const { return data.get() + stride * y; }
};

// 32-bit pixels: bytes B, G, R, A in memory (or U, Y, V, A for AYUV pictures).
using Picture = Grid<std::uint32_t>;
// One byte per pixel: masks and lookup tables.
using Bytes = Grid<std::uint8_t>;
// 16-bit samples: the planes unpacked from v210.
using Plane16 = Grid<std::uint16_t>;

// A file written under a temporary name in the target's directory and renamed over the target
// only by commit(): until then the target is untouched, and a destroyed, uncommitted OutputFile
// removes its temporary. Errors name the target.
class OutputFile {
 public:
  explicit OutputFile(std::string target);
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  FILE* stream() { return stream_; }
  const std::string& temp_path() const { return temp_; }
  const std::string& target() const { return target_; }
  // Closes the stream (if still open) and renames the temporary over the target.
  void commit();
  // Closes the stream, for a writer that reopens the temporary by name.
  void close_stream();

 private:
  std::string target_, temp_;
  FILE* stream_ = nullptr;
  bool done_ = false;
};

struct Size {
  int width, height;
};

// The size a PNG file declares, read from its header only.
Size probe_png(const std::string& path);
// Any PNG (grey, grey + alpha, RGB, RGBA, palette, 1 to 16 bits, interlaced or not), as 8-bit
// pixels: grey is copied to all three colours, missing alpha is 255, transparency chunks apply,
// 16-bit samples keep their high byte.
Picture read_picture(const std::string& path);
// A PNG's grey level per pixel (its green channel, for a colour PNG), for masks.
Bytes read_grey(const std::string& path);
// The bytes of a whole file.
std::vector<std::uint8_t> read_file(const std::string& path);

// 8-bit RGBA PNG of a picture's bytes (B, G, R, A in memory).
void write_picture(const std::string& path, const Picture& pic);
// 8-bit grey PNG.
void write_grey(const std::string& path, const Bytes& grey);
// 16-bit grey PNG of `bits`-bit samples: each sample v is stored scaled to 16 bits by bit
// replication (v << (16 - bits) | v >> (2 * bits - 16)) and the sBIT chunk records `bits`, so a
// reader gets v back as the stored sample >> (16 - bits).
void write_grey16(const std::string& path, const Plane16& plane, int bits);
// Bytes written as they are.
void write_file(const std::string& path, const std::vector<std::uint8_t>& bytes);

// "a/b/c.png" -> "c"
std::string stem(const std::string& path);

}  // namespace qxpix

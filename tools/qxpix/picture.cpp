#include "picture.h"

#include <fcntl.h>
#include <spng.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace qxpix {
namespace {

std::string errno_text() { return std::strerror(errno); }

mode_t file_mode() {
  static const mode_t mode = [] {
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
  }();
  return mode;
}

struct SpngDeleter {
  void operator()(spng_ctx* c) const { spng_ctx_free(c); }
};
using Spng = std::unique_ptr<spng_ctx, SpngDeleter>;

struct FileCloser {
  void operator()(FILE* f) const { std::fclose(f); }
};
using InFile = std::unique_ptr<FILE, FileCloser>;

// Larger pictures are refused before anything is allocated for them.
constexpr std::uint32_t kMaxSide = 1 << 15;
constexpr std::uint64_t kMaxPixels = std::uint64_t{1} << 28;

InFile open_input(const std::string& path) {
  struct stat st;
  if (stat(path.c_str(), &st) != 0) throw Failure(path, "cannot open: " + errno_text());
  if (S_ISDIR(st.st_mode)) throw Failure(path, "is a directory, not a file");
  FILE* f = std::fopen(path.c_str(), "rb");
  if (!f) throw Failure(path, "cannot open: " + errno_text());
  if (st.st_size == 0) {
    std::fclose(f);
    throw Failure(path, "empty file");
  }
  return InFile(f);
}

// Opens a file that must start with the PNG signature.
InFile open_png(const std::string& path) {
  static constexpr unsigned char kSignature[8] = {137, 'P', 'N', 'G', '\r', '\n', 26, '\n'};
  InFile f = open_input(path);
  unsigned char head[8] = {};
  if (std::fread(head, 1, 8, f.get()) != 8 || std::memcmp(head, kSignature, 8) != 0)
    throw Failure(path, "not a PNG file");
  std::rewind(f.get());
  return f;
}

[[noreturn]] void png_failure(const std::string& path, int err) {
  if (err == SPNG_ESIGNATURE) throw Failure(path, "not a PNG file");
  if (err == SPNG_IO_EOF) throw Failure(path, "truncated PNG (the file ends early)");
  if (err == SPNG_EUSER_WIDTH || err == SPNG_EUSER_HEIGHT)
    throw Failure(path,
                  "picture too large (at most " + std::to_string(kMaxSide) + " pixels a side)");
  throw Failure(path, std::string("corrupt PNG (") + spng_strerror(err) + ")");
}

// An opened PNG decoder with its header read and its size checked.
struct PngReader {
  InFile file;
  Spng ctx;
  spng_ihdr ihdr{};

  explicit PngReader(const std::string& path) : file(open_png(path)), ctx(spng_ctx_new(0)) {
    if (!ctx) throw std::bad_alloc();
    spng_set_image_limits(ctx.get(), kMaxSide, kMaxSide);
    spng_set_png_file(ctx.get(), file.get());
    if (int err = spng_get_ihdr(ctx.get(), &ihdr)) png_failure(path, err);
    if (std::uint64_t{ihdr.width} * ihdr.height > kMaxPixels)
      throw Failure(path, "picture too large (" + std::to_string(ihdr.width) + " x " +
                              std::to_string(ihdr.height) + " pixels)");
  }

  // The whole picture as 8-bit R, G, B, A, packed.
  std::vector<std::uint8_t> rgba8(const std::string& path) {
    std::size_t len = 0;
    if (int err = spng_decoded_image_size(ctx.get(), SPNG_FMT_RGBA8, &len)) png_failure(path, err);
    std::vector<std::uint8_t> out(len);
    if (int err = spng_decode_image(ctx.get(), out.data(), len, SPNG_FMT_RGBA8, SPNG_DECODE_TRNS))
      png_failure(path, err);
    return out;
  }
};

void encode(const std::string& path, spng_ihdr ihdr, const void* data, std::size_t len,
            const spng_sbit* sbit = nullptr) {
  OutputFile out(path);
  Spng ctx(spng_ctx_new(SPNG_CTX_ENCODER));
  if (!ctx) throw std::bad_alloc();
  spng_set_png_file(ctx.get(), out.stream());
  int err = spng_set_ihdr(ctx.get(), &ihdr);
  if (!err && sbit) err = spng_set_sbit(ctx.get(), const_cast<spng_sbit*>(sbit));
  if (!err) err = spng_encode_image(ctx.get(), data, len, SPNG_FMT_PNG, SPNG_ENCODE_FINALIZE);
  if (err) throw Failure(path, std::string("cannot write PNG: ") + spng_strerror(err));
  ctx.reset();
  out.commit();
}

}  // namespace

// ---- OutputFile ----------------------------------------------------------------------------

OutputFile::OutputFile(std::string target) : target_(std::move(target)) {
  struct stat st;
  if (stat(target_.c_str(), &st) == 0 && S_ISDIR(st.st_mode))
    throw Failure(target_, "is a directory; give a file name");
  const std::size_t slash = target_.rfind('/');
  const std::string dir = slash == std::string::npos ? "" : target_.substr(0, slash + 1);
  const std::string base = slash == std::string::npos ? target_ : target_.substr(slash + 1);
  temp_ = dir + "." + base + ".XXXXXX";
  const int fd = mkstemp(temp_.data());
  if (fd < 0) throw Failure(target_, "cannot create: " + errno_text());
  fchmod(fd, file_mode());
  stream_ = fdopen(fd, "wb");
  if (!stream_) {
    const std::string why = errno_text();
    ::close(fd);
    unlink(temp_.c_str());
    throw Failure(target_, "cannot create: " + why);
  }
}

OutputFile::~OutputFile() {
  if (done_) return;
  if (stream_) std::fclose(stream_);
  unlink(temp_.c_str());
}

void OutputFile::close_stream() {
  if (!stream_) return;
  const bool failed = std::fflush(stream_) != 0 || std::ferror(stream_);
  const std::string why = errno_text();
  const bool close_failed = std::fclose(stream_) != 0;
  stream_ = nullptr;
  if (failed || close_failed) throw Failure(target_, "cannot write: " + why);
}

void OutputFile::commit() {
  close_stream();
  if (std::rename(temp_.c_str(), target_.c_str()) != 0)
    throw Failure(target_, "cannot write: " + errno_text());
  done_ = true;
}

// ---- reading -------------------------------------------------------------------------------

Size probe_png(const std::string& path) {
  PngReader r(path);
  return {static_cast<int>(r.ihdr.width), static_cast<int>(r.ihdr.height)};
}

Picture read_picture(const std::string& path) {
  PngReader r(path);
  const std::vector<std::uint8_t> rgba = r.rgba8(path);
  Picture pic(static_cast<int>(r.ihdr.width), static_cast<int>(r.ihdr.height));
  const std::uint8_t* s = rgba.data();
  for (int y = 0; y < pic.height; ++y) {
    std::uint32_t* d = pic.row(y);
    for (int x = 0; x < pic.width; ++x, s += 4)
      d[x] =
          std::uint32_t{s[3]} << 24 | std::uint32_t{s[0]} << 16 | std::uint32_t{s[1]} << 8 | s[2];
  }
  return pic;
}

Bytes read_grey(const std::string& path) {
  PngReader r(path);
  const std::vector<std::uint8_t> rgba = r.rgba8(path);
  Bytes grey(static_cast<int>(r.ihdr.width), static_cast<int>(r.ihdr.height));
  const std::uint8_t* s = rgba.data() + 1;
  for (int y = 0; y < grey.height; ++y)
    for (int x = 0; x < grey.width; ++x, s += 4) grey.row(y)[x] = *s;
  return grey;
}

std::vector<std::uint8_t> read_file(const std::string& path) {
  InFile f = open_input(path);
  std::vector<std::uint8_t> bytes;
  std::uint8_t buf[1 << 16];
  std::size_t n;
  while ((n = std::fread(buf, 1, sizeof buf, f.get())) > 0) bytes.insert(bytes.end(), buf, buf + n);
  if (std::ferror(f.get())) throw Failure(path, "cannot read: " + errno_text());
  return bytes;
}

// ---- writing -------------------------------------------------------------------------------

void write_picture(const std::string& path, const Picture& pic) {
  std::vector<std::uint8_t> rgba(std::size_t{4} * pic.width * pic.height);
  std::uint8_t* d = rgba.data();
  for (int y = 0; y < pic.height; ++y) {
    const std::uint32_t* s = pic.row(y);
    for (int x = 0; x < pic.width; ++x, d += 4) {
      d[0] = static_cast<std::uint8_t>(s[x] >> 16);
      d[1] = static_cast<std::uint8_t>(s[x] >> 8);
      d[2] = static_cast<std::uint8_t>(s[x]);
      d[3] = static_cast<std::uint8_t>(s[x] >> 24);
    }
  }
  spng_ihdr ihdr{static_cast<std::uint32_t>(pic.width),
                 static_cast<std::uint32_t>(pic.height),
                 8,
                 SPNG_COLOR_TYPE_TRUECOLOR_ALPHA,
                 0,
                 0,
                 0};
  encode(path, ihdr, rgba.data(), rgba.size());
}

void write_grey(const std::string& path, const Bytes& grey) {
  std::vector<std::uint8_t> packed(std::size_t{1} * grey.width * grey.height);
  for (int y = 0; y < grey.height; ++y)
    std::copy_n(grey.row(y), grey.width, packed.begin() + std::ptrdiff_t{grey.width} * y);
  spng_ihdr ihdr{static_cast<std::uint32_t>(grey.width),
                 static_cast<std::uint32_t>(grey.height),
                 8,
                 SPNG_COLOR_TYPE_GRAYSCALE,
                 0,
                 0,
                 0};
  encode(path, ihdr, packed.data(), packed.size());
}

void write_grey16(const std::string& path, const Plane16& plane, int bits) {
  std::vector<std::uint16_t> packed(std::size_t{1} * plane.width * plane.height);
  std::uint16_t* d = packed.data();
  for (int y = 0; y < plane.height; ++y)
    for (int x = 0; x < plane.width; ++x) {
      const unsigned v = plane.row(y)[x];
      *d++ = static_cast<std::uint16_t>(v << (16 - bits) | v >> (2 * bits - 16));
    }
  spng_ihdr ihdr{static_cast<std::uint32_t>(plane.width),
                 static_cast<std::uint32_t>(plane.height),
                 16,
                 SPNG_COLOR_TYPE_GRAYSCALE,
                 0,
                 0,
                 0};
  const spng_sbit sbit{static_cast<std::uint8_t>(bits), 0, 0, 0, 0};
  encode(path, ihdr, packed.data(), packed.size() * 2, &sbit);
}

void write_file(const std::string& path, const std::vector<std::uint8_t>& bytes) {
  OutputFile out(path);
  if (std::fwrite(bytes.data(), 1, bytes.size(), out.stream()) != bytes.size())
    throw Failure(path, "cannot write: " + errno_text());
  out.commit();
}

std::string stem(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  std::string base = slash == std::string::npos ? path : path.substr(slash + 1);
  const std::size_t dot = base.rfind('.');
  if (dot != std::string::npos && dot > 0) base.resize(dot);
  return base;
}

}  // namespace qxpix

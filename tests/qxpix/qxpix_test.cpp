// qxpix run as a user runs it, on small generated pictures: every subcommand's output equals the
// library's exports called directly on the same rows, and every bad input gets one line on stderr
// naming the file, a non-zero exit status, and no output file.
#include <gtest/gtest.h>
#include <qxpixlib.h>
#include <spng.h>
#include <stdlib.h>
#include <sys/wait.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <random>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

// ---- pictures and files, written and read with libspng directly ----

struct Pic {
  int w = 0, h = 0;
  std::vector<std::uint32_t> px;  // packed rows, bytes B, G, R, A
  std::uint32_t* row(int y) { return px.data() + std::size_t{1} * w * y; }
  const std::uint32_t* row(int y) const { return px.data() + std::size_t{1} * w * y; }
  bool operator==(const Pic&) const = default;
};

std::mt19937 rng(7);

// Random bytes with 0 and 255 frequent, so transparent and opaque pixels both occur.
std::uint8_t random_byte() {
  const unsigned r = rng();
  return (r & 3) == 0 ? ((r >> 2 & 1) ? 255 : 0) : static_cast<std::uint8_t>(r >> 8);
}
Pic random_pic(int w, int h) {
  Pic p{w, h, std::vector<std::uint32_t>(std::size_t{1} * w * h)};
  for (auto& v : p.px)
    v = random_byte() | random_byte() << 8 | random_byte() << 16 |
        std::uint32_t{random_byte()} << 24;
  return p;
}

void encode(const fs::path& path, int w, int h, int depth, int colour, const void* data,
            std::size_t len) {
  spng_ctx* c = spng_ctx_new(SPNG_CTX_ENCODER);
  FILE* f = std::fopen(path.c_str(), "wb");
  spng_set_png_file(c, f);
  spng_ihdr ihdr{static_cast<std::uint32_t>(w),
                 static_cast<std::uint32_t>(h),
                 static_cast<std::uint8_t>(depth),
                 static_cast<std::uint8_t>(colour),
                 0,
                 0,
                 0};
  spng_set_ihdr(c, &ihdr);
  ASSERT_EQ(spng_encode_image(c, data, len, SPNG_FMT_PNG, SPNG_ENCODE_FINALIZE), 0);
  spng_ctx_free(c);
  std::fclose(f);
}

void write_png(const fs::path& path, const Pic& p) {
  std::vector<std::uint8_t> rgba;
  for (std::uint32_t v : p.px)
    rgba.insert(rgba.end(), {std::uint8_t(v >> 16), std::uint8_t(v >> 8), std::uint8_t(v),
                             std::uint8_t(v >> 24)});
  encode(path, p.w, p.h, 8, SPNG_COLOR_TYPE_TRUECOLOR_ALPHA, rgba.data(), rgba.size());
}

void write_grey(const fs::path& path, int w, int h, const std::vector<std::uint8_t>& g) {
  encode(path, w, h, 8, SPNG_COLOR_TYPE_GRAYSCALE, g.data(), g.size());
}

// fmt SPNG_FMT_RGBA8 gives a Pic; SPNG_FMT_PNG of a 16-bit grey PNG gives its samples.
std::vector<std::uint8_t> decode(const fs::path& path, int fmt, int* w, int* h) {
  spng_ctx* c = spng_ctx_new(0);
  FILE* f = std::fopen(path.c_str(), "rb");
  EXPECT_NE(f, nullptr) << path;
  if (!f) return {};
  spng_set_png_file(c, f);
  spng_ihdr ihdr;
  spng_get_ihdr(c, &ihdr);
  *w = static_cast<int>(ihdr.width);
  *h = static_cast<int>(ihdr.height);
  std::size_t len = 0;
  spng_decoded_image_size(c, fmt, &len);
  std::vector<std::uint8_t> out(len);
  EXPECT_EQ(spng_decode_image(c, out.data(), len, fmt, 0), 0);
  spng_ctx_free(c);
  std::fclose(f);
  return out;
}

Pic read_png(const fs::path& path) {
  Pic p;
  const std::vector<std::uint8_t> rgba = decode(path, SPNG_FMT_RGBA8, &p.w, &p.h);
  for (std::size_t i = 0; i + 3 < rgba.size(); i += 4)
    p.px.push_back(rgba[i + 2] | rgba[i + 1] << 8 | rgba[i] << 16 |
                   std::uint32_t{rgba[i + 3]} << 24);
  return p;
}

std::vector<std::uint16_t> read_png16(const fs::path& path, int* w, int* h) {
  const std::vector<std::uint8_t> raw = decode(path, SPNG_FMT_PNG, w, h);
  std::vector<std::uint16_t> s(raw.size() / 2);
  std::memcpy(s.data(), raw.data(), raw.size());
  return s;
}

std::vector<std::uint8_t> read_bytes(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}
void write_bytes(const fs::path& path, const std::vector<std::uint8_t>& b) {
  std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char*>(b.data()), b.size());
}

// Rows the kernels may read in whole vectors: 16-byte aligned, padded to a multiple of 4 pixels.
template <class T>
struct Rows {
  int w, h;
  std::size_t stride;
  T* data;
  Rows(int w_, int h_) : w(w_), h(h_), stride((w_ + 15) / 16 * 16) {
    data = static_cast<T*>(std::aligned_alloc(64, (sizeof(T) * stride * h + 63) / 64 * 64));
    std::memset(data, 0, sizeof(T) * stride * h);
  }
  Rows(const Rows&) = delete;
  ~Rows() { std::free(data); }
  T* row(int y) { return data + stride * y; }
};

// ---- running qxpix ----

struct Result {
  int status;
  std::string err;
};

class Qxpix : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string tmpl = (fs::temp_directory_path() / "qxpix-test-XXXXXX").string();
    ASSERT_NE(mkdtemp(tmpl.data()), nullptr);
    dir = tmpl;
  }
  void TearDown() override { fs::remove_all(dir); }

  fs::path at(const std::string& name) const { return dir / name; }

  // Runs qxpix in `cwd` (the test's directory by default), its output to `out` (a file name).
  Result run(const std::string& args, const fs::path& cwd = {}, const std::string& out = "") {
    const fs::path err = dir / "stderr.txt";
    const std::string cmd = "cd '" + (cwd.empty() ? dir : cwd).string() + "' && '" QXPIX "' -q " +
                            args + " 2>'" + err.string() + "' >'" +
                            (out.empty() ? "/dev/null" : (dir / out).string()) + "'";
    const int raw = std::system(cmd.c_str());
    const std::vector<std::uint8_t> e = read_bytes(err);
    fs::remove(err);
    return {WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, std::string(e.begin(), e.end())};
  }

  // The files in the working directory.
  std::vector<std::string> files() const {
    std::vector<std::string> names;
    for (const auto& e : fs::directory_iterator(dir)) names.push_back(e.path().filename());
    std::sort(names.begin(), names.end());
    return names;
  }

  fs::path dir;
};

// ---- each subcommand against direct calls ----

constexpr int kW = 13, kH = 5;  // a width that leaves a tail, rows for three threads' bands

struct Inputs {
  Pic a = random_pic(kW, kH), b = random_pic(kW, kH);
  std::vector<std::uint8_t> mask, lut;
  Inputs() {
    for (int i = 0; i < kW * kH; ++i) mask.push_back(random_byte());
    for (int i = 0; i < 256; ++i) lut.push_back(random_byte());
  }
  // The mask in rows readable to the next multiple of 4 bytes, as the masked kernels read them.
  std::vector<std::uint8_t> mask_row(int y) const {
    std::vector<std::uint8_t> r(mask.begin() + kW * y, mask.begin() + kW * (y + 1));
    r.resize((kW + 3) / 4 * 4);
    return r;
  }
};

// The bytes qx_zoom_in2x1d / qx_zoom_in2x2d give for `a` when its rows go on with arbitrary
// pixels up to a multiple of 4 (the first 2 * w outputs of a row depend on none of them).
Pic zoomed(const Pic& a, bool picture) {
  const int wp = (a.w + 3) / 4 * 4;
  Rows<std::uint32_t> src(wp, a.h), out(2 * wp, 2 * a.h);
  for (int y = 0; y < a.h; ++y) {
    std::copy_n(a.row(y), a.w, src.row(y));
    for (int x = a.w; x < wp; ++x) src.row(y)[x] = rng();
  }
  Pic z{2 * a.w, picture ? 2 * a.h : a.h, {}};
  if (picture) {
    std::vector<std::uint32_t> block(std::size_t{4} * wp * a.h + 16);
    auto* aligned = reinterpret_cast<std::uint32_t*>(
        (reinterpret_cast<std::uintptr_t>(block.data()) + 15) & ~std::uintptr_t{15});
    qx_zoom_in2x2d(aligned, src.row(0), wp, a.h, static_cast<int>(src.stride));
    for (int y = 0; y < z.h; ++y)
      z.px.insert(z.px.end(), aligned + 2 * wp * y, aligned + 2 * wp * y + z.w);
  } else {
    for (int y = 0; y < a.h; ++y) {
      qx_zoom_in2x1d(out.row(y), src.row(y), wp);
      z.px.insert(z.px.end(), out.row(y), out.row(y) + z.w);
    }
  }
  return z;
}

// Applies a line kernel row by row into a picture of the same size.
Pic rows_of(const Pic& a, const std::function<void(std::uint32_t*, int)>& line) {
  Pic p{a.w, a.h, std::vector<std::uint32_t>(a.px.size())};
  for (int y = 0; y < a.h; ++y) line(p.row(y), y);
  return p;
}

struct Command {
  std::string name, args;  // args: a.png b.png mask.png lut.bin exist; the result is out.png
  std::function<Pic(const Inputs&)> expect;
};

std::vector<Command> commands() {
  std::vector<Command> c;
  using BlendFn = decltype(&qx_blend);
  using BlendT = decltype(&qx_blend_t);
  using BlendM = decltype(&qx_blend_m);
  using BlendMt = decltype(&qx_blend_mt);
  using BlendMlt = decltype(&qx_blend_mlt);
  struct Family {
    const char* name;
    BlendFn f;
    BlendT t;
    BlendM m;
    BlendMt mt;
    BlendMlt mlt;
  };
  for (Family f :
       {Family{"blend", qx_blend, qx_blend_t, qx_blend_m, qx_blend_mt, qx_blend_mlt},
        Family{"lblend", qx_lblend, qx_lblend_t, qx_lblend_m, qx_lblend_mt, qx_lblend_mlt},
        Family{"sblend", qx_sblend, qx_sblend_t, qx_sblend_m, qx_sblend_mt, qx_sblend_mlt}}) {
    const std::string n = f.name, fam = "blend --family " + n + " ";
    auto blend = [](const Inputs& in, auto call) {
      return rows_of(in.a, [&](std::uint32_t* d, int y) {
        call(d, in.a.row(y), in.b.row(y), in.mask_row(y).data(), in.lut.data());
      });
    };
    c.push_back({n, fam + "a.png b.png", [=](const Inputs& in) {
                   return blend(in,
                                [&](auto d, auto bg, auto fg, auto, auto) { f.f(d, bg, fg, kW); });
                 }});
    c.push_back({n + "_t", fam + "--opacity 77 a.png b.png", [=](const Inputs& in) {
                   return blend(
                       in, [&](auto d, auto bg, auto fg, auto, auto) { f.t(d, bg, fg, kW, 77); });
                 }});
    c.push_back({n + "_m", fam + "--mask mask.png a.png b.png", [=](const Inputs& in) {
                   return blend(
                       in, [&](auto d, auto bg, auto fg, auto m, auto) { f.m(d, bg, fg, kW, m); });
                 }});
    c.push_back(
        {n + "_mt", fam + "--mask mask.png --opacity 200 a.png b.png", [=](const Inputs& in) {
           return blend(
               in, [&](auto d, auto bg, auto fg, auto m, auto) { f.mt(d, bg, fg, kW, m, 200); });
         }});
    c.push_back({n + "_mlt", fam + "--mask mask.png --lut lut.bin --opacity 130 a.png b.png",
                 [=](const Inputs& in) {
                   return blend(in, [&](auto d, auto bg, auto fg, auto m, auto l) {
                     f.mlt(d, bg, fg, kW, m, l, 130);
                   });
                 }});
  }
  c.push_back({"to_ayuv", "convert --to ayuv a.png", [](const Inputs& in) {
                 return rows_of(in.a, [&](auto d, int y) { qx_argb2ayuv(d, in.a.row(y), kW); });
               }});
  c.push_back({"to_argb", "convert --to argb a.png", [](const Inputs& in) {
                 return rows_of(in.a, [&](auto d, int y) { qx_ayuv2argb(d, in.a.row(y), kW); });
               }});
  c.push_back({"alpha", "alpha a.png", [](const Inputs& in) {
                 return rows_of(in.a, [&](auto d, int y) { qx_alpha(d, in.a.row(y), kW); });
               }});
  c.push_back({"mask", "mask --mask mask.png a.png", [](const Inputs& in) {
                 return rows_of(in.a, [&](auto d, int y) {
                   qx_mask(d, in.a.row(y), in.mask_row(y).data(), kW);
                 });
               }});
  c.push_back({"mix", "mix --weight 90 a.png b.png", [](const Inputs& in) {
                 return rows_of(
                     in.a, [&](auto d, int y) { qx_lin_pix(d, in.a.row(y), in.b.row(y), 90, kW); });
               }});
  c.push_back({"fill", "fill --width 13 --height 5 --color '#10203040'", [](const Inputs& in) {
                 return rows_of(in.a, [&](auto d, int) { qx_fill(d, 0x40102030u, kW); });
               }});
  c.push_back({"zoom_in_lines", "zoom-in --lines a.png",
               [](const Inputs& in) { return zoomed(in.a, false); }});
  c.push_back({"zoom_in", "zoom-in a.png", [](const Inputs& in) { return zoomed(in.a, true); }});
  c.push_back({"scale", "scale --width 8 a.png", [](const Inputs& in) {
                 Rows<std::uint32_t> out(8, kH);
                 Pic p{8, kH, {}};
                 for (int y = 0; y < kH; ++y) {
                   qx_scale_1d(out.row(y), 8, in.a.row(y), kW);
                   p.px.insert(p.px.end(), out.row(y), out.row(y) + 8);
                 }
                 return p;
               }});
  c.push_back({"zoom_out", "zoom-out --width 4 --height 2 a.png", [](const Inputs& in) {
                 Pic p{4, 2, std::vector<std::uint32_t>(8)};
                 qx_zoom_outNx(p.px.data(), 4, 2, in.a.px.data(), kW, kH);
                 return p;
               }});
  return c;
}

void PrintTo(const Command& c, std::ostream* os) { *os << c.args; }

class Subcommand : public Qxpix, public ::testing::WithParamInterface<Command> {};

TEST_P(Subcommand, EqualsTheExportsOnTheSameRows) {
  const Inputs in;
  write_png(at("a.png"), in.a);
  write_png(at("b.png"), in.b);
  write_grey(at("mask.png"), kW, kH, in.mask);
  write_bytes(at("lut.bin"), in.lut);
  const Pic want = GetParam().expect(in);
  for (const char* threads : {"-j 1", "-j 3"}) {
    SCOPED_TRACE(threads);
    const Result r = run(std::string(threads) + " " + GetParam().args + " -o out.png");
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.err, "");
    EXPECT_TRUE(read_png(at("out.png")) == want);
  }
}

INSTANTIATE_TEST_SUITE_P(Qxpix, Subcommand, ::testing::ValuesIn(commands()),
                         [](const auto& info) { return info.param.name; });

TEST_F(Qxpix, V210UnpacksToPngPlanesAndRawPlanes) {
  constexpr int w = 14, h = 3, row_bytes = 128;  // a width that ends inside a 6-pixel block
  std::vector<std::uint8_t> v210(row_bytes * h);
  for (auto& b : v210) b = static_cast<std::uint8_t>(rng());
  write_bytes(at("in.v210"), v210);
  // The planes, row by row, from the export: Y (w samples), Cb, Cr (w / 2 each).
  std::vector<std::uint16_t> want[3];
  for (int y = 0; y < h; ++y) {
    std::vector<std::uint16_t> line(2 * w);
    qx_v210yuv422p10(line.data(), reinterpret_cast<const std::uint32_t*>(&v210[row_bytes * y]), w);
    want[0].insert(want[0].end(), line.begin(), line.begin() + w);
    want[1].insert(want[1].end(), line.begin() + w, line.begin() + w + w / 2);
    want[2].insert(want[2].end(), line.begin() + w + w / 2, line.end());
  }
  ASSERT_EQ(run("v210 in.v210 --width 14 --height 3 -o planes.png").status, 0);
  const char* suffix[] = {"_y.png", "_cb.png", "_cr.png"};
  for (int p = 0; p < 3; ++p) {
    int pw = 0, ph = 0;
    std::vector<std::uint16_t> got = read_png16(at(std::string("planes") + suffix[p]), &pw, &ph);
    EXPECT_EQ(pw, p ? w / 2 : w);
    EXPECT_EQ(ph, h);
    for (auto& s : got) s >>= 6;  // 10 significant bits, stored at the top
    EXPECT_EQ(got, want[p]) << suffix[p];
  }
  ASSERT_EQ(run("v210 --raw in.v210 --width 14 --height 3 -o planes.yuv").status, 0);
  std::vector<std::uint8_t> raw;
  for (const auto& plane : want)
    for (std::uint16_t s : plane) raw.insert(raw.end(), {std::uint8_t(s), std::uint8_t(s >> 8)});
  EXPECT_EQ(read_bytes(at("planes.yuv")), raw);
}

// Frames: a directory of foregrounds over one background, and a directory through a one-input
// subcommand; each result is named after its frame and equals the single-picture run.
TEST_F(Qxpix, FramesFromDirectories) {
  fs::create_directory(at("frames"));
  const Pic bg = random_pic(kW, kH);
  write_png(at("bg.png"), bg);
  std::vector<Pic> frames;
  for (const char* name : {"f1.png", "f2.png", "f3.png"}) {
    frames.push_back(random_pic(kW, kH));
    write_png(at("frames") / name, frames.back());
  }
  ASSERT_EQ(run("-j 2 blend --family sblend bg.png frames -o blended").status, 0);
  ASSERT_EQ(run("alpha frames -o alphas").status, 0);
  for (int i = 0; i < 3; ++i) {
    const std::string name = "f" + std::to_string(i + 1) + ".png";
    EXPECT_TRUE(read_png(at("blended") / name) == rows_of(bg, [&](std::uint32_t* d, int y) {
                  qx_sblend(d, bg.row(y), frames[i].row(y), kW);
                }));
    EXPECT_TRUE(read_png(at("alphas") / name) ==
                rows_of(bg, [&](std::uint32_t* d, int y) { qx_alpha(d, frames[i].row(y), kW); }));
  }
}

// The demo's pictures, and its captions: the command shown for a result makes that result.
TEST_F(Qxpix, DemoWritesTheSheetAndItsCommandsRemakeItsPictures) {
  ASSERT_EQ(run("demo demo").status, 0);
  const Pic sheet = read_png(at("demo/index.png"));
  EXPECT_GT(sheet.w, 500);
  EXPECT_GT(sheet.h, 500);
  const std::string html = [&] {
    const auto b = read_bytes(at("demo/index.html"));
    return std::string(b.begin(), b.end());
  }();
  for (const char* name : {"sblend_mlt", "zoom_in2x2d", "scale_horz", "lin_pix"}) {
    SCOPED_TRACE(name);
    const std::size_t img = html.find(std::string("alt=\"") + name + "\"");
    ASSERT_NE(img, std::string::npos);
    const std::size_t start = html.find("<code>qxpix ", img) + 12;
    std::string args = html.substr(start, html.find(" -o ", start) - start);
    EXPECT_EQ(run("-j 2 " + args + " -o again.png", at("demo")).status, 0) << args;
    EXPECT_TRUE(read_png(at("demo/again.png")) ==
                read_png(at(std::string("demo/") + name + ".png")));
  }
}

TEST_F(Qxpix, BenchNamesAFormForEveryExportAndPlots) {
  const Result r = run("bench --time 1 --plot chart.png", {}, "table.txt");
  ASSERT_EQ(r.status == 0 || r.err.find("needs gnuplot") != std::string::npos, true) << r.err;
  const auto table = read_bytes(at("table.txt"));
  const std::string text(table.begin(), table.end());
  int rows = 0;
  for (std::size_t at_line = text.find('\n');
       at_line != std::string::npos && at_line + 1 < text.size();
       at_line = text.find('\n', at_line + 1)) {
    char kernel[32] = {}, form[16] = {};
    ASSERT_EQ(std::sscanf(text.c_str() + at_line + 1, "%31s %15s", kernel, form), 2);
    EXPECT_EQ(std::string(kernel).rfind("qx_", 0), 0u);
    EXPECT_NE(std::string(" scalar sse2 ssse3 avx2 avx512 avx512vbmi ")
                  .find(std::string(" ") + form + " "),
              std::string::npos)
        << form;
    ++rows;
  }
  EXPECT_EQ(rows, 27);  // every export but the two that do nothing
  if (r.status == 0) {
    EXPECT_GT(fs::file_size(at("chart.png")), 1000u);
  }
}

// ---- bad input ----

struct BadInput {
  std::string name, args, message;  // message: what stderr must say after "qxpix: "
  int status = 1;
};

std::vector<BadInput> bad_inputs() {
  return {
      {"missing_file", "alpha missing.png -o out.png", "missing.png: cannot open: No such file"},
      {"directory_as_lut", "blend --mask mask.png --lut sub a.png b.png -o out.png",
       "sub: is a directory"},
      {"not_png", "alpha text.png -o out.png", "text.png: not a PNG file"},
      {"truncated_png", "alpha truncated.png -o out.png", "truncated.png: truncated PNG"},
      {"corrupt_png", "alpha corrupt.png -o out.png", "corrupt.png: corrupt PNG"},
      {"empty_file", "alpha empty.png -o out.png", "empty.png: empty file"},
      {"sizes_differ", "blend a.png small.png -o out.png",
       "small.png: the picture is 6x5 but a.png is 13x5"},
      {"mask_size", "blend --mask small.png a.png b.png -o out.png",
       "small.png: the mask is 6x5 but a.png is 13x5"},
      {"mask_size_mask_cmd", "mask --mask small.png a.png -o out.png",
       "small.png: the mask is 6x5 but a.png is 13x5"},
      {"lut_length", "blend --mask mask.png --lut short.bin a.png b.png -o out.png",
       "short.bin: 255 bytes; a lookup table is 256 bytes"},
      {"lut_without_mask", "blend --lut lut.bin a.png b.png -o out.png",
       "lut.bin: --lut maps mask bytes and needs --mask"},
      {"v210_odd_width", "v210 in.v210 --width 13 --height 3 -o out.png",
       "in.v210: --width 13 is odd"},
      {"v210_length", "v210 in.v210 --width 14 --height 4 -o out.png",
       "in.v210: 384 bytes, but 14x4 pixels of v210 take 512 (rows of 128 bytes)"},
      {"v210_zero_height", "v210 in.v210 --width 14 --height 0 -o out.png",
       "in.v210: --height 0: must be at least 1"},
      {"scale_zero", "scale --width 0 a.png -o out.png", "a.png: --width 0: must be at least 4"},
      {"scale_not_groups", "scale --width 10 a.png -o out.png",
       "a.png: --width 10: the scaler writes whole groups of 4 pixels"},
      {"zoom_out_negative", "zoom-out --width 4 --height -2 a.png -o out.png",
       "a.png: --height -2: must be at least 1"},
      {"zoom_out_past", "zoom-out --width 10 --height 5 a.png -o out.png",
       "a.png: zoom-out from 13x5 to 10x5 would sample past the picture"},
      {"fill_zero", "fill --width 0 --height 3 --color '#000000' -o out.png",
       "out.png: --width 0: must be at least 1"},
      {"unwritable_output", "alpha a.png -o a.png/out.png", "a.png/out.png: cannot create"},
      {"output_is_input", "mix a.png b.png -o b.png", "b.png: is an input"},
      {"bad_option", "blend --opacity 300 a.png b.png -o out.png", "--opacity", 2},
  };
}

void PrintTo(const BadInput& b, std::ostream* os) { *os << b.args; }

class BadInputs : public Qxpix, public ::testing::WithParamInterface<BadInput> {};

TEST_P(BadInputs, OneLineNamingTheFileAndNoOutput) {
  const Inputs in;
  write_png(at("a.png"), in.a);
  write_png(at("b.png"), in.b);
  write_png(at("small.png"), random_pic(6, kH));
  write_grey(at("mask.png"), kW, kH, in.mask);
  write_bytes(at("lut.bin"), in.lut);
  write_bytes(at("short.bin"), std::vector<std::uint8_t>(255));
  write_bytes(at("in.v210"), std::vector<std::uint8_t>(128 * 3));
  write_bytes(at("text.png"), {'h', 'e', 'l', 'l', 'o', '\n'});
  write_bytes(at("empty.png"), {});
  fs::create_directory(at("sub"));
  std::vector<std::uint8_t> png = read_bytes(at("a.png"));
  write_bytes(at("truncated.png"), {png.begin(), png.begin() + png.size() / 2});
  png[png.size() / 2] ^= 0x55;  // inside the picture data: its checksum fails
  write_bytes(at("corrupt.png"), png);
  const std::vector<std::string> before = files();

  const Result r = run(GetParam().args);
  EXPECT_EQ(r.status, GetParam().status);
  EXPECT_EQ(r.err.rfind("qxpix: " + GetParam().message, 0), 0u) << r.err;
  EXPECT_EQ(std::count(r.err.begin(), r.err.end(), '\n'), 1) << r.err;
  EXPECT_EQ(files(), before);  // no output, no temporary left behind, no input overwritten
  EXPECT_EQ(read_png(at("b.png")), in.b);
}

INSTANTIATE_TEST_SUITE_P(Qxpix, BadInputs, ::testing::ValuesIn(bad_inputs()),
                         [](const auto& info) { return info.param.name; });

// A failed run leaves an existing output as it was.
TEST_F(Qxpix, FailureKeepsThePreviousOutput) {
  write_png(at("a.png"), random_pic(kW, kH));
  write_bytes(at("out.png"), {'o', 'l', 'd'});
  EXPECT_EQ(run("blend a.png missing.png -o out.png").status, 1);
  EXPECT_EQ(read_bytes(at("out.png")), (std::vector<std::uint8_t>{'o', 'l', 'd'}));
}

}  // namespace

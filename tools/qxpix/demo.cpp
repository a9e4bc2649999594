#include "demo.h"

#include <qxpixlib.h>
#include <sys/stat.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <string_view>
#include <vector>

#include "ops.h"
#include "picture.h"

namespace qxpix {
namespace {

constexpr int kW = 256, kH = 192;  // the test pictures
constexpr int kTileW = 128, kTileH = 96;

constexpr std::uint32_t argb(unsigned r, unsigned g, unsigned b, unsigned a = 255) {
  return a << 24 | r << 16 | g << 8 | b;
}

unsigned to_byte(double v) { return static_cast<unsigned>(std::clamp(v, 0.0, 1.0) * 255 + 0.5); }

// Hue in [0, 1) to a saturated colour, mixed toward white by `pale` and scaled by `value`.
std::uint32_t hue(double h, double value, double pale = 0, unsigned alpha = 255) {
  double c[3];
  for (int i = 0; i < 3; ++i) {
    const double k = std::fmod(h * 6 + (i == 0 ? 0 : i == 1 ? 4 : 2), 6.0);
    c[i] = 1 - std::clamp(std::min(k, 4 - k), 0.0, 1.0);  // R, G, B of the pure hue
    c[i] = (c[i] + (1 - c[i]) * pale) * value;
  }
  return argb(to_byte(c[0]), to_byte(c[1]), to_byte(c[2]), alpha);
}

// ---- the test pictures ----

// Seven 75% colour bars over a grey ramp.
Picture bars() {
  constexpr std::uint32_t kBars[] = {argb(191, 191, 191), argb(191, 191, 0), argb(0, 191, 191),
                                     argb(0, 191, 0),     argb(191, 0, 191), argb(191, 0, 0),
                                     argb(0, 0, 191)};
  Picture p(kW, kH);
  for (int y = 0; y < kH; ++y)
    for (int x = 0; x < kW; ++x) {
      const unsigned g = x * 255 / (kW - 1);
      p.row(y)[x] = y < kH * 2 / 3 ? kBars[x * 7 / kW] : argb(g, g, g);
    }
  return p;
}

// Hue across, from white at the top through full colour to black at the bottom.
Picture gradient() {
  Picture p(kW, kH);
  for (int y = 0; y < kH; ++y)
    for (int x = 0; x < kW; ++x) {
      const double v = 1.0 * y / (kH - 1);
      p.row(y)[x] = hue(1.0 * x / kW, v < 0.5 ? 1 : 2 - 2 * v, v < 0.5 ? 1 - 2 * v : 0);
    }
  return p;
}

Picture checker(int w, int h, int square) {
  Picture p(w, h);
  for (int y = 0; y < h; ++y)
    for (int x = 0; x < w; ++x)
      p.row(y)[x] = (x / square + y / square) % 2 ? argb(102, 102, 102) : argb(153, 153, 153);
  return p;
}

// Rings of colour around the centre, alpha rising from 0 at the left edge to 255 at the right.
Picture foreground() {
  Picture p(kW, kH);
  for (int y = 0; y < kH; ++y)
    for (int x = 0; x < kW; ++x) {
      const double r = std::hypot(x - kW / 2.0, y - kH / 2.0) / kH;
      p.row(y)[x] = hue(std::fmod(r * 2.5 + 0.55, 1.0), 1, 0.15, x * 255 / (kW - 1));
    }
  return p;
}

// A soft-edged disc: 255 inside, falling smoothly to 0.
Bytes matte() {
  Bytes m(kW, kH);
  for (int y = 0; y < kH; ++y)
    for (int x = 0; x < kW; ++x) {
      const double r = std::hypot(x - kW / 2.0, y - kH / 2.0);
      const double t = std::clamp((kH * 0.42 - r) / (kH * 0.22), 0.0, 1.0);
      m.row(y)[x] = static_cast<std::uint8_t>(to_byte(t * t * (3 - 2 * t)));
    }
  return m;
}

// A steep contrast curve: the matte's soft edge becomes a hard one.
std::vector<std::uint8_t> contrast_lut() {
  std::vector<std::uint8_t> lut(256);
  for (int i = 0; i < 256; ++i)
    lut[i] = static_cast<std::uint8_t>(std::clamp((i - 96) * 4, 0, 255));
  return lut;
}

// v210 rows of a 10-bit test pattern: Y rising across, Cb rising down, Cr falling across.
std::vector<std::uint8_t> v210_pattern(int w, int h) {
  const std::size_t row_bytes = v210_row_bytes(w);
  std::vector<std::uint8_t> data(row_bytes * h);
  for (int y = 0; y < h; ++y) {
    std::vector<std::uint32_t> s;  // samples in v210 order: Cb0 Y0 Cr0 Y1 Cb1 Y2 Cr1 Y3 ...
    for (int x = 0; x < w; x += 2) {
      const unsigned yv0 = 64 + 876 * x / (w - 1), yv1 = 64 + 876 * (x + 1) / (w - 1);
      s.insert(s.end(), {64u + 896u * y / (h - 1), yv0, 960u - 896u * x / (w - 1), yv1});
    }
    s.resize((s.size() + 2) / 3 * 3);
    for (std::size_t i = 0; i < s.size() / 3; ++i) {
      const std::uint32_t word = s[3 * i] | s[3 * i + 1] << 10 | s[3 * i + 2] << 20;
      std::memcpy(data.data() + row_bytes * y + 4 * i, &word, 4);
    }
  }
  return data;
}

Picture crop(const Picture& src, int x0, int y0, int w, int h) {
  Picture p(w, h);
  for (int y = 0; y < h; ++y) std::copy_n(src.row(y0 + y) + x0, w, p.row(y));
  return p;
}

Picture grey_picture(const Bytes& g) {
  Picture p(g.width, g.height);
  for (int y = 0; y < g.height; ++y)
    for (int x = 0; x < g.width; ++x) p.row(y)[x] = g.row(y)[x] * 0x010101u | 0xFF000000u;
  return p;
}

Picture plane_picture(const Plane16& plane) {
  Bytes g(plane.width, plane.height);
  for (int y = 0; y < plane.height; ++y)
    for (int x = 0; x < plane.width; ++x)
      g.row(y)[x] = static_cast<std::uint8_t>(plane.row(y)[x] >> 2);
  return grey_picture(g);
}

// ---- lettering: a 5 x 7 pixel font, each glyph seven rows of five bits, the top row first ----

struct Glyph {
  char c;
  std::uint8_t rows[7];
};
constexpr Glyph kFont[] = {
    {'A', {14, 17, 17, 31, 17, 17, 17}}, {'B', {30, 17, 17, 30, 17, 17, 30}},
    {'C', {14, 17, 16, 16, 16, 17, 14}}, {'D', {30, 17, 17, 17, 17, 17, 30}},
    {'E', {31, 16, 16, 30, 16, 16, 31}}, {'F', {31, 16, 16, 30, 16, 16, 16}},
    {'G', {14, 17, 16, 23, 17, 17, 15}}, {'H', {17, 17, 17, 31, 17, 17, 17}},
    {'I', {14, 4, 4, 4, 4, 4, 14}},      {'J', {7, 2, 2, 2, 2, 18, 12}},
    {'K', {17, 18, 20, 24, 20, 18, 17}}, {'L', {16, 16, 16, 16, 16, 16, 31}},
    {'M', {17, 27, 21, 21, 17, 17, 17}}, {'N', {17, 17, 25, 21, 19, 17, 17}},
    {'O', {14, 17, 17, 17, 17, 17, 14}}, {'P', {30, 17, 17, 30, 16, 16, 16}},
    {'Q', {14, 17, 17, 17, 21, 18, 13}}, {'R', {30, 17, 17, 30, 20, 18, 17}},
    {'S', {15, 16, 16, 14, 1, 1, 30}},   {'T', {31, 4, 4, 4, 4, 4, 4}},
    {'U', {17, 17, 17, 17, 17, 17, 14}}, {'V', {17, 17, 17, 17, 17, 10, 4}},
    {'W', {17, 17, 17, 21, 21, 21, 10}}, {'X', {17, 17, 10, 4, 10, 17, 17}},
    {'Y', {17, 17, 10, 4, 4, 4, 4}},     {'Z', {31, 1, 2, 4, 8, 16, 31}},
    {'0', {14, 17, 19, 21, 25, 17, 14}}, {'1', {4, 12, 4, 4, 4, 4, 14}},
    {'2', {14, 17, 1, 2, 4, 8, 31}},     {'3', {31, 2, 4, 2, 1, 17, 14}},
    {'4', {2, 6, 10, 18, 31, 2, 2}},     {'5', {31, 16, 30, 1, 1, 17, 14}},
    {'6', {6, 8, 16, 30, 17, 17, 14}},   {'7', {31, 1, 2, 4, 8, 8, 8}},
    {'8', {14, 17, 17, 14, 17, 17, 14}}, {'9', {14, 17, 17, 15, 1, 2, 12}},
    {'_', {0, 0, 0, 0, 0, 0, 31}},       {'-', {0, 0, 0, 31, 0, 0, 0}},
    {'.', {0, 0, 0, 0, 0, 12, 12}},      {':', {0, 12, 12, 0, 12, 12, 0}},
    {'/', {0, 1, 2, 4, 8, 16, 0}},       {'+', {0, 4, 4, 31, 4, 4, 0}},
};
constexpr int kAdvance = 6;  // glyph width and one column of space

void draw_text(Picture& p, int x, int y, std::string_view text, std::uint32_t colour) {
  for (char ch : text) {
    const char c = static_cast<char>(std::toupper(static_cast<unsigned char>(ch)));
    for (const Glyph& g : kFont) {
      if (g.c != c) continue;
      for (int r = 0; r < 7; ++r)
        for (int b = 0; b < 5; ++b)
          if (g.rows[r] >> (4 - b) & 1 && x + b < p.width && y + r < p.height)
            p.row(y + r)[x + b] = colour;
    }
    x += kAdvance;
  }
}

// ---- the contact sheet ----

struct Shot {
  std::string name;     // file name without .png, and the label
  std::string command;  // how to make it with qxpix
  Picture view;         // what the sheet shows (8-bit, alpha shown over a checkerboard)
};

// The picture shrunk by a whole factor to fit a tile (qx_zoom_outNx), laid over a checkerboard
// with qx_sblend so that transparency shows, centred in a tile.
Picture tile(const Picture& pic, int threads) {
  const int f =
      std::max({1, (pic.width + kTileW - 1) / kTileW, (pic.height + kTileH - 1) / kTileH});
  const Picture small = f == 1 ? crop(pic, 0, 0, pic.width, pic.height)
                               : zoom_out(pic, pic.width / f, pic.height / f, threads);
  Picture t = checker(kTileW, kTileH, 8);
  const int x0 = (kTileW - small.width) / 2, y0 = (kTileH - small.height) / 2;
  for (int y = 0; y < small.height; ++y)
    qx_sblend(t.row(y0 + y) + x0, t.row(y0 + y) + x0, small.row(y), small.width);
  return t;
}

Picture contact_sheet(const std::vector<Shot>& shots, int threads) {
  constexpr int kCols = 6, kPad = 4, kLabel = 11, kTitle = 18;
  constexpr int kCellW = kTileW + 2 * kPad, kCellH = kTileH + 2 * kPad + kLabel;
  const int rows = (static_cast<int>(shots.size()) + kCols - 1) / kCols;
  Picture sheet = fill(kCols * kCellW, kTitle + rows * kCellH, argb(32, 32, 36), threads);
  draw_text(sheet, kPad + 2, 6, "qxpixlib " QXPIXLIB_VERSION_STRING " - qxpix demo",
            argb(235, 235, 235));
  for (std::size_t i = 0; i < shots.size(); ++i) {
    const int cx = static_cast<int>(i % kCols) * kCellW;
    const int cy = kTitle + static_cast<int>(i / kCols) * kCellH;
    const Picture t = tile(shots[i].view, threads);
    for (int y = 0; y < kTileH; ++y)
      std::copy_n(t.row(y), kTileW, sheet.row(cy + kPad + y) + cx + kPad);
    const int text_w = static_cast<int>(shots[i].name.size()) * kAdvance - 1;
    draw_text(sheet, cx + (kCellW - text_w) / 2, cy + kPad + kTileH + 3, shots[i].name,
              argb(220, 220, 220));
  }
  return sheet;
}

std::string html_page(const std::vector<Shot>& shots) {
  std::string h =
      "<!DOCTYPE html>\n<html><head><meta charset=\"utf-8\"><title>qxpix demo</title>\n"
      "<style>body{font-family:sans-serif;background:#202024;color:#ddd}"
      "figure{display:inline-block;margin:8px;vertical-align:top}"
      "img{background:repeating-conic-gradient(#999 0 25%,#666 0 50%) 0 0/16px 16px}"
      "code{font-size:11px;color:#9cf;display:block;max-width:300px}</style></head><body>\n"
      "<h1>qxpixlib " QXPIXLIB_VERSION_STRING
      " demo</h1>\n<p><img src=\"index.png\" alt=\"contact sheet\"></p>\n";
  for (const Shot& s : shots)
    h += "<figure><img src=\"" + s.name + ".png\" alt=\"" + s.name + "\"><figcaption>" + s.name +
         "<code>" + s.command + "</code></figcaption></figure>\n";
  return h + "</body></html>\n";
}

}  // namespace

void run_demo(const std::string& dir, int threads,
              const std::function<void(const std::string&)>& progress) {
  if (mkdir(dir.c_str(), 0777) != 0 && errno != EEXIST)
    throw Failure(dir, std::string("cannot create directory: ") + std::strerror(errno));
  const std::string at = dir + "/";
  auto wrote = [&](const std::string& name) {
    if (progress) progress(at + name);
  };
  std::vector<Shot> shots;
  auto show = [&](const std::string& name, std::string command, const Picture& pic) {
    write_picture(at + name + ".png", pic);
    wrote(name + ".png");
    shots.push_back({name, std::move(command), crop(pic, 0, 0, pic.width, pic.height)});
  };

  // Sources, written so that every command shown can be run again on them.
  const Picture bg = bars(), grad = gradient(), fg = foreground();
  const Bytes mat = matte();
  const std::vector<std::uint8_t> lut = contrast_lut();
  show("bars", "(source)", bg);
  show("gradient", "(source)", grad);
  show("foreground", "(source)", fg);
  write_grey(at + "matte.png", mat);
  wrote("matte.png");
  shots.push_back({"matte", "(source)", grey_picture(mat)});
  write_file(at + "contrast.lut", lut);
  wrote("contrast.lut");
  const std::vector<std::uint8_t> v210 = v210_pattern(kW, kH);
  write_file(at + "pattern.v210", v210);
  wrote("pattern.v210");

  // The three blend families, each in its five variants.
  for (const char* family : {"blend", "lblend", "sblend"}) {
    for (int variant = 0; variant < 5; ++variant) {
      BlendChoice choice;
      choice.family = family_named(family);
      choice.has_opacity = variant == 1 || variant == 3;
      choice.opacity = 160;
      choice.mask = variant >= 2 ? &mat : nullptr;
      choice.lut = variant == 4 ? lut.data() : nullptr;
      const std::string name = blend_export(choice).substr(3);
      std::string cmd = std::string("qxpix blend --family ") + family;
      if (choice.has_opacity) cmd += " --opacity 160";
      if (choice.mask) cmd += " --mask matte.png";
      if (choice.lut) cmd += " --lut contrast.lut";
      show(name, cmd + " bars.png foreground.png -o " + name + ".png",
           blend(bg, fg, choice, threads));
    }
  }

  const Picture ayuv = argb_to_ayuv(bg, threads);
  show("argb2ayuv", "qxpix convert --to ayuv bars.png -o argb2ayuv.png", ayuv);
  show("ayuv2argb", "qxpix convert --to argb argb2ayuv.png -o ayuv2argb.png",
       ayuv_to_argb(ayuv, threads));

  const Planes planes = unpack_v210(v210, kW, kH, threads);
  const char* plane_names[] = {"y", "cb", "cr"};
  const Plane16* plane_ptrs[] = {&planes.y, &planes.cb, &planes.cr};
  for (int i = 0; i < 3; ++i) {
    const std::string name = std::string("v210_") + plane_names[i];
    write_grey16(at + name + ".png", *plane_ptrs[i], 10);
    wrote(name + ".png");
    shots.push_back({name,
                     "qxpix v210 pattern.v210 --width " + std::to_string(kW) + " --height " +
                         std::to_string(kH) +
                         " -o v210.png (writes v210_y.png, v210_cb.png, v210_cr.png)",
                     plane_picture(*plane_ptrs[i])});
  }

  show("fill", "qxpix fill --width 256 --height 192 --color '#ff8000a0' -o fill.png",
       fill(kW, kH, argb(255, 128, 0, 160), threads));
  show("alpha", "qxpix alpha foreground.png -o alpha.png", alpha(fg, threads));
  show("mask", "qxpix mask foreground.png --mask matte.png -o mask.png",
       apply_mask(fg, mat, threads));
  show("lin_pix", "qxpix mix bars.png gradient.png --weight 96 -o lin_pix.png",
       mix(bg, grad, 96, threads));
  const Picture strip = crop(grad, kW / 4, 0, kW / 2, kH);
  write_picture(at + "strip.png", strip);
  wrote("strip.png");
  show("zoom_in2x1d", "qxpix zoom-in --lines strip.png -o zoom_in2x1d.png",
       zoom_in_rows(strip, threads));
  const Picture centre = crop(bg, kW / 4, kH / 4, kW / 2, kH / 2);
  write_picture(at + "centre.png", centre);
  wrote("centre.png");
  show("zoom_in2x2d", "qxpix zoom-in centre.png -o zoom_in2x2d.png",
       zoom_in_picture(centre, threads));
  const Picture narrow = crop(grad, kW / 2 - 32, 0, 64, kH);
  write_picture(at + "narrow.png", narrow);
  wrote("narrow.png");
  show("scale_horz", "qxpix scale --width 256 narrow.png -o scale_horz.png",
       scale(narrow, kW, threads));
  show("zoom_outNx", "qxpix zoom-out --width 64 --height 48 gradient.png -o zoom_outNx.png",
       zoom_out(grad, kW / 4, kH / 4, threads));

  write_picture(at + "index.png", contact_sheet(shots, threads));
  wrote("index.png");
  OutputFile html(at + "index.html");
  const std::string page = html_page(shots);
  std::fwrite(page.data(), 1, page.size(), html.stream());
  html.commit();
  wrote("index.html");
}

}  // namespace qxpix

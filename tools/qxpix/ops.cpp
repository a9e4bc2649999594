#include "ops.h"

#include <qxpixlib.h>

#include <algorithm>
#include <cstring>
#include <thread>

namespace qxpix {

void for_bands(int rows, int threads, const std::function<void(int, int)>& body) {
  const int bands = std::clamp(threads, 1, std::max(rows, 1));
  if (bands == 1) {
    body(0, rows);
    return;
  }
  std::vector<std::jthread> pool;
  for (int b = 0; b < bands; ++b) {
    const int y0 = static_cast<int>(std::int64_t{rows} * b / bands);
    const int y1 = static_cast<int>(std::int64_t{rows} * (b + 1) / bands);
    pool.emplace_back([&body, y0, y1] { body(y0, y1); });
  }
}

namespace {

int round_up4(int n) { return (n + 3) / 4 * 4; }

// The same picture with its rows continued by copies of their last pixel up to a multiple of 4.
Picture with_padding(const Picture& src) {
  Picture p(src.width, src.height);
  const int padded = round_up4(src.width);
  for (int y = 0; y < src.height; ++y) {
    std::copy_n(src.row(y), src.width, p.row(y));
    std::fill(p.row(y) + src.width, p.row(y) + padded, src.row(y)[src.width - 1]);
  }
  return p;
}

// One picture in, one out of the same size, a line kernel per row.
template <class RowFn>
Picture per_row(const Picture& src, int threads, RowFn row_fn) {
  Picture out(src.width, src.height);
  for_bands(src.height, threads, [&](int y0, int y1) {
    for (int y = y0; y < y1; ++y) row_fn(out.row(y), src.row(y), y);
  });
  return out;
}

}  // namespace

// ---- blending ----

Family family_named(const std::string& name) {
  for (std::size_t i = 0; i < std::size(kFamilies); ++i)
    if (name == kFamilies[i].name) return static_cast<Family>(i);
  throw Failure("--family", "unknown family " + name + " (blend, lblend or sblend)");
}

std::string blend_export(const BlendChoice& choice) {
  std::string name = std::string("qx_") + kFamilies[static_cast<int>(choice.family)].name;
  if (choice.lut) return name + "_mlt";
  if (choice.mask) return name + (choice.has_opacity ? "_mt" : "_m");
  return name + (choice.has_opacity ? "_t" : "");
}

Picture blend(const Picture& bg, const Picture& fg, const BlendChoice& choice, int threads) {
  const FamilyExports& f = kFamilies[static_cast<int>(choice.family)];
  const int w = bg.width;
  const std::uint32_t op = choice.opacity;
  return per_row(bg, threads, [&](std::uint32_t* d, const std::uint32_t* b, int y) {
    const std::uint32_t* g = fg.row(y);
    const std::uint8_t* m = choice.mask ? choice.mask->row(y) : nullptr;
    if (choice.lut)
      f.mlt(d, b, g, w, m, choice.lut, choice.has_opacity ? op : 256);
    else if (m && choice.has_opacity)
      f.mt(d, b, g, w, m, op);
    else if (m)
      f.m(d, b, g, w, m);
    else if (choice.has_opacity)
      f.t(d, b, g, w, op);
    else
      f.base(d, b, g, w);
  });
}

// ---- one picture in, one out ----

Picture argb_to_ayuv(const Picture& src, int threads) {
  return per_row(src, threads, [&](std::uint32_t* d, const std::uint32_t* s, int) {
    qx_argb2ayuv(d, s, src.width);
  });
}

Picture ayuv_to_argb(const Picture& src, int threads) {
  return per_row(src, threads, [&](std::uint32_t* d, const std::uint32_t* s, int) {
    qx_ayuv2argb(d, s, src.width);
  });
}

Picture alpha(const Picture& src, int threads) {
  return per_row(src, threads,
                 [&](std::uint32_t* d, const std::uint32_t* s, int) { qx_alpha(d, s, src.width); });
}

Picture apply_mask(const Picture& src, const Bytes& mask, int threads) {
  return per_row(src, threads, [&](std::uint32_t* d, const std::uint32_t* s, int y) {
    qx_mask(d, s, mask.row(y), src.width);
  });
}

Picture mix(const Picture& a, const Picture& b, std::uint32_t weight, int threads) {
  return per_row(a, threads, [&](std::uint32_t* d, const std::uint32_t* s, int y) {
    qx_lin_pix(d, s, b.row(y), weight, a.width);
  });
}

Picture fill(int width, int height, std::uint32_t value, int threads) {
  Picture out(width, height);
  for_bands(height, threads, [&](int y0, int y1) {
    for (int y = y0; y < y1; ++y) qx_fill(out.row(y), value, width);
  });
  return out;
}

// ---- zoom and scaling ----

Picture zoom_in_rows(const Picture& src, int threads) {
  const Picture padded = with_padding(src);
  const int wp = round_up4(src.width);
  Picture out(2 * src.width, src.height);  // its stride is at least 2 * wp
  for_bands(src.height, threads, [&](int y0, int y1) {
    for (int y = y0; y < y1; ++y) qx_zoom_in2x1d(out.row(y), padded.row(y), wp);
  });
  return out;
}

Picture zoom_in_picture(const Picture& src, int threads) {
  const Picture padded = with_padding(src);
  const int wp = round_up4(src.width);
  const std::ptrdiff_t pitch = 2 * wp;  // the kernel's output rows are packed
  Picture out(2 * src.width, 2 * src.height, pitch);
  const auto stride = static_cast<std::int32_t>(padded.stride);
  for_bands(src.height, threads, [&](int y0, int y1) {
    const int h = y1 - y0;
    if (y1 == src.height) {
      qx_zoom_in2x2d(out.row(2 * y0), padded.row(y0), wp, h, stride);
      return;
    }
    // Output row 2 * y1 - 1 averages rows of two bands, and the kernel would end the band with a
    // copy instead: double one more source row into a scratch block and keep the band's rows.
    Picture scratch(2 * wp, 2 * (h + 1), pitch);
    qx_zoom_in2x2d(scratch.row(0), padded.row(y0), wp, h + 1, stride);
    std::memcpy(out.row(2 * y0), scratch.row(0), sizeof(std::uint32_t) * pitch * 2 * h);
  });
  return out;
}

Picture scale(const Picture& src, int width, int threads) {
  Picture out(width, src.height);
  for_bands(src.height, threads, [&](int y0, int y1) {
    qx_scale_horz(out.row(y0), width, static_cast<std::int32_t>(out.stride), src.row(y0), src.width,
                  y1 - y0, static_cast<std::int32_t>(src.stride));
  });
  return out;
}

Reach zoom_out_reach(int src_width, int src_height, int width, int height) {
  Reach r{};
  r.fx = (src_width + width - 1) / width;
  r.fy = (src_height + height - 1) / height;
  r.last_x = r.fx * (width - 1);
  r.last_y = r.fy * (height - 1);
  r.inside = r.last_x < src_width && r.last_y < src_height;
  return r;
}

Picture zoom_out(const Picture& src, int width, int height, int threads) {
  // The kernel takes packed pictures: rows exactly width pixels apart.
  Picture packed(src.width, src.height, src.width);
  for (int y = 0; y < src.height; ++y) std::copy_n(src.row(y), src.width, packed.row(y));
  const int fy = zoom_out_reach(src.width, src.height, width, height).fy;
  Picture out(width, height, width);
  for_bands(height, threads, [&](int r0, int r1) {
    // A band of output rows samples source rows from r0 * fy on; giving the kernel exactly
    // (r1 - r0) * fy source rows keeps its vertical factor fy.
    qx_zoom_outNx(out.row(r0), width, r1 - r0, packed.row(r0 * fy), src.width, (r1 - r0) * fy);
  });
  return out;
}

// ---- v210 ----

std::size_t v210_row_bytes(int width) { return std::size_t{128} * ((width + 47) / 48); }

Planes unpack_v210(const std::vector<std::uint8_t>& data, int width, int height, int threads) {
  Planes p{Plane16(width, height), Plane16(width / 2, height), Plane16(width / 2, height)};
  const std::size_t row_bytes = v210_row_bytes(width);
  for_bands(height, threads, [&](int y0, int y1) {
    // One line unpacks into Y, Cb and Cr one after the other (4 * width bytes).
    std::vector<std::uint16_t> line(std::size_t{2} * width);
    for (int y = y0; y < y1; ++y) {
      qx_v210yuv422p10(line.data(),
                       reinterpret_cast<const std::uint32_t*>(data.data() + row_bytes * y), width);
      std::copy_n(line.data(), width, p.y.row(y));
      std::copy_n(line.data() + width, width / 2, p.cb.row(y));
      std::copy_n(line.data() + width + width / 2, width / 2, p.cr.row(y));
    }
  });
  return p;
}

std::vector<std::uint8_t> planar_bytes(const Planes& planes) {
  std::vector<std::uint8_t> out;
  for (const Plane16* plane : {&planes.y, &planes.cb, &planes.cr})
    for (int y = 0; y < plane->height; ++y)
      for (int x = 0; x < plane->width; ++x) {
        const std::uint16_t v = plane->row(y)[x];
        out.push_back(static_cast<std::uint8_t>(v));
        out.push_back(static_cast<std::uint8_t>(v >> 8));
      }
  return out;
}

}  // namespace qxpix

// qxpix: every kernel of qxpixlib on PNG pictures, from the command line. It uses the library's
// public interface only, as any host does.
//
// Exit status: 0 done, 1 a file or value could not be used (one line on stderr names it), 2 the
// command line itself is wrong. An output file appears only when complete.
#include <qxpixlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <optional>
#include <thread>

#include "bench.h"
#include "demo.h"
#include "ops.h"
#include "picture.h"

namespace qxpix {
namespace {

// ---- frames: inputs, outputs and progress ----

bool is_directory(const std::string& path) {
  struct stat st;
  return stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

// Each argument is a file, or a directory standing for its *<ext> files in name order.
std::vector<std::string> expand(const std::vector<std::string>& args, const std::string& ext,
                                bool* any_directory = nullptr) {
  std::vector<std::string> files;
  for (const std::string& a : args) {
    if (!is_directory(a)) {
      files.push_back(a);
      continue;
    }
    if (any_directory) *any_directory = true;
    std::vector<std::string> found;
    std::error_code ec;
    for (const auto& e : std::filesystem::directory_iterator(a, ec))
      if (e.path().extension() == ext && !is_directory(e.path().string()))
        found.push_back(e.path().string());
    if (ec) throw Failure(a, "cannot list: " + ec.message());
    if (found.empty()) throw Failure(a, "no *" + ext + " files in this directory");
    std::sort(found.begin(), found.end());
    files.insert(files.end(), found.begin(), found.end());
  }
  return files;
}

// Where each frame's result goes: `out` itself for a single input file, else a file named after
// the frame in the directory `out` (made if missing).
std::vector<std::string> outputs_for(const std::vector<std::string>& frames, bool from_directory,
                                     const std::string& out, const std::string& suffix) {
  if (frames.size() == 1 && !from_directory && !is_directory(out)) return {out};
  if (!is_directory(out) && mkdir(out.c_str(), 0777) != 0)
    throw Failure(out, std::string("cannot create directory: ") + std::strerror(errno));
  std::vector<std::string> paths;
  for (const std::string& f : frames) paths.push_back(out + "/" + stem(f) + suffix);
  return paths;
}

void refuse_overwriting_inputs(const std::vector<std::string>& outputs,
                               const std::vector<std::vector<std::string>>& inputs) {
  for (const std::string& o : outputs) {
    std::error_code ec;
    for (const auto& list : inputs)
      for (const std::string& i : list)
        if (std::filesystem::equivalent(o, i, ec))
          throw Failure(o, "is an input; choose another output");
  }
}

struct Run {
  int threads = 1;
  bool quiet = false;
};

// Calls one(i) for each of n frames, showing progress on a terminal when there are several.
void each_frame(const Run& run, const char* what, std::size_t n,
                const std::function<std::string(std::size_t)>& one) {
  const bool show = n > 1 && !run.quiet && isatty(STDERR_FILENO);
  for (std::size_t i = 0; i < n; ++i) {
    const std::string wrote = one(i);
    if (show) std::fprintf(stderr, "\rqxpix %s: %zu/%zu %s\x1b[K", what, i + 1, n, wrote.c_str());
  }
  if (show) std::fputc('\n', stderr);
}

// ---- checks that name the file ----

void same_size(const std::string& path, const Size& s, const std::string& ref_path, const Size& ref,
               const char* what) {
  if (s.width != ref.width || s.height != ref.height)
    throw Failure(path, std::string(what) + " is " + std::to_string(s.width) + "x" +
                            std::to_string(s.height) + " but " + ref_path + " is " +
                            std::to_string(ref.width) + "x" + std::to_string(ref.height));
}

void at_least(const std::string& subject, const char* option, long value, long min) {
  if (value < min)
    throw Failure(subject, std::string(option) + " " + std::to_string(value) +
                               ": must be at least " + std::to_string(min));
}

// A 256-entry table: 256 raw bytes, or a PNG of 256 pixels (grey levels, row by row).
std::vector<std::uint8_t> read_lut(const std::string& path) {
  if (path.size() > 4 && path.compare(path.size() - 4, 4, ".png") == 0) {
    const Bytes g = read_grey(path);
    if (std::int64_t{g.width} * g.height != 256)
      throw Failure(path, "a lookup table picture has 256 pixels, this one " +
                              std::to_string(g.width) + "x" + std::to_string(g.height));
    std::vector<std::uint8_t> lut;
    for (int y = 0; y < g.height; ++y) lut.insert(lut.end(), g.row(y), g.row(y) + g.width);
    return lut;
  }
  std::vector<std::uint8_t> lut = read_file(path);
  if (lut.size() != 256)
    throw Failure(path, std::to_string(lut.size()) + " bytes; a lookup table is 256 bytes");
  return lut;
}

std::uint32_t parse_colour(const std::string& text) {
  std::string hex = !text.empty() && text[0] == '#' ? text.substr(1) : text;
  const bool ok = (hex.size() == 6 || hex.size() == 8) &&
                  hex.find_first_not_of("0123456789abcdefABCDEF") == std::string::npos;
  if (!ok) throw Failure("--color", text + ": expected #RRGGBB or #RRGGBBAA");
  if (hex.size() == 6) hex += "ff";
  const std::uint32_t rgba = static_cast<std::uint32_t>(std::stoul(hex, nullptr, 16));
  return rgba << 24 | rgba >> 8;  // A, R, G, B from R, G, B, A
}

// ---- the subcommands ----

void no_check(const std::string&, const Size&) {}

struct PairArgs {
  std::string first, second;
};

// Pairs two inputs frame by frame; either side may be one picture used with every frame.
// check(first_path, size) vets each frame of the first input before anything is written.
void pair_frames(const Run& run, const char* what, const PairArgs& a, const std::string& out,
                 const std::function<void(const std::string&, const Size&)>& check,
                 const std::function<Picture(const Picture&, const Picture&)>& op) {
  bool dir = false;
  const std::vector<std::string> xs = expand({a.first}, ".png", &dir);
  const std::vector<std::string> ys = expand({a.second}, ".png", &dir);
  if (xs.size() != ys.size() && xs.size() != 1 && ys.size() != 1)
    throw Failure(a.second, std::to_string(ys.size()) + " frames against " +
                                std::to_string(xs.size()) + " in " + a.first);
  const std::size_t n = std::max(xs.size(), ys.size());
  auto x_of = [&](std::size_t i) -> const std::string& { return xs[xs.size() == 1 ? 0 : i]; };
  auto y_of = [&](std::size_t i) -> const std::string& { return ys[ys.size() == 1 ? 0 : i]; };
  std::vector<std::string> names;
  for (std::size_t i = 0; i < n; ++i) names.push_back(ys.size() == 1 ? x_of(i) : y_of(i));
  const std::vector<std::string> outs = outputs_for(names, dir, out, ".png");
  refuse_overwriting_inputs(outs, {xs, ys});
  // Every input is checked (it opens, its header parses, the sizes agree) before anything is
  // written.
  for (std::size_t i = 0; i < n; ++i) {
    const Size xs_size = probe_png(x_of(i));
    check(x_of(i), xs_size);
    same_size(y_of(i), probe_png(y_of(i)), x_of(i), xs_size, "the picture");
  }
  each_frame(run, what, n, [&](std::size_t i) {
    const Picture x = read_picture(x_of(i)), y = read_picture(y_of(i));
    check(x_of(i), {x.width, x.height});
    same_size(y_of(i), {y.width, y.height}, x_of(i), {x.width, x.height}, "the picture");
    write_picture(outs[i], op(x, y));
    return outs[i];
  });
}

// One picture in, one out, for each frame.
void each_picture(const Run& run, const char* what, const std::vector<std::string>& inputs,
                  const std::string& out,
                  const std::function<void(const std::string&, const Size&)>& check,
                  const std::function<Picture(const Picture&)>& op) {
  bool dir = false;
  const std::vector<std::string> frames = expand(inputs, ".png", &dir);
  const std::vector<std::string> outs = outputs_for(frames, dir, out, ".png");
  refuse_overwriting_inputs(outs, {frames});
  for (const std::string& f : frames) check(f, probe_png(f));
  each_frame(run, what, frames.size(), [&](std::size_t i) {
    const Picture pic = read_picture(frames[i]);
    check(frames[i], {pic.width, pic.height});
    write_picture(outs[i], op(pic));
    return outs[i];
  });
}

struct Options {
  Run run;
  PairArgs pair;
  std::vector<std::string> inputs;
  std::string out, family = "blend", mask, lut, to, plot, dir;
  std::optional<int> opacity;
  int weight = 128, width = 0, height = 0;
  double millis = 25;
  bool lines = false, raw = false;
  std::string colour;
};

void cmd_blend(const Options& o) {
  BlendChoice choice;
  choice.family = family_named(o.family);
  choice.has_opacity = o.opacity.has_value();
  choice.opacity = static_cast<std::uint32_t>(o.opacity.value_or(256));
  std::optional<Bytes> mask;
  std::vector<std::uint8_t> lut;
  if (!o.lut.empty()) {
    if (o.mask.empty()) throw Failure(o.lut, "--lut maps mask bytes and needs --mask");
    lut = read_lut(o.lut);
    choice.lut = lut.data();
  }
  if (!o.mask.empty()) {
    mask = read_grey(o.mask);
    choice.mask = &*mask;
  }
  auto check = [&](const std::string& bg, const Size& s) {
    if (mask) same_size(o.mask, {mask->width, mask->height}, bg, s, "the mask");
  };
  pair_frames(o.run, "blend", o.pair, o.out, check, [&](const Picture& bg, const Picture& fg) {
    return blend(bg, fg, choice, o.run.threads);
  });
}

void cmd_mix(const Options& o) {
  pair_frames(o.run, "mix", o.pair, o.out, no_check, [&](const Picture& a, const Picture& b) {
    return mix(a, b, static_cast<std::uint32_t>(o.weight), o.run.threads);
  });
}

void cmd_convert(const Options& o) {
  const bool to_ayuv = o.to == "ayuv";
  each_picture(o.run, "convert", o.inputs, o.out, no_check, [&](const Picture& p) {
    return to_ayuv ? argb_to_ayuv(p, o.run.threads) : ayuv_to_argb(p, o.run.threads);
  });
}

void cmd_alpha(const Options& o) {
  each_picture(o.run, "alpha", o.inputs, o.out, no_check,
               [&](const Picture& p) { return alpha(p, o.run.threads); });
}

void cmd_mask(const Options& o) {
  const Bytes mask = read_grey(o.mask);
  each_picture(
      o.run, "mask", o.inputs, o.out,
      [&](const std::string& f, const Size& s) {
        same_size(o.mask, {mask.width, mask.height}, f, s, "the mask");
      },
      [&](const Picture& p) { return apply_mask(p, mask, o.run.threads); });
}

void cmd_fill(const Options& o) {
  at_least(o.out, "--width", o.width, 1);
  at_least(o.out, "--height", o.height, 1);
  const std::uint32_t value = parse_colour(o.colour);
  write_picture(o.out, fill(o.width, o.height, value, o.run.threads));
}

void cmd_zoom_in(const Options& o) {
  each_picture(o.run, "zoom-in", o.inputs, o.out, no_check, [&](const Picture& p) {
    return o.lines ? zoom_in_rows(p, o.run.threads) : zoom_in_picture(p, o.run.threads);
  });
}

void cmd_scale(const Options& o) {
  auto check = [&](const std::string& f, const Size& s) {
    at_least(f, "--width", o.width, 4);
    if (o.width % 4)
      throw Failure(f, "--width " + std::to_string(o.width) +
                           ": the scaler writes whole groups of 4 pixels; give a multiple of 4");
    if (s.width < 2) throw Failure(f, "a picture 1 pixel wide cannot be resampled");
  };
  each_picture(o.run, "scale", o.inputs, o.out, check,
               [&](const Picture& p) { return scale(p, o.width, o.run.threads); });
}

void cmd_zoom_out(const Options& o) {
  auto check = [&](const std::string& f, const Size& s) {
    at_least(f, "--width", o.width, 1);
    at_least(f, "--height", o.height, 1);
    const Reach r = zoom_out_reach(s.width, s.height, o.width, o.height);
    if (!r.inside)
      throw Failure(f, "zoom-out from " + std::to_string(s.width) + "x" + std::to_string(s.height) +
                           " to " + std::to_string(o.width) + "x" + std::to_string(o.height) +
                           " would sample past the picture (factors " + std::to_string(r.fx) +
                           " x " + std::to_string(r.fy) + " reach column " +
                           std::to_string(r.last_x) + ", row " + std::to_string(r.last_y) +
                           "); choose a smaller size");
  };
  each_picture(o.run, "zoom-out", o.inputs, o.out, check,
               [&](const Picture& p) { return zoom_out(p, o.width, o.height, o.run.threads); });
}

void cmd_v210(const Options& o) {
  bool dir = false;
  const std::vector<std::string> frames = expand(o.inputs, ".v210", &dir);
  auto check = [&](const std::string& f, std::size_t bytes) {
    at_least(f, "--width", o.width, 2);
    at_least(f, "--height", o.height, 1);
    if (o.width % 2)
      throw Failure(f,
                    "--width " + std::to_string(o.width) + " is odd; v210 holds pixels in pairs");
    const std::size_t want = v210_row_bytes(o.width) * o.height;
    if (bytes != want)
      throw Failure(f, std::to_string(bytes) + " bytes, but " + std::to_string(o.width) + "x" +
                           std::to_string(o.height) + " pixels of v210 take " +
                           std::to_string(want) + " (rows of " +
                           std::to_string(v210_row_bytes(o.width)) + " bytes)");
  };
  // Each frame writes one raw planar file, or three PNGs: <name>_y.png, _cb.png, _cr.png.
  std::string base = o.out;
  if (!o.raw && base.size() > 4 && base.compare(base.size() - 4, 4, ".png") == 0)
    base.resize(base.size() - 4);
  const std::vector<std::string> outs = outputs_for(frames, dir, base, o.raw ? ".yuv" : "");
  std::vector<std::string> written;
  for (const std::string& out : outs)
    for (const char* plane : {"_y.png", "_cb.png", "_cr.png"})
      if (!o.raw || plane[1] == 'y') written.push_back(o.raw ? out : out + plane);
  refuse_overwriting_inputs(written, {frames});
  for (const std::string& f : frames) {
    struct stat st;
    if (stat(f.c_str(), &st) != 0)
      throw Failure(f, std::string("cannot open: ") + std::strerror(errno));
    check(f, static_cast<std::size_t>(st.st_size));
  }
  each_frame(o.run, "v210", frames.size(), [&](std::size_t i) {
    const std::vector<std::uint8_t> data = read_file(frames[i]);
    check(frames[i], data.size());
    const Planes p = unpack_v210(data, o.width, o.height, o.run.threads);
    if (o.raw) {
      write_file(outs[i], planar_bytes(p));
    } else {
      write_grey16(outs[i] + "_y.png", p.y, 10);
      write_grey16(outs[i] + "_cb.png", p.cb, 10);
      write_grey16(outs[i] + "_cr.png", p.cr, 10);
    }
    return outs[i];
  });
}

void cmd_demo(const Options& o) {
  const bool show = !o.run.quiet && isatty(STDERR_FILENO);
  run_demo(o.dir, o.run.threads, [&](const std::string& path) {
    if (show) std::fprintf(stderr, "\rqxpix demo: %s\x1b[K", path.c_str());
  });
  if (show) std::fputc('\n', stderr);
  std::printf("%s/index.png\n", o.dir.c_str());
}

void cmd_bench(const Options& o) {
  if (o.millis <= 0) throw Failure("--time", "must be positive");
  if (!o.plot.empty()) {
    // Fail on an unusable chart path before spending the time measuring.
    OutputFile probe(o.plot);
  }
  const bool show = !o.run.quiet && isatty(STDERR_FILENO);
  const std::vector<BenchRow> rows =
      run_bench(o.millis, [&](int i, int n, const std::string& name) {
        if (show) std::fprintf(stderr, "\rqxpix bench: %d/%d %s\x1b[K", i + 1, n, name.c_str());
      });
  if (show) std::fputs("\r\x1b[K", stderr);
  std::printf("%s", bench_table(rows).c_str());
  if (!o.plot.empty()) plot_bench(o.plot, rows);
}

}  // namespace
}  // namespace qxpix

int main(int argc, char** argv) {
  using namespace qxpix;
  Options o;
  o.run.threads = static_cast<int>(std::max(1u, std::thread::hardware_concurrency()));

  CLI::App app{"qxpix " QXPIXLIB_VERSION_STRING
               ": the qxpixlib pixel kernels on PNG pictures.\n"
               "Pictures are read as 8-bit RGBA (grey and RGB expanded, alpha 255 when absent) "
               "and handed to the kernels as bytes B, G, R, A.\n"
               "An input may be a directory of frames (*.png, *.v210 for v210); -o is then a "
               "directory.",
               "qxpix"};
  app.set_version_flag("--version", "qxpix " QXPIXLIB_VERSION_STRING);
  app.require_subcommand(1, 1);
  app.fallthrough();
  app.footer(
      "Exit status: 0 done, 1 a file or value could not be used, 2 bad command line.\n"
      "Results are written under a temporary name and renamed when complete.");
  app.add_option("-j,--threads", o.run.threads, "Threads; each picture's rows are split among them")
      ->check(CLI::Range(1, 1024));
  app.add_flag("-q,--quiet", o.run.quiet, "No progress display");

  auto out_option = [&](CLI::App* c, const char* what) {
    c->add_option("-o,--output", o.out, what)->required();
  };
  auto inputs = [&](CLI::App* c) {
    c->add_option("inputs", o.inputs, "PNG files or directories of them")->required();
  };

  CLI::App* blend = app.add_subcommand(
      "blend", "Lay FG over BG with one of the 15 blend exports (family x variant)");
  blend->add_option("bg", o.pair.first, "Background picture (or directory of frames)")->required();
  blend->add_option("fg", o.pair.second, "Foreground picture (or directory of frames)")->required();
  blend
      ->add_option("--family", o.family,
                   "blend (premultiplied result), lblend (linear mix, "
                   "additive alpha) or sblend (straight-alpha over)")
      ->check(CLI::IsMember({"blend", "lblend", "sblend"}))
      ->capture_default_str();
  blend->add_option("--opacity", o.opacity, "Global opacity, 0 to 256 (256 = 1): variant _t")
      ->check(CLI::Range(0, 256));
  blend->add_option("--mask", o.mask, "Grey PNG of the pictures' size: variant _m (_mt)");
  blend->add_option("--lut", o.lut,
                    "256-byte table (.bin) or 256-pixel grey PNG mapping mask "
                    "values: variant _mlt");
  out_option(blend, "Output PNG (or directory)");

  CLI::App* convert = app.add_subcommand("convert", "ARGB to AYUV (BT.601) or back");
  inputs(convert);
  convert->add_option("--to", o.to, "ayuv or argb")
      ->required()
      ->check(CLI::IsMember({"ayuv", "argb"}));
  out_option(convert, "Output PNG (or directory)");

  CLI::App* v210 = app.add_subcommand(
      "v210", "Unpack v210 (rows padded to 128 bytes) into 10-bit Y, Cb, Cr planes");
  v210->add_option("inputs", o.inputs, "v210 files or directories of *.v210")->required();
  v210->add_option("--width", o.width, "Pixels per row (even)")->required();
  v210->add_option("--height", o.height, "Rows")->required();
  v210->add_flag("--raw", o.raw, "Write one planar yuv422p10le file instead of three PNGs");
  out_option(v210,
             "OUT.png gives OUT_y.png, OUT_cb.png, OUT_cr.png (16-bit grey); with --raw "
             "the planar file");

  CLI::App* alpha = app.add_subcommand("alpha", "A grey picture of the alpha channel");
  inputs(alpha);
  out_option(alpha, "Output PNG (or directory)");

  CLI::App* mask = app.add_subcommand("mask", "Scale alpha by a grey mask");
  inputs(mask);
  mask->add_option("--mask", o.mask, "Grey PNG of the pictures' size")->required();
  out_option(mask, "Output PNG (or directory)");

  CLI::App* mix = app.add_subcommand("mix", "Mix two pictures: A * w + B * (256 - w), / 256");
  mix->add_option("a", o.pair.first, "First picture (or directory)")->required();
  mix->add_option("b", o.pair.second, "Second picture (or directory)")->required();
  mix->add_option("--weight", o.weight, "Weight of A, 0 to 256")
      ->check(CLI::Range(0, 256))
      ->capture_default_str();
  out_option(mix, "Output PNG (or directory)");

  CLI::App* fill = app.add_subcommand("fill", "A picture of one colour");
  fill->add_option("--width", o.width, "Width")->required();
  fill->add_option("--height", o.height, "Height")->required();
  fill->add_option("--color", o.colour, "#RRGGBB or #RRGGBBAA")->required();
  out_option(fill, "Output PNG");

  CLI::App* zoom_in = app.add_subcommand("zoom-in", "Double the size (2x2, or rows only)");
  inputs(zoom_in);
  zoom_in->add_flag("--lines", o.lines, "Double each row's width only (qx_zoom_in2x1d)");
  out_option(zoom_in, "Output PNG (or directory)");

  CLI::App* scale = app.add_subcommand("scale", "Resample rows to a new width (linear)");
  inputs(scale);
  scale->add_option("--width", o.width, "New width, a multiple of 4")->required();
  out_option(scale, "Output PNG (or directory)");

  CLI::App* zoom_out = app.add_subcommand("zoom-out", "Shrink by whole factors (pixel picking)");
  inputs(zoom_out);
  zoom_out->add_option("--width", o.width, "New width")->required();
  zoom_out->add_option("--height", o.height, "New height")->required();
  out_option(zoom_out, "Output PNG (or directory)");

  CLI::App* demo = app.add_subcommand(
      "demo", "Built-in pictures through every kernel family; DIR/index.png shows them all");
  demo->add_option("dir", o.dir, "Directory to write (made if missing)")->required();

  CLI::App* bench = app.add_subcommand(
      "bench", "Speed of every export (the form this processor runs) beside memcpy");
  bench->add_option("--plot", o.plot, "Also draw a bar chart into this PNG (needs gnuplot)");
  bench->add_option("--time", o.millis, "Milliseconds spent on each row")->capture_default_str();

  app.failure_message([](const CLI::App*, const CLI::Error& e) {
    return std::string("qxpix: ") + e.what() + " (see qxpix --help)\n";
  });
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    const int code = app.exit(e);
    return code == 0 ? 0 : 2;
  }

  const std::pair<CLI::App*, void (*)(const Options&)> commands[] = {
      {blend, cmd_blend}, {convert, cmd_convert},   {v210, cmd_v210}, {alpha, cmd_alpha},
      {mask, cmd_mask},   {mix, cmd_mix},           {fill, cmd_fill}, {zoom_in, cmd_zoom_in},
      {scale, cmd_scale}, {zoom_out, cmd_zoom_out}, {demo, cmd_demo}, {bench, cmd_bench},
  };
  try {
    for (const auto& [sub, run] : commands)
      if (sub->parsed()) run(o);
  } catch (const Failure& f) {
    std::fprintf(stderr, "qxpix: %s: %s\n", f.subject.c_str(), f.what());
    return 1;
  } catch (const std::bad_alloc&) {
    std::fprintf(stderr, "qxpix: out of memory\n");
    return 1;
  }
  return 0;
}

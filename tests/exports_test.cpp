// The symbols the library shows hosts: the qx_ interface and nothing else; and the version macros.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <set>
#include <sstream>
#include <string>

#include "qxpixlib.h"

extern "C" int qx_c_api_smoke(void);

namespace {

// clang-format off
const std::set<std::string> kExported = {
    "qx_pixinit", "qx_r210argb", "qx_fill",
    "qx_argb2ayuv", "qx_ayuv2argb", "qx_v210yuv422p10",
    "qx_blend", "qx_blend_t", "qx_blend_m", "qx_blend_mt", "qx_blend_mlt",
    "qx_lblend", "qx_lblend_t", "qx_lblend_m", "qx_lblend_mt", "qx_lblend_mlt",
    "qx_sblend", "qx_sblend_t", "qx_sblend_m", "qx_sblend_mt", "qx_sblend_mlt",
    "qx_alpha", "qx_mask",
    "qx_lin_pix", "qx_zoom_in2x1d", "qx_zoom_in2x2d", "qx_scale_1d", "qx_scale_horz",
    "qx_zoom_outNx",
};
// clang-format on

// The symbols nm lists as defined in a library, given nm's options and the file.
std::set<std::string> defined_symbols(const std::string& nm_args) {
  std::set<std::string> names;
  FILE* p = popen(("nm --defined-only " + nm_args).c_str(), "r");
  if (!p) return names;
  char line[512];
  while (fgets(line, sizeof line, p)) {
    std::istringstream in(line);
    std::string addr, type, name;
    if (in >> addr >> type >> name) names.insert(name);
  }
  pclose(p);
  return names;
}

#ifdef QX_SHARED_LIBRARY
TEST(SharedLibrary, ExportsExactlyTheInterface) {
  EXPECT_EQ(defined_symbols("-D '" QX_SHARED_LIBRARY "'"), kExported);
}

TEST(SharedLibrary, PixinitAndR210argbAreOneEntry) {
  void* lib = dlopen(QX_SHARED_LIBRARY, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(lib, nullptr) << dlerror();
  void* a = dlsym(lib, "qx_pixinit");
  void* b = dlsym(lib, "qx_r210argb");
  EXPECT_NE(a, nullptr);
  EXPECT_EQ(a, b);
  dlclose(lib);
}
#else
// A host linking the static library meets no global name of ours but the interface.
TEST(StaticLibrary, ExportsExactlyTheInterface) {
  EXPECT_EQ(defined_symbols("-g '" QX_STATIC_LIBRARY "'"), kExported);
}
#endif

TEST(PublicHeader, VersionMacrosAreTheProjectVersion) {
  EXPECT_STREQ(QXPIXLIB_VERSION_STRING, QX_PROJECT_VERSION);
  EXPECT_EQ(std::to_string(QXPIXLIB_VERSION_MAJOR) + "." + std::to_string(QXPIXLIB_VERSION_MINOR) +
                "." + std::to_string(QXPIXLIB_VERSION_PATCH),
            QX_PROJECT_VERSION);
}

TEST(SharedLibrary, HeaderWorksFromC) { EXPECT_EQ(qx_c_api_smoke(), 0); }

}  // namespace

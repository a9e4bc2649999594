// The symbols the library shows hosts: the qx_ interface and nothing else (on Windows also what a
// host needs beside the DLL: nothing but system DLLs); and the version macros.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <set>
#include <sstream>
#include <string>

#include "host/check.h"
#include "qxpixlib.h"

#if defined(_WIN32)
#include <windows.h>

#include <algorithm>
#include <cctype>
#else
#include <dlfcn.h>
#endif

extern "C" int qx_c_api_smoke(void);

namespace {

#define QX_NAME(name, shape) #name,
const std::set<std::string> kExported = {QX_EXPORTS(QX_NAME)};
#undef QX_NAME

#if defined(_WIN32)

// The export and import directories of a loaded module, read from its mapped image.
struct PeTables {
  std::set<std::string> names;    // exported names
  std::set<DWORD> entries;        // distinct addresses the names lead to
  std::set<std::string> imports;  // DLLs imported from, upper case
};

PeTables pe_tables(HMODULE module) {
  const auto* base = reinterpret_cast<const std::uint8_t*>(module);
  const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
  const auto* nt = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
  const auto& dirs = nt->OptionalHeader.DataDirectory;
  PeTables t;
  const auto* exp = reinterpret_cast<const IMAGE_EXPORT_DIRECTORY*>(
      base + dirs[IMAGE_DIRECTORY_ENTRY_EXPORT].VirtualAddress);
  const auto* names = reinterpret_cast<const DWORD*>(base + exp->AddressOfNames);
  const auto* ordinals = reinterpret_cast<const WORD*>(base + exp->AddressOfNameOrdinals);
  const auto* functions = reinterpret_cast<const DWORD*>(base + exp->AddressOfFunctions);
  for (DWORD i = 0; i < exp->NumberOfNames; ++i) {
    t.names.insert(reinterpret_cast<const char*>(base + names[i]));
    t.entries.insert(functions[ordinals[i]]);
  }
  for (const auto* imp = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(
           base + dirs[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress);
       imp->Name != 0; ++imp) {
    std::string name = reinterpret_cast<const char*>(base + imp->Name);
    std::transform(name.begin(), name.end(), name.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    t.imports.insert(name);
  }
  return t;
}

#ifdef QX_SHARED_LIBRARY
TEST(SharedLibrary, ExportsExactlyTheInterface) {
  HMODULE lib = LoadLibraryA(QX_SHARED_LIBRARY);
  ASSERT_NE(lib, nullptr) << "LoadLibrary error " << GetLastError();
  const PeTables t = pe_tables(lib);
  EXPECT_EQ(t.names, kExported);
  EXPECT_EQ(t.entries.size(), kExported.size() - 1);  // qx_r210argb is qx_pixinit
  // Self-contained: the compiler's runtime is linked in, so a host needs only the system DLLs.
  EXPECT_EQ(t.imports, (std::set<std::string>{"KERNEL32.DLL", "MSVCRT.DLL"}));
  FreeLibrary(lib);
}
#endif

#else

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
#else
// A host linking the static library meets no global name of ours but the interface.
TEST(StaticLibrary, ExportsExactlyTheInterface) {
  EXPECT_EQ(defined_symbols("-g '" QX_STATIC_LIBRARY "'"), kExported);
}
#endif

#endif

#ifdef QX_SHARED_LIBRARY
// Through the loader, as a host resolves them.
TEST(SharedLibrary, PixinitAndR210argbAreOneEntry) {
#if defined(_WIN32)
  HMODULE lib = LoadLibraryA(QX_SHARED_LIBRARY);
  auto entry = [&](const char* name) { return reinterpret_cast<void*>(GetProcAddress(lib, name)); };
#else
  void* lib = dlopen(QX_SHARED_LIBRARY, RTLD_NOW | RTLD_LOCAL);
  auto entry = [&](const char* name) { return dlsym(lib, name); };
#endif
  ASSERT_NE(lib, nullptr);
  EXPECT_NE(entry("qx_pixinit"), nullptr);
  EXPECT_EQ(entry("qx_pixinit"), entry("qx_r210argb"));
#if defined(_WIN32)
  FreeLibrary(lib);
#else
  dlclose(lib);
#endif
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

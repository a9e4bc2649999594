/* A host of the library: loads it at run time by name, resolves every export by name, and checks
 * each against the scalar forms. Exits 0 when all 29 names resolve and agree. */
#include <stdio.h>

#include "host/check.h"

#if defined(_WIN32)
#include <windows.h>

static qx_entry resolve(const char* name, void* library) {
  return (qx_entry)GetProcAddress((HMODULE)library, name);
}
#else
#include <dlfcn.h>

static qx_entry resolve(const char* name, void* library) { return (qx_entry)dlsym(library, name); }
#endif

int main(int argc, char** argv) {
  const char* path = argc > 1 ? argv[1] : QX_SHARED_LIBRARY;
#if defined(_WIN32)
  void* library = LoadLibraryA(path);
#else
  void* library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
#endif
  if (!library) {
    printf("%s: cannot be loaded\n", path);
    return 1;
  }
  int failures = qx_check_exports(resolve, library);
  if (resolve("qx_pixinit", library) != resolve("qx_r210argb", library)) {
    printf("qx_pixinit and qx_r210argb are different entries\n");
    ++failures;
  }
  printf("%s: %d failures\n", path, failures);
  return failures != 0;
}

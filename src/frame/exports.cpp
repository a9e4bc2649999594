// The exported entry points of the library frame. Each export is one call through the form chosen
// for this processor (see frame/isa.h).
#include "frame/fill.h"
#include "qxpixlib.h"

extern "C" {

QX_API void QX_CALL qx_pixinit(void) {}

// One entry, two names: qx_r210argb is the same address as qx_pixinit.
#if defined(_MSC_VER)
#pragma comment(linker, "/EXPORT:qx_r210argb=qx_pixinit")
#elif defined(__has_attribute) && __has_attribute(copy)
// copy: the alias takes every attribute of its target (GCC infers nothrow for the empty body on
// some targets and would otherwise flag the alias as less restrictive).
QX_API void QX_CALL qx_r210argb(void) __attribute__((alias("qx_pixinit"), copy(qx_pixinit)));
#else
QX_API void QX_CALL qx_r210argb(void) __attribute__((alias("qx_pixinit")));
#endif

QX_API void QX_CALL qx_fill(std::uint32_t* dst, std::uint32_t value, std::int32_t count) {
  qx::chosen<qx::fill_forms>()(dst, value, count);
}

}  // extern "C"

#if defined(_WIN32)
#include <windows.h>
// The library's only state, ReciprocalTable, is a compile-time constant: there is nothing to set up
// on process attach and nothing to release on detach, so loading never fails.
BOOL WINAPI DllMain(HINSTANCE, DWORD, LPVOID) { return TRUE; }
#endif

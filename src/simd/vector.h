// The vector policy of the instruction set this unit is built for.
//
// Vector kernels written once over V live in *_simd.cpp units that the build compiles once per
// vector instruction set, each time with that set's flags and with QX_SIMD naming it (sse2, avx2,
// avx512, avx512vbmi; neon on AArch64) and QX_SIMD_HEADER its policy header. Their code goes in
// namespace qx::QX_SIMD, so each build is a separate set of symbols and no inline copy built for
// one set can serve another.
#pragma once

#if !defined(QX_SIMD) || !defined(QX_SIMD_HEADER)
#error "a *_simd.cpp unit is built once per vector instruction set by the build system"
#endif

#include QX_SIMD_HEADER

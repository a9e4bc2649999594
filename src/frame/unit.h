// The namespace for inline code in headers that units built for different instruction sets share.
//
// A unit built with wider instruction sets (-mavx2, ...) compiles its own copies of every inline
// function it uses, and the linker keeps one copy of each name for the whole library; were the
// names the same, code that must run on a narrower processor could end up calling a copy built for
// a wider one. Such headers therefore put their code in `inline namespace QX_UNIT_NS`, which names
// the unit's instruction set (the build defines QX_UNIT per unit; unset means the baseline), so
// every unit's copies are distinct symbols while the code still reads as namespace qx.
#pragma once

#ifndef QX_UNIT
#define QX_UNIT baseline
#endif
#define QX_UNIT_NS_CAT_(u) unit_##u
#define QX_UNIT_NS_(u) QX_UNIT_NS_CAT_(u)
#define QX_UNIT_NS QX_UNIT_NS_(QX_UNIT)

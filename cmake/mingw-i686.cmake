# 32-bit Windows (the x86 cdecl DLL that 32-bit hosts load).
set(QX_MINGW_TRIPLE i686-w64-mingw32)
set(CMAKE_SYSTEM_PROCESSOR i686)
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)

# Cross build for Windows with the MinGW-w64 GCC of Debian's g++-mingw-w64-* packages. Included by
# mingw-i686.cmake and mingw-x86_64.cmake, which set QX_MINGW_TRIPLE and CMAKE_SYSTEM_PROCESSOR.
# Tests run under wine (see tests/CMakeLists.txt).
set(CMAKE_SYSTEM_NAME Windows)
# The compilers of the POSIX thread model, whose C++ library has std::mutex and std::thread (those of
# the win32 model, Debian's default, lack them in GCC 12, and GoogleTest needs them). Their
# winpthread is linked in statically like the rest of the compiler's runtime, so the DLL still needs
# only KERNEL32.dll and msvcrt.dll.
if(NOT CMAKE_C_COMPILER)
  find_program(CMAKE_C_COMPILER NAMES ${QX_MINGW_TRIPLE}-gcc-posix ${QX_MINGW_TRIPLE}-gcc)
endif()
if(NOT CMAKE_CXX_COMPILER)
  find_program(CMAKE_CXX_COMPILER NAMES ${QX_MINGW_TRIPLE}-g++-posix ${QX_MINGW_TRIPLE}-g++)
endif()
set(CMAKE_FIND_ROOT_PATH /usr/${QX_MINGW_TRIPLE})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

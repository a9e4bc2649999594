# Debian packages, made by `cpack -G DEB` in a build configured with the prefix they install to
# (-DCMAKE_INSTALL_PREFIX=/usr):
#   libqxpixlib<major>  the shared library
#   libqxpixlib-dev     the headers, the link library, qxpixlib.pc and the CMake package files
#   qxpix               the command-line tool
set(CPACK_PACKAGE_NAME qxpixlib)
set(CPACK_PACKAGE_VENDOR "qxpixlib")
set(CPACK_PACKAGE_CONTACT "qxpixlib maintainers <qxpixlib@example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGING_INSTALL_PREFIX "${CMAKE_INSTALL_PREFIX}")
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
# Run-time dependencies from the binaries; the tool's on our own library resolves in the build.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${PROJECT_BINARY_DIR}/src")
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME "libqxpixlib${PROJECT_VERSION_MAJOR}")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION
  "${PROJECT_DESCRIPTION}: the shared library\n Exact fixed-point blending, conversion, v210 unpacking and scaling of\n 32-bit pixel lines, with forms for each x86 instruction-set tier.")
set(CPACK_DEBIAN_DEV_PACKAGE_NAME libqxpixlib-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_DEV_DESCRIPTION
  "${PROJECT_DESCRIPTION}: development files\n The C header, the link library, pkg-config and CMake package files.")
set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME qxpix)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION graphics)
set(CPACK_COMPONENT_TOOLS_DESCRIPTION
  "${PROJECT_DESCRIPTION}: the qxpix command-line tool\n Every qxpixlib kernel on PNG pictures, a demo contact sheet and a benchmark.")

if(QX_SHARED)
  set(CPACK_COMPONENTS_ALL runtime dev)
  set(CPACK_COMPONENT_DEV_DEPENDS runtime)
  set(CPACK_COMPONENT_TOOLS_DEPENDS runtime)
else()
  set(CPACK_COMPONENTS_ALL dev)
endif()
if(QX_BUILD_TOOLS)
  list(APPEND CPACK_COMPONENTS_ALL tools)
endif()
include(CPack)

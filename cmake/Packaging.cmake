# Installation extras and packaging: the pkg-config file ui_core.pc, and CPack
# settings for a Debian package of the whole installation (libraries, service
# bundle, headers, CMake and pkg-config files, the ui-core tool).
#
#   cmake --preset release -B build/package -DCMAKE_INSTALL_PREFIX=/usr
#   cmake --build build/package && (cd build/package && cpack -G DEB)

# --- pkg-config ---------------------------------------------------------------

# The libraries a program links: the kernel, then the platform libraries its
# headers call into, each before the ones it depends on.
set(UI_CORE_PC_LIBS "-lui_core")
foreach(lib units lang krel services msgcat)
  if(TARGET ui_core_${lib})
    string(APPEND UI_CORE_PC_LIBS " -lui_core_${lib}")
  endif()
endforeach()
set(UI_CORE_PC_CFLAGS "")
if(UI_CORE_SYSTEM_CPPMICROSERVICES)
  # The framework's headers (krel/bundles.h includes them) and library, with a
  # run path when it is not where the dynamic linker looks anyway.
  foreach(dir IN LISTS UI_CORE_CPPMICROSERVICES_INCLUDE_DIRS)
    string(APPEND UI_CORE_PC_CFLAGS " -I${dir}")
  endforeach()
  string(APPEND UI_CORE_PC_LIBS " -L${UI_CORE_CPPMICROSERVICES_LIBRARY_DIR}")
  if(NOT UI_CORE_CPPMICROSERVICES_LIBRARY_DIR IN_LIST CMAKE_CXX_IMPLICIT_LINK_DIRECTORIES)
    string(APPEND UI_CORE_PC_LIBS " -Wl,-rpath,${UI_CORE_CPPMICROSERVICES_LIBRARY_DIR}")
  endif()
  string(APPEND UI_CORE_PC_LIBS " -lCppMicroServices")
endif()

# The prefix is only known when installing (cmake --install --prefix may differ
# from the configured one, and CPack installs into a staging area), so the
# file is finished by an install step; @UI_CORE_PC_PREFIX@ survives this first
# pass as a placeholder.
set(UI_CORE_PC_PREFIX "@UI_CORE_PC_PREFIX@")
foreach(kind LIBDIR INCLUDEDIR)
  if(IS_ABSOLUTE "${CMAKE_INSTALL_${kind}}")
    set(UI_CORE_PC_${kind} "${CMAKE_INSTALL_${kind}}")
  else()
    set(UI_CORE_PC_${kind} "\${prefix}/${CMAKE_INSTALL_${kind}}")
  endif()
endforeach()
configure_file(${CMAKE_CURRENT_LIST_DIR}/ui_core.pc.in ${PROJECT_BINARY_DIR}/pkgconfig/ui_core.pc.in
               @ONLY)
install(CODE "
  set(UI_CORE_PC_PREFIX \"\${CMAKE_INSTALL_PREFIX}\")
  configure_file(\"${PROJECT_BINARY_DIR}/pkgconfig/ui_core.pc.in\"
                 \"${PROJECT_BINARY_DIR}/pkgconfig/install/ui_core.pc\" @ONLY)
")
install(FILES ${PROJECT_BINARY_DIR}/pkgconfig/install/ui_core.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# --- CPack: one Debian package ------------------------------------------------

if(NOT PROJECT_IS_TOP_LEVEL)
  return()
endif()

if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
  message(STATUS "A Debian package of this tree would install under ${CMAKE_INSTALL_PREFIX}; "
                 "configure with -DCMAKE_INSTALL_PREFIX=/usr to make one for the system")
endif()

set(UI_CORE_PACKAGE_MAINTAINER "ui_core maintainers <ui-core@example.org>"
    CACHE STRING "The Maintainer field of the Debian package")

set(CPACK_PACKAGE_NAME ui-core)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR "ui_core")
set(CPACK_PACKAGE_CONTACT "${UI_CORE_PACKAGE_MAINTAINER}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
# One line per line of the package's long description.
string(JOIN "\n" CPACK_PACKAGE_DESCRIPTION
       "ui_core is a C++20 library of node paths, object paths, subscripts, XML"
       "text utilities, Source creation through a service registry and delta"
       "units. The package holds the shared libraries with the platform libraries"
       "they stand on and the service bundle that creates sources, the headers,"
       "the CMake package and pkg-config files, and the ui-core command-line tool.")
# CPack installs with DESTDIR into its staging area, so CMAKE_INSTALL_PREFIX is
# /usr while installing and the pkg-config file names the real prefix.
set(CPACK_SET_DESTDIR ON)
set(CPACK_PACKAGING_INSTALL_PREFIX "${CMAKE_INSTALL_PREFIX}")
set(CPACK_STRIP_FILES ON)

set(CPACK_DEBIAN_PACKAGE_NAME ${CPACK_PACKAGE_NAME})
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${UI_CORE_PACKAGE_MAINTAINER}")
set(CPACK_DEBIAN_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)

# Run-time dependencies come from dpkg-shlibdeps (package dpkg-dev) when it is
# there; it reads them off the libraries and the tool, and finds this
# package's own libraries in the build tree. The headers and the CMake package
# need the Boost headers and the ICU development files as well.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libboost1.81-dev | libboost-dev (>= 1.81), libicu-dev")
find_program(UI_CORE_DPKG_SHLIBDEPS dpkg-shlibdeps)
find_program(UI_CORE_FILE_PROGRAM file)
mark_as_advanced(UI_CORE_DPKG_SHLIBDEPS UI_CORE_FILE_PROGRAM)
if(UI_CORE_DPKG_SHLIBDEPS AND UI_CORE_FILE_PROGRAM)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/lib)
  # A CppMicroServices built from source belongs to no Debian package: the
  # package cannot depend on it, and the installed files find it through
  # their run path.
  if(UI_CORE_SYSTEM_CPPMICROSERVICES)
    list(APPEND CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${UI_CORE_CPPMICROSERVICES_LIBRARY_DIR})
  endif()
else()
  message(STATUS "dpkg-shlibdeps or file not found: the Debian package lists its "
                 "run-time dependencies by hand")
  string(APPEND CPACK_DEBIAN_PACKAGE_DEPENDS
         ", libc6 (>= 2.34), libgcc-s1 (>= 3.0), libstdc++6 (>= 12), libicu72 (>= 72.1)")
endif()

include(CPack)

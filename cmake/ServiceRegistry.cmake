# The service registry that Sources are created through: an installed
# CppMicroServices when UI_CORE_USE_SYSTEM_CPPMICROSERVICES allows it and one
# is found, the built-in registry of platform/services otherwise.
#
# Sets UI_CORE_SYSTEM_CPPMICROSERVICES (TRUE or FALSE) and defines the
# interface target ui_core_services_link (ui_core::services_link), which links
# whichever registry was chosen. The framework is looked for here, at the top
# of the project, because its CMake functions and imported targets (the
# library and its resource compiler) are needed by every folder that builds
# a bundle.

set(UI_CORE_USE_SYSTEM_CPPMICROSERVICES AUTO CACHE STRING
    "Use an installed CppMicroServices: AUTO (when found), ON (required) or OFF (the built-in registry)")
set_property(CACHE UI_CORE_USE_SYSTEM_CPPMICROSERVICES PROPERTY STRINGS AUTO ON OFF)
string(TOUPPER "${UI_CORE_USE_SYSTEM_CPPMICROSERVICES}" ui_core_use_system)
if(NOT ui_core_use_system MATCHES "^(AUTO|ON|OFF)$")
  message(FATAL_ERROR "UI_CORE_USE_SYSTEM_CPPMICROSERVICES must be AUTO, ON or OFF, not "
                      "'${UI_CORE_USE_SYSTEM_CPPMICROSERVICES}'")
endif()

set(UI_CORE_SYSTEM_CPPMICROSERVICES FALSE)
if(NOT ui_core_use_system STREQUAL "OFF")
  find_package(CppMicroServices 3.8 CONFIG QUIET)
  if(CppMicroServices_FOUND AND TARGET CppMicroServices)
    set(UI_CORE_SYSTEM_CPPMICROSERVICES TRUE)
  elseif(ui_core_use_system STREQUAL "ON")
    message(FATAL_ERROR
      "UI_CORE_USE_SYSTEM_CPPMICROSERVICES is ON, but no CppMicroServices 3.8 was found.\n"
      "Build and install it with\n"
      "  scripts/install-cppmicroservices.sh [SOURCE] [PREFIX]\n"
      "and, for a PREFIX other than /usr/local, configure with -DCMAKE_PREFIX_PATH=PREFIX.")
  endif()
endif()

add_library(ui_core_services_link INTERFACE)
add_library(ui_core::services_link ALIAS ui_core_services_link)
set_target_properties(ui_core_services_link PROPERTIES EXPORT_NAME services_link)
if(UI_CORE_SYSTEM_CPPMICROSERVICES)
  get_filename_component(UI_CORE_CPPMICROSERVICES_PREFIX "${CppMicroServices_DIR}/../../.." ABSOLUTE)
  message(STATUS "Service registry: CppMicroServices ${CppMicroServices_VERSION} "
                 "from ${UI_CORE_CPPMICROSERVICES_PREFIX}")
  target_link_libraries(ui_core_services_link INTERFACE CppMicroServices)
  # Where the framework's headers and library are, for the pkg-config file.
  get_target_property(UI_CORE_CPPMICROSERVICES_INCLUDE_DIRS CppMicroServices
                      INTERFACE_INCLUDE_DIRECTORIES)
  get_target_property(ui_core_cppms_configs CppMicroServices IMPORTED_CONFIGURATIONS)
  list(GET ui_core_cppms_configs 0 ui_core_cppms_config)
  get_target_property(ui_core_cppms_library CppMicroServices IMPORTED_LOCATION_${ui_core_cppms_config})
  get_filename_component(UI_CORE_CPPMICROSERVICES_LIBRARY_DIR "${ui_core_cppms_library}" DIRECTORY)
  # Installed programs and libraries find the framework where it was found,
  # without LD_LIBRARY_PATH (directories the linker searches anyway are left out).
  set(CMAKE_INSTALL_RPATH_USE_LINK_PATH ON)
else()
  message(STATUS "Service registry: the built-in one (platform/services)")
endif()
install(TARGETS ui_core_services_link EXPORT ui_core-targets)

include(${CMAKE_CURRENT_LIST_DIR}/UiCoreBundle.cmake)

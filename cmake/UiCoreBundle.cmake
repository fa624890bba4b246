# ui_core_add_bundle: builds a service bundle, a shared library that the
# service framework installs and starts, for whichever registry ui_core was
# built with: an installed CppMicroServices or the built-in registry. The same
# sources build unchanged for both.
#
#   ui_core_add_bundle(<target> [NO_ACTIVATOR] [SYMBOLIC_NAME <name>] SOURCES <file>...)
#
# <target> becomes a MODULE library. Its bundle name, <name> (the target name
# unless SYMBOLIC_NAME gives another), must be a C identifier: it is compiled
# in as US_BUNDLE_NAME and names the symbols the framework looks up. A bundle
# has an activator (one source file uses CPPMICROSERVICES_EXPORT_BUNDLE_ACTIVATOR)
# unless NO_ACTIVATOR is given. The target links the chosen registry
# (ui_core::services_link); link ui_core::ui_core as well for the kernel's
# service interfaces. Where the library goes and whether it is installed is
# the caller's: a bundle set is simply a folder of bundles.
#
# With CppMicroServices the function generates the bundle's initialisation
# source and links a manifest into the library (bundle.symbolic_name and
# bundle.activator), as that framework requires; the built-in registry needs
# only the initialisation source.

include_guard(GLOBAL)

function(ui_core_add_bundle target)
  cmake_parse_arguments(B "NO_ACTIVATOR" "SYMBOLIC_NAME" "SOURCES" ${ARGN})
  if(B_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "ui_core_add_bundle: unknown arguments: ${B_UNPARSED_ARGUMENTS}")
  endif()
  if(NOT B_SYMBOLIC_NAME)
    set(B_SYMBOLIC_NAME ${target})
  endif()
  if(NOT B_SYMBOLIC_NAME MATCHES "^[A-Za-z_][A-Za-z0-9_]*$")
    message(FATAL_ERROR "ui_core_add_bundle: the bundle name '${B_SYMBOLIC_NAME}' is not a C identifier")
  endif()
  if(NOT TARGET ui_core::services_link)
    message(FATAL_ERROR "ui_core_add_bundle: ui_core::services_link is not defined; "
                        "call find_package(ui_core) first")
  endif()

  add_library(${target} MODULE ${B_SOURCES})
  target_link_libraries(${target} PRIVATE ui_core::services_link)
  target_compile_definitions(${target} PRIVATE US_BUNDLE_NAME=${B_SYMBOLIC_NAME})
  set_target_properties(${target} PROPERTIES US_BUNDLE_NAME ${B_SYMBOLIC_NAME})

  if(UI_CORE_SYSTEM_CPPMICROSERVICES)
    usFunctionGenerateBundleInit(TARGET ${target} OUT init_source)
    if(B_NO_ACTIVATOR)
      set(activator false)
    else()
      set(activator true)
    endif()
    set(manifest_dir ${CMAKE_CURRENT_BINARY_DIR}/${target}_manifest)
    file(CONFIGURE OUTPUT ${manifest_dir}/manifest.json
         CONTENT "{\n  \"bundle.symbolic_name\": \"${B_SYMBOLIC_NAME}\",\n  \"bundle.activator\": ${activator}\n}\n")
    usFunctionAddResources(TARGET ${target} BUNDLE_NAME ${B_SYMBOLIC_NAME}
                           WORKING_DIRECTORY ${manifest_dir} FILES manifest.json)
    # Linked in rather than appended to the file, so that stripping the
    # library (as packaging does) keeps the manifest.
    usFunctionEmbedResources(TARGET ${target} LINK)
    usFunctionGetResourceSource(TARGET ${target} OUT resource_source LINK)
    target_sources(${target} PRIVATE ${init_source} ${resource_source})
  else()
    set(init_source ${CMAKE_CURRENT_BINARY_DIR}/${target}_bundle_init.cpp)
    file(CONFIGURE OUTPUT ${init_source}
         CONTENT "#include \"cppmicroservices/BundleInitialization.h\"\n\nCPPMICROSERVICES_INITIALIZE_BUNDLE\n")
    target_sources(${target} PRIVATE ${init_source})
  endif()
endfunction()

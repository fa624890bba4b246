# Helpers shared by every target of the project.

# Warning flags stay PRIVATE: they are this project's choice, not its users'.
function(ui_core_warnings target)
  if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
    # -Wconversion and -Wsign-conversion: a narrowing or a change of sign is
    # written as a cast, so that each one is a decision someone made.
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion
                                             -Wsign-conversion)
    if(UI_CORE_WERROR)
      target_compile_options(${target} PRIVATE -Werror)
    endif()
  endif()
endfunction()

# A shared library of the platform layer: versioned, exported under ui_core::<name>.
function(ui_core_platform_library name)
  add_library(ui_core_${name} SHARED ${ARGN})
  add_library(ui_core::${name} ALIAS ui_core_${name})
  set_target_properties(ui_core_${name} PROPERTIES EXPORT_NAME ${name} OUTPUT_NAME ui_core_${name}
                                                   VERSION ${PROJECT_VERSION}
                                                   SOVERSION ${UI_CORE_SOVERSION})
  target_compile_features(ui_core_${name} PUBLIC cxx_std_20)
  target_include_directories(ui_core_${name} PUBLIC
    $<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}/include>
    $<INSTALL_INTERFACE:${UI_CORE_INSTALL_PLATFORM_INCLUDEDIR}>)
  ui_core_warnings(ui_core_${name})
  install(TARGETS ui_core_${name} EXPORT ui_core-targets
          LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
          ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
          RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  install(DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR}/include/ DESTINATION ${UI_CORE_INSTALL_PLATFORM_INCLUDEDIR})
endfunction()

# A GoogleTest executable registered with CTest, one test per TEST().
function(ui_core_test name)
  add_executable(${name} ${ARGN})
  target_link_libraries(${name} PRIVATE ui_core_test_support GTest::gtest_main GTest::gmock)
  ui_core_warnings(${name})
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES LABELS unit)
endfunction()

# What every target of ours shares: language level, warnings, sanitizers, output places.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

# Programs find their resources at ../share/kestrix, in the build tree as in an installation.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)

find_program(ZR_CCACHE ccache)
if(ZR_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${ZR_CCACHE})
endif()

add_library(zr_warnings INTERFACE)
target_compile_options(zr_warnings INTERFACE
  -Werror -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast
  -Wcast-qual -Wformat=2 -Wundef -Wnon-virtual-dtor -Woverloaded-virtual -Wextra-semi
  -Wimplicit-fallthrough -Wdouble-promotion -Wzero-as-null-pointer-constant
  -Wmissing-declarations)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # g++ 12 reports overlaps inside its own std::string.
  target_compile_options(zr_warnings INTERFACE -Wno-restrict)
else()
  # clang 14 takes every use of a defaulted three-way comparison for a null written as 0.
  target_compile_options(zr_warnings INTERFACE -Wno-zero-as-null-pointer-constant)
endif()

if(ZR_SANITIZE)
  add_compile_options(-fsanitize=${ZR_SANITIZE} -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${ZR_SANITIZE})
  if(ZR_SANITIZE MATCHES "thread" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # Asio fences around its handlers, which the sanitizer doesn't see; its locks, which it sees, order the same.
    add_compile_options(-Wno-tsan)
  endif()
  if(ZR_SANITIZE MATCHES "undefined")
    add_compile_options(-fno-sanitize-recover=undefined)
  endif()
endif()

# zr_library(name): a static library of ours; its folders add their sources with target_sources.
function(zr_library name)
  add_library(${name} STATIC)
  target_link_libraries(${name} PRIVATE $<BUILD_INTERFACE:zr_warnings>)
endfunction()

# zr_program(name SOURCES...): a program of ours.
function(zr_program name)
  add_executable(${name} ${ARGN})
  target_link_libraries(${name} PRIVATE zr_warnings)
endfunction()

# zr_ui_test(name SOURCES...): likewise, below tests/ui, of real windows that no screen shows. support/UiTestMain.cpp there
# makes the application.
function(zr_ui_test name)
  zr_program(${name} ${ARGN})
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE ui_test_main zrcoreui GTest::gmock Qt6::Test)
  target_compile_definitions(${name} PRIVATE
    ZR_TEST_DATA="${CMAKE_SOURCE_DIR}/tests/data" ZR_RESOURCES="${CMAKE_SOURCE_DIR}/resources")
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES LABELS ui TIMEOUT 300 ENVIRONMENT "QT_QPA_PLATFORM=offscreen")
endfunction()

# zr_test(name SOURCES...): a GoogleTest program below tests/unit; one ctest entry.
# Tests get the source tree's folders as ZR_TEST_DATA and ZR_RESOURCES, and tests/ as include folder.
function(zr_test name)
  zr_program(${name} ${ARGN})
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE GTest::gmock GTest::gtest_main)
  if(WIN32 AND CMAKE_CROSSCOMPILING)
    set(drive "Z:")  # where Wine has this machine's files
  endif()
  target_compile_definitions(${name} PRIVATE
    ZR_TEST_DATA="${drive}${CMAKE_SOURCE_DIR}/tests/data" ZR_RESOURCES="${drive}${CMAKE_SOURCE_DIR}/resources")
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES LABELS unit TIMEOUT 300)
endfunction()

# How every target of the tree is compiled, and how a folder becomes a library.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

find_program(CCACHE ccache)
if(CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${CCACHE}")
endif()

find_package(Threads REQUIRED)
find_package(PkgConfig REQUIRED)

add_library(snaplift_options INTERFACE)
target_compile_options(snaplift_options INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow
  $<$<BOOL:${SNAPLIFT_WERROR}>:-Werror>
  # GCC 12 sees overlapping copies inside std::string where there are none, when it optimises.
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
  # Which GCC's -Wconversion leaves out in C++.
  $<$<CXX_COMPILER_ID:Clang>:-Wno-sign-conversion>)
target_link_libraries(snaplift_options INTERFACE Threads::Threads)
# Indexes that are out of range end the program where it is tested, as they do in a package.
target_compile_definitions(snaplift_options INTERFACE
  $<$<NOT:$<CONFIG:Release>>:_GLIBCXX_ASSERTIONS>)

set(SNAPLIFT_SANITIZE "" CACHE STRING "Comma-separated sanitizers for every target")
if(SNAPLIFT_SANITIZE)
  target_compile_options(snaplift_options INTERFACE
    -fsanitize=${SNAPLIFT_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(snaplift_options INTERFACE -fsanitize=${SNAPLIFT_SANITIZE})
  target_compile_definitions(snaplift_options INTERFACE SNAPLIFT_SANITIZED)
endif()

# snaplift_headers(TARGET FOLDER): lets TARGET, and whoever links it, include <folder>/<Class>.h.
# Each library shows its own folder only, through a link of its own, so that an include of a floor
# that is not linked does not compile.
function(snaplift_headers target folder)
  set(root "${PROJECT_BINARY_DIR}/include/${target}")
  cmake_path(GET folder PARENT_PATH parent)
  file(MAKE_DIRECTORY "${root}/${parent}")
  file(CREATE_LINK "${CMAKE_CURRENT_SOURCE_DIR}" "${root}/${folder}" SYMBOLIC)
  target_include_directories(${target} PUBLIC "${root}")
endfunction()

# snaplift_library(NAME FOLDER [LINKS target...] [PRIVATE_LINKS target...]): the sources of the
# current folder as one static library whose headers are included as <FOLDER>/<Class>.h.
function(snaplift_library name folder)
  cmake_parse_arguments(ARG "" "" "LINKS;PRIVATE_LINKS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS "*.cpp" "*.h")
  add_library(${name} STATIC ${sources})
  snaplift_headers(${name} ${folder})
  target_link_libraries(${name} PUBLIC ${ARG_LINKS} PRIVATE snaplift_options ${ARG_PRIVATE_LINKS})
endfunction()

# snaplift_test(NAME [LINKS target...]): one test program from NAME.cpp, its cases found by CTest.
function(snaplift_test name)
  cmake_parse_arguments(ARG "" "" "LINKS" ${ARGN})
  add_executable(${name} ${name}.cpp)
  target_link_libraries(${name} PRIVATE snaplift_options GTest::gmock_main ${ARG_LINKS})
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 120)
endfunction()

# snaplift_view_test(NAME [LINKS target...]): the same for views: its main makes the application
# object, without a display, and Qt Test's event helpers are at hand.
function(snaplift_view_test name)
  cmake_parse_arguments(ARG "" "" "LINKS" ${ARGN})
  add_executable(${name} ${name}.cpp)
  target_link_libraries(${name} PRIVATE snaplift_options viewtestmain ${ARG_LINKS})
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60
    PROPERTIES TIMEOUT 120 ENVIRONMENT QT_QPA_PLATFORM=offscreen)
endfunction()

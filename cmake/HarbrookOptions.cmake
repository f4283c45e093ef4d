# Flags that every target of the project is built with, and the switches a person may set.

option(HARBROOK_BENCH "Build the benchmarks" OFF)
set(HARBROOK_SANITIZE "" CACHE STRING "Sanitizers to build with, as -fsanitize= takes them")

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
  # What a precompiled header defines does not hide from the cache that something else was compiled.
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros ${CCACHE_PROGRAM})
endif()
if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # Headers are included as they stand, so that one that is missing is missed there.
  set(CMAKE_DISABLE_PRECOMPILE_HEADERS ON)
elseif(NOT CMAKE_DISABLE_PRECOMPILE_HEADERS)
  # The cache reads which precompiled header was used.
  add_compile_options(-fpch-preprocess)
endif()

# Homebrew's libraries need the system that they were made on. Linked in, they bring nothing of that along.
if(APPLE)
  list(PREPEND CMAKE_FIND_LIBRARY_SUFFIXES .a)
endif()

add_library(harbrook_options INTERFACE)
target_include_directories(harbrook_options INTERFACE ${CMAKE_SOURCE_DIR})
target_compile_options(harbrook_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor)
target_compile_definitions(harbrook_options INTERFACE HARBROOK_VERSION="${PROJECT_VERSION}")
if(HARBROOK_SANITIZE)
  target_compile_options(harbrook_options INTERFACE -fsanitize=${HARBROOK_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(harbrook_options INTERFACE -fsanitize=${HARBROOK_SANITIZE})
endif()

# What Debian hardens its own programs with, and what the program is made of. The sanitizers bring their own checks of the
# same functions.
add_library(harbrook_hardening INTERFACE)
if(NOT APPLE AND NOT HARBROOK_SANITIZE AND NOT CMAKE_BUILD_TYPE STREQUAL "Debug")
  target_compile_options(harbrook_hardening INTERFACE
    -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2 -fstack-protector-strong -fstack-clash-protection)
  target_link_options(harbrook_hardening INTERFACE -Wl,-z,relro -Wl,-z,now)
endif()

# Compiler settings of all targets. Third-party headers are included as system headers, so they give no warnings.

option(QUARRYNET_WARNINGS_AS_ERRORS "Treat warnings as errors" OFF)
option(QUARRYNET_SANITIZE "Build with the address and undefined-behaviour sanitizers" OFF)
option(QUARRYNET_SANITIZE_THREADS "Build with the thread sanitizer" OFF)
option(QUARRYNET_PRECOMPILE "Precompile the libraries' headers; only builds without this detect missing includes" OFF)
option(QUARRYNET_PRECOMPILE_TESTS "Precompile the headers of the tests" ${QUARRYNET_PRECOMPILE})
option(QUARRYNET_BUILD_FUZZERS "Build the libFuzzer programs in tests/fuzz (needs clang)" OFF)

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "Build type" FORCE)
endif()

find_program(QUARRYNET_CCACHE ccache)
if(QUARRYNET_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${QUARRYNET_CCACHE}")
  if(QUARRYNET_PRECOMPILE OR QUARRYNET_PRECOMPILE_TESTS) # without these settings ccache does not cache such compilations
    set(CMAKE_CXX_COMPILER_LAUNCHER
      "${CMAKE_COMMAND}" -E env CCACHE_SLOPPINESS=pch_defines,time_macros "${QUARRYNET_CCACHE}")
    set(QUARRYNET_PRECOMPILE_OPTIONS $<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess>)
  endif()
endif()

if(WIN32)
  add_compile_definitions(NOMINMAX) # windows.h would make macros of std::min and std::max
endif()

add_library(quarrynet_warnings INTERFACE)
if(MSVC)
  target_compile_options(quarrynet_warnings INTERFACE /W4 /utf-8 /permissive-)
  if(QUARRYNET_WARNINGS_AS_ERRORS)
    target_compile_options(quarrynet_warnings INTERFACE /WX)
  endif()
else()
  target_compile_options(quarrynet_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wold-style-cast -Wnon-virtual-dtor -Woverloaded-virtual)
  if(MINGW AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    # In this build the compiler warns about correct code in the standard library's std::string (GCC bug 105651).
    target_compile_options(quarrynet_warnings INTERFACE -Wno-array-bounds -Wno-restrict -Wno-stringop-overflow)
  endif()
  if(QUARRYNET_WARNINGS_AS_ERRORS)
    target_compile_options(quarrynet_warnings INTERFACE -Werror)
  endif()
endif()

# Builds with tests enable the standard library's own checks.
if(QUARRYNET_BUILD_TESTS)
  add_compile_definitions(_GLIBCXX_ASSERTIONS)
endif()

# Debug information names the sources. Without this, an installed program would contain the paths of the machine that
# built it, and two folders would give different bytes. The sanitizers' reports keep the full paths.
if(NOT MSVC AND NOT QUARRYNET_SANITIZE AND NOT QUARRYNET_SANITIZE_THREADS AND NOT QUARRYNET_BUILD_FUZZERS)
  add_compile_options("$<$<NOT:$<CONFIG:Release>>:-ffile-prefix-map=${CMAKE_BINARY_DIR}=build>"
    "$<$<NOT:$<CONFIG:Release>>:-ffile-prefix-map=${CMAKE_SOURCE_DIR}=.>")
endif()

if(QUARRYNET_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()

if(QUARRYNET_SANITIZE_THREADS)
  # The sanitizer does not support fences. Without them Asio synchronises with locks alone, which the sanitizer
  # supports.
  add_compile_options(-fsanitize=thread -fno-omit-frame-pointer -DBOOST_ASIO_DISABLE_FENCED_BLOCK)
  add_link_options(-fsanitize=thread)
endif()

if(QUARRYNET_BUILD_FUZZERS)
  if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    message(FATAL_ERROR "QUARRYNET_BUILD_FUZZERS needs clang, which includes libFuzzer")
  endif()
  add_compile_options(-fsanitize=fuzzer-no-link,address,undefined)
  add_link_options(-fsanitize=address,undefined)
endif()

# Settings that hold for every target.

option(TV_TESTS "Build the tests" ON)
option(TV_BENCHMARKS "Build the benchmarks and their peers" OFF)
option(TV_FUZZ "Build the fuzzing programs with libFuzzer (clang)" OFF)
option(TV_WERROR "Treat warnings as errors" OFF)
option(CMAKE_UNITY_BUILD "Compile several sources of a room at a time" ON)
option(TV_THREADS "Fill large results on all cores, which takes oneTBB" ON)
option(TV_LARGE_BLOCKS "Large arrays of the embedded host on huge pages of Linux" ON)
option(TV_LINE_EDITOR "Edit lines at the shell's prompt, which takes libedit" ON)
set(TV_SANITIZE "" CACHE STRING "Sanitizers, for example address;undefined")

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "Build type" FORCE)
endif()
find_program(TV_CCACHE ccache)
if(TV_CCACHE AND NOT DEFINED CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_C_COMPILER_LAUNCHER ${TV_CCACHE})
  set(CMAKE_CXX_COMPILER_LAUNCHER ${TV_CCACHE})
endif()
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG")

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
if(NOT EMSCRIPTEN)
  set(CMAKE_POSITION_INDEPENDENT_CODE ON)
endif()
# Libraries give away what is marked so: TV_EXPORT, and TFL_EXPORT in tfl_rng.
set(CMAKE_C_VISIBILITY_PRESET hidden)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
# Libraries and programs side by side, so that a build tree runs as it stands.
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)

# Installed programs find their libraries from where they stand, so that an installation may move.
include(GNUInstallDirs)
file(RELATIVE_PATH _to_libraries /prefix/${CMAKE_INSTALL_BINDIR} /prefix/${CMAKE_INSTALL_LIBDIR})
set(CMAKE_INSTALL_RPATH "$ORIGIN;$ORIGIN/${_to_libraries}")

# The version as macros stands in a header that this makes.
configure_file(${CMAKE_CURRENT_LIST_DIR}/version.h.in
  ${PROJECT_BINARY_DIR}/generated/tvmathrng/version.h @ONLY)
include_directories(${PROJECT_SOURCE_DIR} ${PROJECT_BINARY_DIR}/generated)

# Libraries of threads: none where TV_THREADS is off.
add_library(tv_threads INTERFACE)
if(TV_THREADS)
  find_package(TBB REQUIRED)
  target_link_libraries(tv_threads INTERFACE TBB::tbb)
else()
  add_compile_definitions(TV_SERIAL)
endif()

# Contraction into fused multiply-adds would change results from machine to machine.
add_compile_options(-ffp-contract=off -Wall -Wextra -Wshadow -Wconversion -Wno-sign-conversion)
if(TV_WERROR)
  add_compile_options(-Werror)
endif()
if(TV_SANITIZE)
  list(JOIN TV_SANITIZE "," _sanitizers)
  add_compile_options(-fsanitize=${_sanitizers} -fno-omit-frame-pointer -g)
  add_link_options(-fsanitize=${_sanitizers})
  if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    # Its sanitizers live in the program, so that our libraries find them only when they are loaded.
    string(APPEND CMAKE_CXX_STANDARD_LIBRARIES " -Wl,-z,undefs")
  endif()
  if("undefined" IN_LIST TV_SANITIZE)
    add_compile_options(-fsanitize=float-cast-overflow -fno-sanitize-recover=all)
  endif()
endif()

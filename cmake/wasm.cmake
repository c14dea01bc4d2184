# Toolchain: WebAssembly by Debian's emscripten, for node and browsers. Used by the preset wasm.
execute_process(COMMAND em-config EMSCRIPTEN_ROOT OUTPUT_VARIABLE emscripten
  OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
include(${emscripten}/cmake/Modules/Platform/Emscripten.cmake)

# Exceptions of the machine itself, and what the standard library of this emscripten lacks.
set(CMAKE_CXX_FLAGS_INIT "-fwasm-exceptions -include ${CMAKE_CURRENT_LIST_DIR}/../web/compat.h")
set(CMAKE_EXE_LINKER_FLAGS_INIT "-fwasm-exceptions")

# Libraries that are headers, seen without the others of the machine that builds.
list(APPEND CMAKE_PROJECT_TOP_LEVEL_INCLUDES ${CMAKE_CURRENT_LIST_DIR}/wasm_packages.cmake)

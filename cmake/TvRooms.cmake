# Rooms and what is put together from them. A room is a folder of the source tree; its sources are
# all .cpp files in it and in its kernels/, so that a new file needs no line here.

# The sources of the current folder, but not the files named after `result`.
function(tv_sources result)
  file(GLOB sources CONFIGURE_DEPENDS *.cpp kernels/*.cpp)
  list(TRANSFORM ARGN PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/ OUTPUT_VARIABLE left_out)
  list(REMOVE_ITEM sources ${left_out})
  set(${result} ${sources} PARENT_SCOPE)
endfunction()

# Sources are compiled several at a time (CMAKE_UNITY_BUILD), which saves reading headers; not so
# those that match the patterns here, because they give a meaning of their own to a name.
function(tv_compile_alone)
  if(ARGN)
    file(GLOB alone CONFIGURE_DEPENDS ${ARGN})
    set_source_files_properties(${alone} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
  endif()
endfunction()

# tv_add_room(NAME [EXCEPT file...] [MORE file...] [ALONE file...] [LIBRARIES library...])
# The current folder as the static library room_NAME: shared libraries take in all of it, programs
# and tests what they need of it. Kernels are compiled alone: they include themselves once for each
# instruction set.
function(tv_add_room name)
  cmake_parse_arguments(ARG "" "" "EXCEPT;MORE;ALONE;LIBRARIES" ${ARGN})
  tv_sources(sources ${ARG_EXCEPT})
  tv_compile_alone(kernels/*.cpp ${ARG_ALONE})
  add_library(room_${name} STATIC ${sources} ${ARG_MORE})
  target_link_libraries(room_${name} PUBLIC ${ARG_LIBRARIES})
  # What has an address counts in that many bits; what a stream counts has 64 everywhere.
  if(CMAKE_SIZEOF_VOID_P LESS 8 AND NOT name MATCHES "^(tfl_rng|plugin_rng|rng|vmstate|builtins)$")
    target_compile_options(room_${name} PRIVATE -Wno-conversion -Wno-narrowing)
  endif()
  # Calls inside a library need no detour by which another library could replace them.
  if(NOT EMSCRIPTEN)
    target_compile_options(room_${name} PRIVATE -fno-semantic-interposition)
  endif()
endfunction()

# tv_add_library(NAME ROOMS room... [LIBRARIES library...])
# A shared library of whole rooms, over other shared libraries; a static one in a WebAssembly build.
function(tv_add_library name)
  cmake_parse_arguments(ARG "" "" "ROOMS;LIBRARIES" ${ARGN})
  list(TRANSFORM ARG_ROOMS PREPEND room_)
  list(TRANSFORM ARG_ROOMS REPLACE "(.+)" "$<TARGET_OBJECTS:\\1>" OUTPUT_VARIABLE objects)
  set(kind SHARED)
  if(EMSCRIPTEN)
    set(kind STATIC)
  endif()
  add_library(${name} ${kind} ${objects})
  # What the rooms themselves link comes with them.
  target_link_libraries(${name} PUBLIC ${ARG_LIBRARIES} PRIVATE ${ARG_ROOMS})
  target_link_options(${name} PRIVATE -Wl,-z,defs)
endfunction()

# What `cmake --install` puts where, and how other projects find it. Components: runtime (the shared
# libraries), tools (the shell), dev (headers and what finds them).

set(tv_libraries tfl_rng tvhost tvmathrng tvruntime)
set_target_properties(${tv_libraries} PROPERTIES
  VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
# Users see tvmathrng::tvmathrng, with the C++ interface, and tvmathrng::runtime, with the C
# interface and the host language.
set_target_properties(tvruntime PROPERTIES EXPORT_NAME runtime)
foreach(library ${tv_libraries})
  target_include_directories(${library} INTERFACE
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
endforeach()
target_compile_features(tvmathrng INTERFACE $<INSTALL_INTERFACE:cxx_std_20>)

install(TARGETS ${tv_libraries} EXPORT tvmathrng
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT dev)
install(TARGETS tvrng RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
install(FILES ${PROJECT_SOURCE_DIR}/docs/tvrng.1
  DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
install(FILES ${PROJECT_SOURCE_DIR}/shell/tvrng.bash RENAME tvrng
  DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT tools)

# The headers that the interfaces need, and those that a host or other native code works with. Not
# among them: what includes Boost, oneTBB, Highway or fmt.
set(tv_header_root ${PROJECT_BINARY_DIR}/include)
file(GLOB headers CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR}
  ${PROJECT_SOURCE_DIR}/c/tvmathrng/*.h
  ${PROJECT_SOURCE_DIR}/cpp/tvmathrng/*.h
  ${PROJECT_SOURCE_DIR}/errors/*.h
  ${PROJECT_SOURCE_DIR}/host/*.h)
list(APPEND headers
  builtins/builtins.h
  builtins/stream_methods.h
  embedded_host/dispatcher.h
  embedded_host/object_system.h
  embedded_host/settings.h
  embedded_host/vm_context.h
  errors/catalogue.def
  language/fault.h
  language/session.h
  language/token.h
  plugin_rng/interfaces.h
  rng/acquire_global_stream.h
  rng/create_stream.h
  rng/generator_names.h
  rng/mr_functions.h
  rng/one_user.h
  rng/randstream.h
  rng/snapshot.h
  runtime/vm.h
  tfl_rng/convert.h
  tfl_rng/core_rng.h
  tfl_rng/elementary.h
  tfl_rng/export.h
  tfl_rng/generator_catalogue.h
  tfl_rng/generators.def
  tfl_rng/normal_quantile.h
  tfl_rng/to_double.h
  vmstate/global_stream.h
  vmstate/legacy_mode.h)
set(header_sources ${headers})
list(TRANSFORM header_sources PREPEND ${PROJECT_SOURCE_DIR}/)
list(JOIN headers " " header_words)
add_custom_command(
  OUTPUT ${tv_header_root}/headers.stamp
  COMMAND ${CMAKE_COMMAND} -DSOURCE=${PROJECT_SOURCE_DIR}
    -DGENERATED=${PROJECT_BINARY_DIR}/generated -DDESTINATION=${tv_header_root}
    "-DHEADERS=${header_words}" -P ${PROJECT_SOURCE_DIR}/cmake/InstalledHeaders.cmake
  COMMAND ${CMAKE_COMMAND} -E touch ${tv_header_root}/headers.stamp
  DEPENDS ${header_sources} ${PROJECT_BINARY_DIR}/generated/tvmathrng/version.h
    ${PROJECT_SOURCE_DIR}/cmake/InstalledHeaders.cmake
  COMMENT "Headers as installed"
  VERBATIM)
add_custom_target(installed_headers ALL DEPENDS ${tv_header_root}/headers.stamp)
# Who has built the shell, as ./run does, may install: its libraries come with it anyway.
add_dependencies(tvrng installed_headers)
# The examples of this tree see the headers and targets that they would see installed.
foreach(name tvmathrng runtime)
  add_library(installed_${name} INTERFACE)
  add_library(tvmathrng::${name} ALIAS installed_${name})
  add_dependencies(installed_${name} installed_headers)
  target_include_directories(installed_${name} SYSTEM INTERFACE ${tv_header_root})
endforeach()
target_link_libraries(installed_tvmathrng INTERFACE tvmathrng)
target_link_libraries(installed_runtime INTERFACE tvruntime)
install(DIRECTORY ${tv_header_root}/tvmathrng DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT dev)

# find_package(tvmathrng). Paths are relative to the files themselves, so that the tree may move.
include(CMakePackageConfigHelpers)
set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/tvmathrng)
install(EXPORT tvmathrng NAMESPACE tvmathrng:: FILE tvmathrngConfig.cmake
  DESTINATION ${package_folder} COMPONENT dev)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/tvmathrngConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/tvmathrngConfigVersion.cmake
  DESTINATION ${package_folder} COMPONENT dev)

# pkg-config: tvmathrng and tvmathrng-runtime, as the two targets above.
set(pkgconfig_folder ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH pc_to_prefix /prefix/${pkgconfig_folder} /prefix)
foreach(module tvmathrng tvmathrng-runtime)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/${module}.pc.in ${PROJECT_BINARY_DIR}/${module}.pc
    @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${module}.pc DESTINATION ${pkgconfig_folder} COMPONENT dev)
endforeach()

include(TvPackages)

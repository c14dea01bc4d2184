# Debian packages: `cpack --config build/CPackConfig.cmake -G DEB`, one a component.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "The tvmathrng developers <tvmathrng@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY ${PROJECT_DESCRIPTION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION math)
# Dependencies on other packages from what the programs link, on each other from the list below.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libtvmathrng${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_DEV_PACKAGE_NAME libtvmathrng-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME tvrng)
set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-tvmathrng)
set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS "${TV_PYTHON_RELEASES}, python3-numpy")

# What goes into a wheel for pip is no package.
get_cmake_property(CPACK_COMPONENTS_ALL COMPONENTS)
list(REMOVE_ITEM CPACK_COMPONENTS_ALL python_wheel)
include(CPack)
cpack_add_component(runtime DESCRIPTION "Shared libraries")
cpack_add_component(dev DEPENDS runtime DESCRIPTION "Headers, CMake package and pkg-config files")
cpack_add_component(tools DEPENDS runtime DESCRIPTION "The shell tvrng")
cpack_add_component(python DEPENDS runtime DESCRIPTION "The Python module tvmathrng")

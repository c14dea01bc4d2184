# Cross build for AArch64 with Debian's compiler; TV_SYSROOT holds the arm64 packages, unpacked.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)

list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES TV_SYSROOT)
set(CMAKE_FIND_ROOT_PATH ${TV_SYSROOT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(libraries ${TV_SYSROOT}/usr/lib/aarch64-linux-gnu)
set(ENV{PKG_CONFIG_LIBDIR} ${libraries}/pkgconfig:${TV_SYSROOT}/usr/share/pkgconfig)
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${TV_SYSROOT})
# Libraries that libraries need.
set(rpaths "-Wl,-rpath-link,${libraries}:${TV_SYSROOT}/lib/aarch64-linux-gnu")
set(CMAKE_EXE_LINKER_FLAGS_INIT ${rpaths})
set(CMAKE_SHARED_LINKER_FLAGS_INIT ${rpaths})

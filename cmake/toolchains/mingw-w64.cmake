# Builds for 64-bit Windows on Debian, with MinGW-w64 and the sysroot that scripts/windows-sysroot
# makes. Where that lies comes from -DRIVET_WINDOWS_SYSROOT=... or, on the first configuration of
# a build folder, from the environment variable of the same name. CMake remembers the packages
# that it found, so a new sysroot needs a fresh build folder (or `cmake --fresh`).

set(RIVET_WINDOWS_SYSROOT "$ENV{RIVET_WINDOWS_SYSROOT}" CACHE PATH
    "The folder whose path scripts/windows-sysroot prints")
# Trial compilations read this file again, without the cache of the project.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES RIVET_WINDOWS_SYSROOT)
if(NOT IS_DIRECTORY "${RIVET_WINDOWS_SYSROOT}")
    message(FATAL_ERROR "RIVET_WINDOWS_SYSROOT is \"${RIVET_WINDOWS_SYSROOT}\", which is no folder. "
        "Run scripts/windows-sysroot and give the path that it prints.")
endif()

set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

# By their full names: the short ones lead to the win32 thread model, which lacks std::thread,
# where both are installed.
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

# Exceptions cross the borders of our libraries, so all of them share one run-time library: the
# compiler's default, libgcc and libstdc++ as DLLs, stays.

set(CMAKE_FIND_ROOT_PATH "${RIVET_WINDOWS_SYSROOT}" /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
# pkg-config knows nothing of these modes and would offer the libraries of this machine.
set(ENV{PKG_CONFIG_LIBDIR}
    "${RIVET_WINDOWS_SYSROOT}/lib/pkgconfig:/usr/x86_64-w64-mingw32/lib/pkgconfig")

# What the programs of this build run in, as a test or as a code generator.
if(NOT DEFINED CMAKE_CROSSCOMPILING_EMULATOR)
    get_filename_component(CMAKE_CROSSCOMPILING_EMULATOR
        "${CMAKE_CURRENT_LIST_DIR}/../../scripts/wine-run" ABSOLUTE)
    list(APPEND CMAKE_CROSSCOMPILING_EMULATOR --dlls "${RIVET_WINDOWS_SYSROOT}/bin")
endif()

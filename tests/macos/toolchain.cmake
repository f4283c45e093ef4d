# Aims CMake at macOS from Linux: LLVM's compiler and linker, and the directory that tools/sysroot.py makes.
# Set HARBROOK_MACOS_SYSROOT to that directory.
set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_VERSION 21.0)
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES HARBROOK_MACOS_SYSROOT)

set(tools /usr/lib/llvm-19/bin)
set(CMAKE_C_COMPILER ${tools}/clang)
set(CMAKE_CXX_COMPILER ${tools}/clang++)
set(CMAKE_OBJCXX_COMPILER ${tools}/clang++)
set(CMAKE_AR ${tools}/llvm-ar)
set(CMAKE_RANLIB ${tools}/llvm-ranlib)
set(CMAKE_STRIP ${tools}/llvm-strip)
set(CMAKE_INSTALL_NAME_TOOL ${tools}/llvm-install-name-tool)

set(CMAKE_OSX_SYSROOT ${HARBROOK_MACOS_SYSROOT})
set(CMAKE_FIND_ROOT_PATH ${HARBROOK_MACOS_SYSROOT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# musl's headers stand in for the system's, and libc++ has to be told. Its configuration comes from a folder of
# its own, so that what is newer than the oldest system is unavailable as it is there.
string(JOIN " " portable
  -target apple-macos -isystem ${HARBROOK_MACOS_SYSROOT}/usr/include/availability -B${HARBROOK_MACOS_SYSROOT}/usr/bin -D_GNU_SOURCE -D_LIBCPP_HAS_MUSL_LIBC -D_LIBCPP_PROVIDES_DEFAULT_RUNE_TABLE
  -Wno-unused-command-line-argument)
foreach(language C CXX OBJCXX)
  set(CMAKE_${language}_FLAGS_INIT ${portable})
endforeach()
# An archive of objects for two architectures is two archives, which the ordinary archiver does not make.
foreach(language C CXX OBJCXX)
  set(CMAKE_${language}_ARCHIVE_CREATE "${tools}/llvm-libtool-darwin -static -o <TARGET> <OBJECTS>")
  set(CMAKE_${language}_ARCHIVE_APPEND "")
  set(CMAKE_${language}_ARCHIVE_FINISH "")
  set(CMAKE_${language}_CREATE_STATIC_LIBRARY "${tools}/llvm-libtool-darwin -static -o <TARGET> <OBJECTS>")
endforeach()
set(CMAKE_EXE_LINKER_FLAGS_INIT "-fuse-ld=lld")

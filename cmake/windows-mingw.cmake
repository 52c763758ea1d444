# Toolchain: programs for 64-bit Windows, built on Linux with MinGW-w64. They need nothing but what
# Windows itself has, so every library is linked statically.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(mingw x86_64-w64-mingw32)
# The variant whose standard library has threads.
set(CMAKE_C_COMPILER ${mingw}-gcc-posix)
set(CMAKE_CXX_COMPILER ${mingw}-g++-posix)
set(CMAKE_RC_COMPILER ${mingw}-windres)
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static -static-libgcc -static-libstdc++")

# What scripts/windows-dependencies builds, then what came with the compiler.
set(QUARN_WINDOWS_PREFIX ${CMAKE_CURRENT_LIST_DIR}/../build/windows-dependencies/prefix
  CACHE PATH "Where the libraries for Windows are installed")
get_filename_component(windows_prefix ${QUARN_WINDOWS_PREFIX} ABSOLUTE)
set(CMAKE_FIND_ROOT_PATH ${windows_prefix} /usr/${mingw})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ZLIB_USE_STATIC_LIBS ON)

# Runs what was built, tests above all.
if(DEFINED ENV{QUARN_WINE})
  set(CMAKE_CROSSCOMPILING_EMULATOR $ENV{QUARN_WINE})
else()
  find_program(QUARN_WINE_PROGRAM wine)
  if(QUARN_WINE_PROGRAM)
    set(CMAKE_CROSSCOMPILING_EMULATOR ${QUARN_WINE_PROGRAM})
  endif()
endif()

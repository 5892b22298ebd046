# Cross-compiling for 64-bit Windows with mingw-w64, the variant with POSIX threads.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
# Only what was built for Windows may be found: ZR_WINDOWS_PREFIX is where scripts/build-windows puts it.
set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32 ${ZR_WINDOWS_PREFIX})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
# Windows 10; programs carry their run-time libraries with them.
add_compile_definitions(_WIN32_WINNT=0x0A00 UNICODE _UNICODE)
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")

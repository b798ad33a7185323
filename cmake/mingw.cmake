# A build for Windows with Debian's mingw-w64 and the kit of libraries that docs/windows.md describes,
# unpacked in TARN_WINDOWS_KIT, and libsodium in TARN_SODIUM_DIR. scripts/build-windows uses it.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES TARN_WINDOWS_KIT TARN_SODIUM_DIR)
set(CMAKE_PREFIX_PATH ${TARN_WINDOWS_KIT}/qt5)
# Tools run here; libraries and headers are never this system's own.
set(CMAKE_FIND_ROOT_PATH ${TARN_WINDOWS_KIT}/qt5 ${TARN_WINDOWS_KIT}/ffmpeg ${TARN_SODIUM_DIR})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_LIBDIR} ${TARN_WINDOWS_KIT}/pc:${TARN_SODIUM_DIR}/lib/pkgconfig)
# The headers of Windows 10 and later.
add_compile_definitions(_WIN32_WINNT=0x0A00)
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../tests/host/run-wine)

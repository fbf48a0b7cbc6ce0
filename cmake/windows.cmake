# Cross-builds for 64-bit Windows with Debian's mingw-w64, and runs programs under Wine.
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_CROSSCOMPILING_EMULATOR /usr/lib/wine/wine64)
include(${CMAKE_CURRENT_LIST_DIR}/windows-common.cmake)

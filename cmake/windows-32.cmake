# Cross-builds for 32-bit Windows with Debian's mingw-w64. There is nothing here to run the programs.
set(CMAKE_SYSTEM_PROCESSOR i686)
include(${CMAKE_CURRENT_LIST_DIR}/windows-common.cmake)

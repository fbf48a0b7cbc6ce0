# The compiler options for all code of the project. Warnings are errors, except inside another
# project: its compiler may have more warnings.
add_library(orzcore_compiler_options INTERFACE)
target_compile_options(orzcore_compiler_options INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow
  $<$<BOOL:${PROJECT_IS_TOP_LEVEL}>:-Werror>)
# GCC 12 wrongly reports overlapping copies when it adds strings, in 32 bits and for Windows only.
if(MINGW OR CMAKE_SIZEOF_VOID_P EQUAL 4)
  target_compile_options(orzcore_compiler_options INTERFACE -Wno-restrict)
endif()
# Offsets above 2 GiB, also where `long` has 32 bits.
target_compile_definitions(orzcore_compiler_options INTERFACE _FILE_OFFSET_BITS=64 _TIME_BITS=64)
# Keeps the path of the source directory out of the programs.
target_compile_options(orzcore_compiler_options INTERFACE
  -fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=)

if(ORZCORE_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()

# What all of the project's own code is compiled with: every warning an error (but not to a project
# that takes it in, whose compiler may warn of more), large files, and the sanitizers if asked for.
add_library(orzcore_compiler_options INTERFACE)
target_compile_options(orzcore_compiler_options INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow
  $<$<BOOL:${PROJECT_IS_TOP_LEVEL}>:-Werror>)
# Files above 2 GiB, and locks far behind them, also where `long` has 32 bits.
target_compile_definitions(orzcore_compiler_options INTERFACE _FILE_OFFSET_BITS=64 _TIME_BITS=64)
# No program shall know where it was built.
target_compile_options(orzcore_compiler_options INTERFACE
  -fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=)

if(ORZCORE_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()

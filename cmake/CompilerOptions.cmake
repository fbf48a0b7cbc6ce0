# What all of the project's own code is compiled with: every warning an error, and the sanitizers if
# asked for.
add_library(orzcore_compiler_options INTERFACE)
target_compile_options(orzcore_compiler_options INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)

if(ORZCORE_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()

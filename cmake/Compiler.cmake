# Language, warnings and hardening that every target of the tree shares, as frudata_compiler.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_C_STANDARD_REQUIRED ON)

add_library(frudata_compiler INTERFACE)
target_compile_options(frudata_compiler INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror -fstack-protector-strong)
# 64-bit file offsets on the 32-bit target, and the C library's POSIX functions despite strict C++20.
target_compile_definitions(frudata_compiler INTERFACE _FILE_OFFSET_BITS=64 _DEFAULT_SOURCE)

if(FRUDATA_SANITIZE)
  add_compile_options(-fsanitize=${FRUDATA_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${FRUDATA_SANITIZE})
else()
  # The sanitizers bring their own checks of the C library's functions.
  target_compile_definitions(frudata_compiler INTERFACE $<$<NOT:$<CONFIG:Debug>>:_FORTIFY_SOURCE=2>)
endif()

# The compiler's settings that every target of this project shares. Warnings are errors where
# CMAKE_COMPILE_WARNING_AS_ERROR says so, which the presets for working on the program do: a compiler
# that warns of more must not keep anybody from building it.
add_library(kestrel_settings INTERFACE)
target_compile_options(kestrel_settings INTERFACE
  -Wall -Wextra -Wpedantic
  -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast -Wcast-qual
  -Wnon-virtual-dtor -Woverloaded-virtual -Wduplicated-cond -Wlogical-op -Wuseless-cast
  -Wdouble-promotion -Wformat=2 -Wimplicit-fallthrough)
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
  # These three are known to GCC alone.
  target_compile_options(kestrel_settings INTERFACE -Wno-unknown-warning-option)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # GCC 12 warns falsely of overlapping copies in an inlined std::string operator+ (PR 105651).
  target_compile_options(kestrel_settings INTERFACE -Wno-restrict)
endif()
if(KESTREL_SANITIZE)
  target_compile_options(kestrel_settings INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(kestrel_settings INTERFACE -fsanitize=address,undefined)
endif()
if(KESTREL_FUZZ)
  target_compile_options(kestrel_settings INTERFACE
    -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(kestrel_settings INTERFACE -fsanitize=address,undefined)
endif()

# The adapter's own program in an emulated processor: needs the Debian packages gcc-avr, avr-libc
# and libsimavr-dev. No target emulated_adapter where one of them is missing.
include_guard(GLOBAL)
find_library(SIMAVR_LIBRARY simavr)
find_path(SIMAVR_INCLUDE simavr/sim_avr.h)
if(NOT TARGET firmware OR NOT SIMAVR_LIBRARY OR NOT SIMAVR_INCLUDE)
  message(STATUS "no avr-gcc or simavr: the emulated adapter is left out")
  return()
endif()

add_library(emulated_adapter STATIC ${CMAKE_CURRENT_LIST_DIR}/emulated_adapter.cpp)
target_include_directories(emulated_adapter PUBLIC ${PROJECT_SOURCE_DIR}/tests)
target_include_directories(emulated_adapter SYSTEM PRIVATE ${SIMAVR_INCLUDE})
target_link_libraries(emulated_adapter PUBLIC kestrel_link kestrel_simulator ${SIMAVR_LIBRARY}
  PRIVATE kestrel_settings)
target_compile_definitions(emulated_adapter
  PUBLIC KESTREL_LINK_PROGRAM="$<TARGET_PROPERTY:firmware,PROGRAM>")
add_dependencies(emulated_adapter firmware)

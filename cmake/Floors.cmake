# SPDX-License-Identifier: GPL-3.0-or-later

# A floor is one folder under src/, one library target, and one list of the floors it may include.
# The list is written down for tests/check_floors.cmake, which holds every #include against it.
file(WRITE ${CMAKE_BINARY_DIR}/floors.txt "")

function(brelant_warnings target)
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wold-style-cast
    -Wcast-align -Wunused -Wimplicit-fallthrough -Werror)
  # GCC 12 sees an overlap in every `"text" + std::string` that it inlines (its bug 105651).
  target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
endfunction()

function(brelant_record_floor name)
  string(JOIN " " uses ${ARGN})
  file(APPEND ${CMAKE_BINARY_DIR}/floors.txt "${name}: ${uses}\n")
endfunction()

# brelant_floor(name SOURCES ... USES floor ... LIBRARIES target ...)
function(brelant_floor name)
  cmake_parse_arguments(ARG "" "" "SOURCES;USES;LIBRARIES" ${ARGN})
  add_library(brelant_${name} STATIC ${ARG_SOURCES})
  target_include_directories(brelant_${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  list(TRANSFORM ARG_USES PREPEND brelant_ OUTPUT_VARIABLE links)
  target_link_libraries(brelant_${name} PUBLIC ${links} ${ARG_LIBRARIES})
  brelant_warnings(brelant_${name})
  brelant_record_floor(${name} ${ARG_USES})
endfunction()

# A floor of interfaces only.
function(brelant_interface_floor name)
  add_library(brelant_${name} INTERFACE)
  target_include_directories(brelant_${name} INTERFACE ${PROJECT_SOURCE_DIR}/src)
  brelant_record_floor(${name})
endfunction()

# filterprocessor_options: what every file of the project is compiled with.
add_library(filterprocessor_options INTERFACE)
target_compile_features(filterprocessor_options INTERFACE cxx_std_20 c_std_11)
# Floating point is part of the behaviour: no contraction of separate operations on any compiler.
target_compile_options(filterprocessor_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion
  -ffp-contract=off
  # Filters have no virtual destructor: they are owned by shared pointers made for their concrete class.
  $<$<COMPILE_LANG_AND_ID:CXX,Clang>:-Wno-delete-non-abstract-non-virtual-dtor>
  $<$<BOOL:${FILTERPROCESSOR_WERROR}>:-Werror>)
target_include_directories(filterprocessor_options INTERFACE ${PROJECT_SOURCE_DIR}/include)
# Control-flow protection holds for a library or program only if every object has it, the vector kernels' as well.
set(FILTERPROCESSOR_CONTROL_FLOW_LINK)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|amd64)$")
  target_compile_options(filterprocessor_options INTERFACE -fcf-protection=full)
  # Start files of a C library built without it say nothing, so the linker would say nothing either. They suit a shadow
  # stack; they may lack the marks of indirect branch tracking, which is therefore not claimed for them.
  set(FILTERPROCESSOR_CONTROL_FLOW_LINK -Wl,-z,shstk)
elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "^(aarch64|arm64)$")
  target_compile_options(filterprocessor_options INTERFACE -mbranch-protection=standard)
endif()

# filterprocessor_guards: checks that cost nothing measurable outside the vector kernels: they stand at calls and function
# ends, not in loops.
add_library(filterprocessor_guards INTERFACE)
if(NOT FILTERPROCESSOR_SANITIZE AND NOT FILTERPROCESSOR_SANITIZE_THREADS AND NOT FILTERPROCESSOR_FUZZ)
  target_compile_options(filterprocessor_guards INTERFACE -fstack-protector-strong
    $<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2>)
endif()

set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_C_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)

if(FILTERPROCESSOR_FUZZ)
  if(NOT CMAKE_CXX_COMPILER_ID STREQUAL Clang)
    message(FATAL_ERROR "FILTERPROCESSOR_FUZZ needs clang: -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++")
  endif()
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()
if(FILTERPROCESSOR_SANITIZE OR FILTERPROCESSOR_FUZZ)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()
if(FILTERPROCESSOR_SANITIZE_THREADS)
  add_compile_options(-fsanitize=thread -fno-omit-frame-pointer)
  add_link_options(-fsanitize=thread)
endif()

# The processor levels, slowest first: add_level(name PROCESSORS regex FEATURES feature... [TUNE cpu]). Features are named
# as the compiler's -m options and __builtin_cpu_supports() name them. A level is a line here and a header of its name in
# src/kernels/simd/.
function(add_level name)
  cmake_parse_arguments(PARSE_ARGV 1 level "" "PROCESSORS;TUNE" "FEATURES")
  if(NOT CMAKE_SYSTEM_PROCESSOR MATCHES "^(${level_PROCESSORS})$")
    return()
  endif()
  set(flags ${level_FEATURES})
  list(TRANSFORM flags PREPEND -m)
  if(level_TUNE)
    list(APPEND flags -mtune=${level_TUNE})
  endif()
  list(TRANSFORM level_FEATURES REPLACE "(.+)" "__builtin_cpu_supports(\"\\1\")")
  list(JOIN level_FEATURES " && " supported)
  if(NOT supported)
    set(supported true)
  endif()
  set(FILTERPROCESSOR_FLAGS_${name} ${flags} PARENT_SCOPE)
  set(FILTERPROCESSOR_LEVELS ${FILTERPROCESSOR_LEVELS} ${name} PARENT_SCOPE)
  set(FILTERPROCESSOR_LEVEL_ROWS "${FILTERPROCESSOR_LEVEL_ROWS} LEVEL(${name}, ${supported})" PARENT_SCOPE)
endfunction()

set(avx2 avx2 fma bmi bmi2 popcnt)
add_level(avx2 PROCESSORS x86_64|AMD64|amd64 FEATURES ${avx2} TUNE skylake)
# Processors with VBMI2, which all have the rest.
add_level(avx512 PROCESSORS x86_64|AMD64|amd64 TUNE icelake-server
  FEATURES ${avx2} avx512f avx512bw avx512dq avx512vl avx512vbmi avx512vbmi2)
add_level(neon PROCESSORS aarch64|arm64)  # part of the architecture

if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
  # g++ 12 warns about the deliberately undefined operands inside its own avx512 headers.
  list(APPEND FILTERPROCESSOR_FLAGS_avx512 -Wno-maybe-uninitialized -Wno-uninitialized)
endif()

# add_kernel_levels(layer folder source...): compiles vector kernels of a layer once per processor level and lists the
# resulting layers in FILTERPROCESSOR_LEVEL_LAYERS. The layer itself gets kernel_levels.h, the table above.
function(add_kernel_levels layer folder)
  set(table ${PROJECT_BINARY_DIR}/generated/levels)
  file(CONFIGURE OUTPUT ${table}/kernel_levels.h @ONLY CONTENT
    "// LEVEL(name, whether this machine runs it), for each level compiled.\n#define FILTERPROCESSOR_LEVELS(LEVEL)@FILTERPROCESSOR_LEVEL_ROWS@\n")
  target_include_directories(filterprocessor_${layer} PRIVATE ${table})

  set(layers)
  list(TRANSFORM ARGN PREPEND ${folder}/ OUTPUT_VARIABLE sources)
  foreach(level IN LISTS FILTERPROCESSOR_LEVELS)
    set(target filterprocessor_${layer}_${level})
    add_library(${target} OBJECT ${sources})
    target_compile_definitions(${target} PRIVATE FILTERPROCESSOR_LEVEL=${level} FILTERPROCESSOR_LEVEL_HEADER="kernels/simd/${level}.h")
    # Where the linker happens to put a tight loop moved some kernels by 40 %, so functions and loops are aligned.
    target_compile_options(${target} PRIVATE ${FILTERPROCESSOR_FLAGS_${level}} -falign-functions=64 -falign-loops=32)
    target_link_libraries(${target} PRIVATE filterprocessor_${layer})
    list(APPEND layers ${layer}_${level})
  endforeach()
  set(FILTERPROCESSOR_LEVEL_LAYERS ${layers} PARENT_SCOPE)
endfunction()

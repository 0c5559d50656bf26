# add_kernel_levels(layer folder source...): compiles vector kernels of a layer once per processor level and lists the
# resulting layers in FILTERPROCESSOR_LEVEL_LAYERS.
# A level is a line here, a header in src/kernels/simd that simd.h includes, and a case in src/kernels/level.cpp and
# kernel_set.cpp. avx512 is the level of processors with VBMI2.
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|amd64)$")
  set(FILTERPROCESSOR_LEVELS avx2 avx512)
  set(FILTERPROCESSOR_FLAGS_avx2 -mavx2 -mfma -mbmi -mbmi2 -mpopcnt -mtune=skylake)
  set(FILTERPROCESSOR_FLAGS_avx512 ${FILTERPROCESSOR_FLAGS_avx2}
      -mavx512f -mavx512bw -mavx512dq -mavx512vl -mavx512vbmi -mavx512vbmi2 -mtune=icelake-server)
  if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    # g++ 12 warns about the deliberately undefined operands inside its own avx512 headers.
    list(APPEND FILTERPROCESSOR_FLAGS_avx512 -Wno-maybe-uninitialized -Wno-uninitialized)
  endif()
elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "^(aarch64|arm64)$")
  set(FILTERPROCESSOR_LEVELS neon)
else()
  set(FILTERPROCESSOR_LEVELS "")
endif()

function(add_kernel_levels layer folder)
  set(layers)
  list(TRANSFORM ARGN PREPEND ${folder}/ OUTPUT_VARIABLE sources)
  foreach(level IN LISTS FILTERPROCESSOR_LEVELS)
    set(target filterprocessor_${layer}_${level})
    string(TOUPPER ${level} LEVEL)
    add_library(${target} OBJECT ${sources})
    target_compile_definitions(${target} PRIVATE FILTERPROCESSOR_LEVEL_${LEVEL})
    # Where the linker happens to put a tight loop moved some kernels by 40 %, so functions and loops are aligned.
    target_compile_options(${target} PRIVATE ${FILTERPROCESSOR_FLAGS_${level}} -falign-functions=64 -falign-loops=32)
    target_link_libraries(${target} PRIVATE filterprocessor_${layer})
    list(APPEND layers ${layer}_${level})
  endforeach()
  set(FILTERPROCESSOR_LEVEL_LAYERS ${layers} PARENT_SCOPE)
endfunction()

# For targets with vector kernels: one body a kernel, compiled for every instruction set and chosen
# at run time. Where the baseline has no vectors that Highway supports with every compiler, it runs
# the scalar form. Vectors of unknown length are left out: the kernels count their lanes.
find_package(hwy REQUIRED)

option(TV_EVERY_TARGET "Kernels for every target below the best too, the emulated vectors included;
  not with g++ before 12.3" OFF)

function(tv_has_kernels target)
  target_link_libraries(${target} PRIVATE hwy::hwy)
  if(TV_EVERY_TARGET)
    target_compile_definitions(${target} PRIVATE HWY_BROKEN_EMU128=0 HWY_COMPILE_ALL_ATTAINABLE)
  else()
    target_compile_definitions(${target} PRIVATE HWY_BROKEN_EMU128=1)
  endif()
  target_compile_definitions(${target} PRIVATE
    "HWY_DISABLED_TARGETS=(HWY_SVE|HWY_SVE2|HWY_SVE_256|HWY_SVE2_128|HWY_RVV)")
  # With it g++ 12 leaves the upper halves of vector registers in use when a kernel calls a scalar
  # function of its file, and all code after that is several times slower.
  target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-fno-ipa-ra>)
endfunction()

# A kernel file built for AVX2 and FMA next to its plain twin. Where the compiler
# or the processor family has no such build, the file compiles plain and offers
# no table (see numerics/processor.h), so the choice at run time needs no switch.
function(zelko_avx2_source target file)
  target_sources(${target} PRIVATE ${file})
  if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64" AND CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
    set_source_files_properties(${file} PROPERTIES COMPILE_OPTIONS "-mavx2;-mfma")
  endif()
endfunction()

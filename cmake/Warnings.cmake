# One set of compiler flags for every target of the project.
add_library(tarnwick_flags INTERFACE)
target_compile_options(tarnwick_flags INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion)
# GCC 12 reports std::string copies as overlapping or out of bounds once they
# are inlined deeply enough (its bug 105329 and kin), which optimisation, the
# sanitizers and precompiled headers each bring about.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  target_compile_options(tarnwick_flags INTERFACE -Wno-restrict -Wno-array-bounds -Wno-stringop-overflow
                                                  -Wno-stringop-overread)
endif()
if(TARNWICK_WERROR)
  target_compile_options(tarnwick_flags INTERFACE -Werror)
endif()
if(TARNWICK_SANITIZE)
  # -O1 keeps the checks and makes the tests, which hash and match megabytes,
  # run in minutes rather than tens of them; -g1 keeps the line tables that the
  # reports need. The undefined-behaviour checks for null, alignment, pointer
  # overflow and vptr double GCC's compile time: a null dereference still stops
  # under AddressSanitizer, and x86 does not fault on alignment.
  set(sanitizers -fsanitize=address,undefined -fno-sanitize=vptr,alignment,pointer-overflow,null)
  target_compile_options(tarnwick_flags INTERFACE ${sanitizers} -fno-omit-frame-pointer -fno-sanitize-recover=all -O1 -g1)
  # GCC's flow analysis under the sanitizers reports std::regex and
  # std::function internals as maybe uninitialised; the sanitizers check the real thing.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(tarnwick_flags INTERFACE -Wno-maybe-uninitialized)
  endif()
  target_link_options(tarnwick_flags INTERFACE ${sanitizers})
endif()
if(TARNWICK_FUZZ)
  # The code under test carries libFuzzer's coverage hooks and both
  # sanitizers; the fuzz targets add libFuzzer itself (fuzz/CMakeLists.txt).
  # OSS-Fuzz's optimisation and debug level: a quick build, fast runs, stack
  # traces with lines. The library's own checks catch an index past the end
  # of a string or vector that still lies inside its buffer, where
  # AddressSanitizer sees nothing.
  target_compile_options(tarnwick_flags INTERFACE -fsanitize=fuzzer-no-link,address,undefined
                                                  -fno-sanitize-recover=all -fno-omit-frame-pointer -O1 -gline-tables-only
                                                  -D_GLIBCXX_ASSERTIONS)
  target_link_options(tarnwick_flags INTERFACE -fsanitize=address,undefined)
endif()
if(WIN32)
  # Static runtime: the binaries import only system DLLs.
  target_link_options(tarnwick_flags INTERFACE -static -static-libgcc -static-libstdc++)
endif()

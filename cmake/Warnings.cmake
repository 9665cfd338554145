# One set of compiler flags for every target of the project.
add_library(tarnwick_flags INTERFACE)
target_compile_options(tarnwick_flags INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion)
# GCC 12 reports std::string copies as overlapping at -O3 (its bug 105329).
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  target_compile_options(tarnwick_flags INTERFACE -Wno-restrict)
endif()
if(TARNWICK_WERROR)
  target_compile_options(tarnwick_flags INTERFACE -Werror)
endif()
if(TARNWICK_SANITIZE)
  # -O1 keeps the checks and makes the tests, which hash and match megabytes,
  # run in minutes rather than tens of them.
  target_compile_options(tarnwick_flags INTERFACE -fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=all
                                                  -O1)
  target_link_options(tarnwick_flags INTERFACE -fsanitize=address,undefined)
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

# One interface target that every target of ours links: warnings, sanitizers, coverage.
add_library(sweepwright_flags INTERFACE)
target_compile_options(sweepwright_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor
  -Woverloaded-virtual -Wimplicit-fallthrough)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_UNITY_BUILD)
  # In a unity build a test's fixture, which is local to its source, looks as if it were not.
  target_compile_options(sweepwright_flags INTERFACE -Wno-subobject-linkage)
endif()
if(SWEEPWRIGHT_WERROR)
  target_compile_options(sweepwright_flags INTERFACE -Werror)
endif()
if(SWEEPWRIGHT_SANITIZE)
  target_compile_options(sweepwright_flags INTERFACE
    -fsanitize=${SWEEPWRIGHT_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(sweepwright_flags INTERFACE -fsanitize=${SWEEPWRIGHT_SANITIZE})
endif()
if(SWEEPWRIGHT_COVERAGE)
  # Threads count at once; without atomic updates counts get lost, or negative.
  target_compile_options(sweepwright_flags INTERFACE --coverage -fprofile-update=atomic -O0)
  target_link_options(sweepwright_flags INTERFACE --coverage)
endif()

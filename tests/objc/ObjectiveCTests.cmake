# The bridge to the Objective-C run time, run against GNUstep. Only GCC's compiler goes with GNUstep
# as distributions build it, whichever compiler builds the rest.
find_program(GNUSTEP_CONFIG gnustep-config)
find_program(SWEEPWRIGHT_OBJC_COMPILER NAMES gcc)
set(objc_missing "")
if(NOT GNUSTEP_CONFIG)
  string(APPEND objc_missing " gnustep-config (Debian: gnustep-make, libgnustep-base-dev)")
endif()
if(SWEEPWRIGHT_OBJC_COMPILER)
  execute_process(
    COMMAND ${CMAKE_COMMAND} -E echo "int one(void) { return 1; }"
    COMMAND ${SWEEPWRIGHT_OBJC_COMPILER} -x objective-c -fsyntax-only -
    RESULT_VARIABLE objc_fails OUTPUT_QUIET ERROR_QUIET)
endif()
if(NOT SWEEPWRIGHT_OBJC_COMPILER OR objc_fails)
  string(APPEND objc_missing " an Objective-C compiler (Debian: gobjc)")
endif()
if(objc_missing)
  message(WARNING "NO TESTS of the bridge to the Objective-C run time, missing:${objc_missing}")
  return()
endif()

set(CMAKE_OBJC_COMPILER ${SWEEPWRIGHT_OBJC_COMPILER})
enable_language(OBJC)

# gnustep-config answers nothing, and says so by no status, where it misses make.
function(ask_gnustep words result)
  execute_process(COMMAND ${GNUSTEP_CONFIG} ${words} OUTPUT_VARIABLE answer
    OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  if(NOT answer)
    message(FATAL_ERROR "${GNUSTEP_CONFIG} ${words} answers nothing; is make installed?")
  endif()
  separate_arguments(answer UNIX_COMMAND "${answer}")
  set(${result} ${answer} PARENT_SCOPE)
endfunction()

ask_gnustep(--objc-flags gnustep_flags)
ask_gnustep(--base-libs gnustep_libraries)
list(REMOVE_ITEM gnustep_flags -MMD -MP -I. -g -O2)  # dependencies and levels are CMake's to give

add_library(fake_workspace MODULE ${CMAKE_CURRENT_LIST_DIR}/FakeWorkspace.m)
target_compile_options(fake_workspace PRIVATE ${gnustep_flags} -std=gnu11 -Wno-unused-value -Werror)
target_link_libraries(fake_workspace PRIVATE ${gnustep_libraries})

sweepwright_tests(objc sweepwright_platform_internal)
target_compile_definitions(test_objc PRIVATE FAKE_WORKSPACE="$<TARGET_FILE:fake_workspace>")
target_link_libraries(test_objc PRIVATE ${CMAKE_DL_LIBS})
add_dependencies(test_objc fake_workspace)

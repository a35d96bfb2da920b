# Run as a script: writes HEADER, which says what the programs were built from, from VERSION and the
# commit of the checkout in SOURCE or, in a source archive, the one noted in cmake/commit.txt.
# Without either (or with COMMIT_WANTED off) the commit is left empty.
set(commit "")
set(date "")
if(COMMIT_WANTED AND EXISTS ${SOURCE}/.git)
  # The checkout may belong to another user than the one who builds, as in a container.
  set(git git -c safe.directory=${SOURCE} -C ${SOURCE})
  execute_process(COMMAND ${git} describe --always --dirty --abbrev=12 --exclude=*
    OUTPUT_VARIABLE commit OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET RESULT_VARIABLE status)
  if(status EQUAL 0)
    execute_process(COMMAND ${git} log -1 --format=%cs
      OUTPUT_VARIABLE date OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
  else()
    set(commit "")
  endif()
elseif(COMMIT_WANTED)
  # "git archive" fills it in.
  file(READ ${SOURCE}/cmake/commit.txt noted)
  if(noted MATCHES "^([0-9a-f]+) ([0-9-]+)")
    set(date ${CMAKE_MATCH_2})
    string(SUBSTRING ${CMAKE_MATCH_1} 0 12 commit)
  endif()
endif()

# Written only when it differs, so that nothing is compiled anew for the same commit.
file(CONFIGURE OUTPUT ${HEADER} @ONLY CONTENT [[#pragma once

#include <string_view>

namespace sweepwright::launch::stamp {

inline constexpr std::string_view kVersion = "@VERSION@";
inline constexpr std::string_view kCommit = "@commit@";
inline constexpr std::string_view kDate = "@date@";

}  // namespace sweepwright::launch::stamp
]])

# Says in VersionStamp.h what the programs are built from. Written now, for tools that read sources
# without a build, and again by each build, which may be of another commit. Instrumented builds know
# no commit: every one would link all tests anew.
set(SWEEPWRIGHT_GENERATED ${PROJECT_BINARY_DIR}/generated)
set(stamp_wants_commit ON)
if(SWEEPWRIGHT_SANITIZE OR SWEEPWRIGHT_COVERAGE)
  set(stamp_wants_commit OFF)
endif()
set(write_stamp ${CMAKE_COMMAND} -D SOURCE=${PROJECT_SOURCE_DIR} -D VERSION=${PROJECT_VERSION}
  -D HEADER=${SWEEPWRIGHT_GENERATED}/VersionStamp.h -D COMMIT_WANTED=${stamp_wants_commit}
  -P ${PROJECT_SOURCE_DIR}/cmake/StampVersion.cmake)
execute_process(COMMAND ${write_stamp} COMMAND_ERROR_IS_FATAL ANY)
if(stamp_wants_commit)
  add_custom_target(version_stamp COMMAND ${write_stamp}
    BYPRODUCTS ${SWEEPWRIGHT_GENERATED}/VersionStamp.h)
else()
  add_custom_target(version_stamp)
endif()

# The day of the release, for the manual and for software centres.
file(STRINGS ${PROJECT_SOURCE_DIR}/CHANGELOG.md release LIMIT_COUNT 1
  REGEX "^## \\[${PROJECT_VERSION}\\] - [0-9-]+$")
if(NOT release MATCHES "- ([0-9-]+)$")
  message(FATAL_ERROR "CHANGELOG.md has no line \"## [${PROJECT_VERSION}] - DATE\"")
endif()
set(SWEEPWRIGHT_RELEASE_DATE ${CMAKE_MATCH_1})

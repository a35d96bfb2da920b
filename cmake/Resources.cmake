# The resources are laid out as in an app bundle. A program looks for them from the folder that it is
# in, so that an installed tree may be moved: in <datadir>/sweepwright as seen from <bindir>, else in
# ../share/sweepwright, where a build has them.
include(GNUInstallDirs)
file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/share)
if(NOT EXISTS ${PROJECT_BINARY_DIR}/share/sweepwright)
  file(CREATE_LINK ${PROJECT_SOURCE_DIR}/resources ${PROJECT_BINARY_DIR}/share/sweepwright SYMBOLIC)
endif()
file(RELATIVE_PATH SWEEPWRIGHT_RESOURCES_FROM_PROGRAM
  ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_DATADIR}/sweepwright)

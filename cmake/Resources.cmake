# The resources are laid out as in an app bundle and stand beside the executables, in
# <prefix>/share/sweepwright once installed and in <build>/share/sweepwright before that.
include(GNUInstallDirs)
file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/share)
if(NOT EXISTS ${PROJECT_BINARY_DIR}/share/sweepwright)
  file(CREATE_LINK ${PROJECT_SOURCE_DIR}/resources ${PROJECT_BINARY_DIR}/share/sweepwright SYMBOLIC)
endif()
install(DIRECTORY ${PROJECT_SOURCE_DIR}/resources/ DESTINATION ${CMAKE_INSTALL_DATADIR}/sweepwright)

# What "cmake --install" lays down beside the programs, where the GNU layout wants it. The component
# "cli" is all that sweepctl needs, "app" what the app needs beside it.
set(SWEEPWRIGHT_BASH_COMPLETIONS ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
  CACHE STRING "Where bash looks for completions")
set(SWEEPWRIGHT_ZSH_COMPLETIONS ${CMAKE_INSTALL_DATADIR}/zsh/site-functions
  CACHE STRING "Where zsh looks for completions")
set(SWEEPWRIGHT_FISH_COMPLETIONS ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d
  CACHE STRING "Where fish looks for completions")
set(resources ${CMAKE_INSTALL_DATADIR}/sweepwright)
set(packaging ${PROJECT_SOURCE_DIR}/packaging)

install(DIRECTORY resources/ DESTINATION ${resources} COMPONENT cli FILES_MATCHING PATTERN *.strings
  PATTERN icon EXCLUDE PATTERN symbols EXCLUDE)
install(FILES ${packaging}/completions/sweepctl.bash RENAME sweepctl
  DESTINATION ${SWEEPWRIGHT_BASH_COMPLETIONS} COMPONENT cli)
install(FILES ${packaging}/completions/_sweepctl
  DESTINATION ${SWEEPWRIGHT_ZSH_COMPLETIONS} COMPONENT cli)
install(FILES ${packaging}/completions/sweepctl.fish
  DESTINATION ${SWEEPWRIGHT_FISH_COMPLETIONS} COMPONENT cli)
if(TARGET manual)
  install(FILES ${PROJECT_BINARY_DIR}/man/sweepctl.1
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT cli)
endif()

if(NOT TARGET sweepwright)
  return()
endif()
install(FILES resources/Info.plist DESTINATION ${resources} COMPONENT app)
install(DIRECTORY resources/icon resources/symbols DESTINATION ${resources} COMPONENT app)
install(FILES ${packaging}/desktop/com.sweepwright.app.desktop
  DESTINATION ${CMAKE_INSTALL_DATADIR}/applications COMPONENT app)
configure_file(${packaging}/desktop/com.sweepwright.app.metainfo.xml.in
  ${SWEEPWRIGHT_GENERATED}/com.sweepwright.app.metainfo.xml @ONLY)
install(FILES ${SWEEPWRIGHT_GENERATED}/com.sweepwright.app.metainfo.xml
  DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo COMPONENT app)
install(DIRECTORY ${packaging}/icons/hicolor
  DESTINATION ${CMAKE_INSTALL_DATADIR}/icons COMPONENT app)
if(TARGET manual)
  install(FILES ${PROJECT_BINARY_DIR}/man/sweepwright.1
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT app)
endif()

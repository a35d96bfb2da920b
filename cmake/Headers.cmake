# Who links a library sees the headers of that library and of those it is linked to, and nothing
# else of src: an include upwards finds no file. A library's include directory is a folder of links
# in the build tree,
#
#   <build>/include/<target>/<folder>/X.h                      to src/<folder>/X.h
#   <build>/include/<target>_internal/<folder>/internal/X.h    to src/<folder>/internal/X.h
#
# The second is seen by the library itself, and by tests that link <target>_internal.

# The folder with links to the headers given, and no others, becomes an include directory of `target`.
# Links that are right stay, since a build may run meanwhile.
function(sweepwright_include_folder target scope folder)
  file(GLOB_RECURSE stale ${folder}/*.h)
  foreach(header ${ARGN})
    file(RELATIVE_PATH name ${PROJECT_SOURCE_DIR}/src ${header})
    set(link ${folder}/${name})
    list(REMOVE_ITEM stale ${link})
    if(NOT EXISTS ${link})
      cmake_path(GET link PARENT_PATH parent)
      file(MAKE_DIRECTORY ${parent})
      file(CREATE_LINK ${header} ${link} SYMBOLIC)
    endif()
  endforeach()
  if(stale)
    file(REMOVE ${stale})
  endif()
  target_include_directories(${target} ${scope} ${folder})
endfunction()

# The headers of src/<folder>, which belong to the library `target`.
function(sweepwright_headers target folder)
  set(links ${PROJECT_BINARY_DIR}/include/${target})
  file(GLOB headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/${folder}/*.h)
  sweepwright_include_folder(${target} PUBLIC ${links} ${headers})
  file(GLOB headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/${folder}/internal/*.h)
  if(headers)
    add_library(${target}_internal INTERFACE)
    sweepwright_include_folder(${target}_internal INTERFACE ${links}_internal ${headers})
    target_link_libraries(${target} PRIVATE ${target}_internal)
  endif()
endfunction()

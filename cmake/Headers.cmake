# Who links a library sees the headers of that library and of those it is linked to, and nothing
# else of src: an include upwards finds no file. A library's include directory is a folder of links
# in the build tree,
#
#   <build>/include/<target>/<folder>/X.h                      to src/<folder>/X.h
#   <build>/include/<target>_internal/<folder>/internal/X.h    to src/<folder>/internal/X.h
#
# The second is seen by the library itself, and by tests that link <target>_internal.

# The folder for the headers given, filled anew, becomes an include directory of `target`.
function(sweepwright_include_folder target scope folder)
  file(REMOVE_RECURSE ${folder})
  file(MAKE_DIRECTORY ${folder})
  foreach(header ${ARGN})
    file(RELATIVE_PATH name ${PROJECT_SOURCE_DIR}/src ${header})
    cmake_path(GET name PARENT_PATH parent)
    file(MAKE_DIRECTORY ${folder}/${parent})
    file(CREATE_LINK ${header} ${folder}/${name} SYMBOLIC)
  endforeach()
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

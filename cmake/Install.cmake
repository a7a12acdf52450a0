# What `cmake --install` puts in place: one shared library of the three library rooms and the platform below them, its
# headers, and the files by which CMake and pkg-config find it. Nothing of it needs Qt's headers.

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

get_property(rooms GLOBAL PROPERTY FRAMEKEEPER_LIBRARY_ROOMS)
get_property(headers GLOBAL PROPERTY FRAMEKEEPER_HEADERS)
# One topic is one pair of files, so every header of the three rooms is public, but for those that register the rooms.
file(GLOB library_headers RELATIVE ${PROJECT_SOURCE_DIR} CONFIGURE_DEPENDS coreutils/*.h pathutils/*.h scripting/*.h)
list(FILTER library_headers EXCLUDE REGEX "/Registration\\.h$")

# framekeeper_with_included(RESULT HEADER...): the headers and those of the tree that they include, also through others;
# relative to the root. CMake runs again when one of them changes.
function(framekeeper_with_included RESULT)
  set(waiting ${ARGN})
  set(found)
  while(waiting)
    list(POP_FRONT waiting header)
    if(header IN_LIST found)
      continue()
    endif()
    list(APPEND found ${header})
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${header})
    file(STRINGS ${PROJECT_SOURCE_DIR}/${header} lines REGEX "^[ \t]*#[ \t]*include[ \t]*\"")
    foreach(line IN LISTS lines)
      string(REGEX REPLACE "^[^\"]*\"([^\"]*)\".*" "\\1" included "${line}")
      list(APPEND waiting ${included})
    endforeach()
  endwhile()
  list(SORT found)
  set(${RESULT} ${found} PARENT_SCOPE)
endfunction()

framekeeper_with_included(public_headers ${headers} ${library_headers})
list(TRANSFORM public_headers PREPEND ${PROJECT_SOURCE_DIR}/)

add_library(framekeeper_shared SHARED $<TARGET_OBJECTS:framekeeper_operations> $<TARGET_OBJECTS:framekeeper_library>)
foreach(room IN LISTS rooms)
  target_sources(framekeeper_shared PRIVATE $<TARGET_OBJECTS:${room}>)
  get_target_property(hidden ${room} FRAMEKEEPER_HIDES)
  if(hidden)
    target_link_libraries(framekeeper_shared PRIVATE ${hidden})
  endif()
endforeach()
set_target_properties(
  framekeeper_shared
  PROPERTIES OUTPUT_NAME framekeeper
             EXPORT_NAME framekeeper
             VERSION ${PROJECT_VERSION}
             # What programs were built against stays as it is while this number does; so says the version file, too.
             SOVERSION ${PROJECT_VERSION_MAJOR})
# What the installed headers declare is exported, and nothing else (scripts/exported-symbols).
set(exported ${PROJECT_SOURCE_DIR}/packaging/libframekeeper.map)
target_link_options(framekeeper_shared PRIVATE -Wl,--version-script=${exported})
set_target_properties(framekeeper_shared PROPERTIES LINK_DEPENDS ${exported})
target_compile_features(framekeeper_shared INTERFACE cxx_std_20)
target_sources(framekeeper_shared PUBLIC FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR} FILES ${public_headers})
framekeeper_register_rooms(framekeeper_shared ${rooms} framekeeper_operations framekeeper_library)

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/Framekeeper)
install(
  TARGETS framekeeper_shared
  EXPORT Framekeeper
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_COMPONENT development
  FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/framekeeper COMPONENT development)
# What autostart entries written by the library may start.
install(TARGETS framekeeper-login DESTINATION ${CMAKE_INSTALL_LIBEXECDIR} COMPONENT library)
install(EXPORT Framekeeper FILE FramekeeperConfig.cmake NAMESPACE Framekeeper:: DESTINATION ${package_folder}
        COMPONENT development)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/FramekeeperConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/FramekeeperConfigVersion.cmake DESTINATION ${package_folder}
        COMPONENT development)

# Relative to the file itself, so that the installed tree may be moved.
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}/pkgconfig
           OUTPUT_VARIABLE FRAMEKEEPER_PREFIX_FROM_PKGCONFIG)
configure_file(packaging/framekeeper.pc.in ${PROJECT_BINARY_DIR}/framekeeper.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/framekeeper.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

# What `cmake --install` puts in place: the library of the three library rooms and the platform below them, its headers,
# and the files by which CMake and pkg-config find it. Nothing of it needs Qt's headers. It is two shared libraries, so
# that a program without windows does not load the toolkit's: libframekeeper-core, and libframekeeper with the rest. What
# reads and draws pictures is a module that the former loads when it first needs it.

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

set(core_rooms ${rooms} framekeeper_operations)
set(window_rooms framekeeper_views framekeeper_library)
list(REMOVE_ITEM core_rooms ${window_rooms})
# What the programs consist of beside the libraries.
set(program_rooms framekeeper_controller framekeeper_app framekeeper_command framekeeper_spotlight
                  framekeeper_arrangement framekeeper_appkit)

# framekeeper_shared_library(TARGET NAME ROOMS ... USERS ...): a shared library of these rooms. It exports what the
# installed headers declare (scripts/exported-symbols), and what its users, which are installed with it, need beyond.
function(framekeeper_shared_library TARGET NAME)
  cmake_parse_arguments(LIBRARY "" "" "ROOMS;USERS" ${ARGN})
  add_library(${TARGET} SHARED)
  set(archives)
  set(externals)
  foreach(room IN LISTS LIBRARY_ROOMS)
    target_sources(${TARGET} PRIVATE $<TARGET_OBJECTS:${room}>)
    list(APPEND archives $<TARGET_FILE:${room}>)
    get_target_property(hidden ${room} FRAMEKEEPER_HIDES)
    if(hidden)
      list(APPEND externals ${hidden})
    endif()
  endforeach()
  # Rooms come in by their objects alone: from an archive they would come in twice.
  list(FILTER externals EXCLUDE REGEX "^framekeeper_")
  target_link_libraries(${TARGET} PRIVATE ${externals})
  set(users ${LIBRARY_USERS})
  list(TRANSFORM users REPLACE "(.+)" "$<TARGET_FILE:\\1>")
  set(map ${PROJECT_SOURCE_DIR}/packaging/libframekeeper.map)
  set(exported ${PROJECT_BINARY_DIR}/${NAME}.map)
  set(write_map ${PROJECT_SOURCE_DIR}/scripts/internal-symbols)
  add_custom_command(
    OUTPUT ${exported}
    COMMAND ${write_map} ${CMAKE_NM} ${exported} ${map} ${archives} -- ${users} $<TARGET_OBJECTS:framekeeper_osa>
    DEPENDS ${write_map} ${map} ${LIBRARY_ROOMS} ${LIBRARY_USERS} $<TARGET_OBJECTS:framekeeper_osa>
    COMMAND_EXPAND_LISTS VERBATIM)
  target_sources(${TARGET} PRIVATE ${exported})
  set_target_properties(
    ${TARGET}
    PROPERTIES OUTPUT_NAME ${NAME}
               EXPORT_NAME ${NAME}
               VERSION ${PROJECT_VERSION}
               # The interface that programs were built against stays while this number does, as the version file
               # promises.
               SOVERSION ${PROJECT_VERSION_MAJOR}
               LINK_DEPENDS ${exported})
  # A call within the library goes straight to its own function; the program's symbols are not searched first.
  target_link_options(${TARGET} PRIVATE -Wl,--version-script=${exported} -Wl,--no-undefined -Wl,-Bsymbolic-functions)
  target_compile_features(${TARGET} INTERFACE cxx_std_20)
  target_include_directories(${TARGET} PRIVATE ${PROJECT_SOURCE_DIR})
  framekeeper_register_rooms(${TARGET} ${LIBRARY_ROOMS})
endfunction()

framekeeper_shared_library(framekeeper_shared_core framekeeper-core ROOMS ${core_rooms}
                           USERS ${program_rooms} ${window_rooms} framekeeper_pictures)
framekeeper_shared_library(framekeeper_shared framekeeper ROOMS ${window_rooms} USERS ${program_rooms})
target_link_libraries(framekeeper_shared PUBLIC framekeeper_shared_core)
# Programs that were linked when there was one library name no other: the loader then looks for the second one where the
# first one says.
set_target_properties(framekeeper_shared PROPERTIES INSTALL_RPATH "$ORIGIN")
# Its classes and hooks register themselves, so a program needs it also if it calls nothing of it.
target_link_options(framekeeper_shared INTERFACE LINKER:--no-as-needed)
target_sources(framekeeper_shared PUBLIC FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR} FILES ${public_headers})

# Loaded by the library when it first needs a picture.
set(module_folder ${CMAKE_INSTALL_LIBDIR}/framekeeper)
add_library(framekeeper_pictures_module MODULE $<TARGET_OBJECTS:framekeeper_pictures>)
target_link_libraries(framekeeper_pictures_module PRIVATE framekeeper_shared_core Qt6::Core Qt6::Gui)
set_target_properties(framekeeper_pictures_module PROPERTIES PREFIX "" OUTPUT_NAME framekeeper-pictures-${PROJECT_VERSION}
                      LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/framekeeper)
framekeeper_register_rooms(framekeeper_pictures_module framekeeper_pictures)
target_include_directories(framekeeper_pictures_module PRIVATE ${PROJECT_SOURCE_DIR})
add_dependencies(framekeeper_shared framekeeper_pictures_module)
install(TARGETS framekeeper_pictures_module DESTINATION ${module_folder} COMPONENT library)

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/Framekeeper)
install(
  TARGETS framekeeper_shared_core framekeeper_shared
  EXPORT Framekeeper
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_COMPONENT development
  FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/framekeeper COMPONENT development)
# What autostart entries written by the library may start.
framekeeper_link_shared(framekeeper-login ${CMAKE_INSTALL_LIBEXECDIR} framekeeper_shared_core)
add_dependencies(framekeeper_shared framekeeper-login)
install(TARGETS framekeeper-login DESTINATION ${CMAKE_INSTALL_LIBEXECDIR} COMPONENT library)
install(EXPORT Framekeeper FILE FramekeeperConfig.cmake NAMESPACE Framekeeper:: DESTINATION ${package_folder}
        COMPONENT development)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/FramekeeperConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/FramekeeperConfigVersion.cmake DESTINATION ${package_folder}
        COMPONENT development)

# The prefix relative to the pkg-config file itself, so that the installed tree may be moved.
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}/pkgconfig
           OUTPUT_VARIABLE FRAMEKEEPER_PREFIX_FROM_PKGCONFIG)
configure_file(packaging/framekeeper.pc.in ${PROJECT_BINARY_DIR}/framekeeper.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/framekeeper.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

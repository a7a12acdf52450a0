# Every program gets one source that registers the rooms it links, before main: a static initialiser in the program's own
# object file, which no linker leaves out, and the only one there is. framekeeper_room(... REGISTERS function) names a
# room's function, which the nearest Registration.h declares: the room's own, or the one of all rooms of platform.

# framekeeper_registers(TARGET FUNCTION...): for the current folder's target, in the order in which rooms are added.
function(framekeeper_registers TARGET)
  get_property(registering GLOBAL PROPERTY FRAMEKEEPER_REGISTERING_TARGETS)
  if(NOT "${TARGET}" IN_LIST registering)
    set_property(GLOBAL APPEND PROPERTY FRAMEKEEPER_REGISTERING_TARGETS ${TARGET})
  endif()
  cmake_path(RELATIVE_PATH CMAKE_CURRENT_SOURCE_DIR BASE_DIRECTORY ${PROJECT_SOURCE_DIR} OUTPUT_VARIABLE folder)
  while(NOT EXISTS ${PROJECT_SOURCE_DIR}/${folder}/Registration.h)
    cmake_path(GET folder PARENT_PATH parent)
    if(parent STREQUAL "")
      message(FATAL_ERROR "no Registration.h declares what registers ${TARGET}")
    endif()
    set(folder ${parent})
  endwhile()
  foreach(function IN LISTS ARGN)
    set_property(TARGET ${TARGET} APPEND PROPERTY FRAMEKEEPER_REGISTRATION_HEADERS ${folder}/Registration.h)
    set_property(TARGET ${TARGET} APPEND PROPERTY FRAMEKEEPER_REGISTRATION_FUNCTIONS ${function})
  endforeach()
endfunction()

# The targets of the tree that these targets link, themselves included, also through others.
function(framekeeper_linked_targets RESULT)
  set(waiting ${ARGN})
  set(found)
  while(waiting)
    list(POP_FRONT waiting target)
    string(REGEX REPLACE "^\\$<LINK_ONLY:(.*)>$" "\\1" target "${target}")
    if(target IN_LIST found OR NOT TARGET "${target}")
      continue()
    endif()
    get_target_property(isImported ${target} IMPORTED)
    if(isImported)
      continue()
    endif()
    list(APPEND found ${target})
    foreach(property LINK_LIBRARIES INTERFACE_LINK_LIBRARIES)
      get_target_property(linked ${target} ${property})
      if(linked)
        list(APPEND waiting ${linked})
      endif()
    endforeach()
  endwhile()
  set(${RESULT} ${found} PARENT_SCOPE)
endfunction()

# framekeeper_register_rooms(TARGET ROOM...): writes the source that registers these rooms, and builds it into the target.
function(framekeeper_register_rooms TARGET)
  get_property(registering GLOBAL PROPERTY FRAMEKEEPER_REGISTERING_TARGETS)
  set(includes)
  set(calls)
  foreach(room IN LISTS registering)
    if(NOT room IN_LIST ARGN)
      continue()
    endif()
    get_target_property(headers ${room} FRAMEKEEPER_REGISTRATION_HEADERS)
    get_target_property(functions ${room} FRAMEKEEPER_REGISTRATION_FUNCTIONS)
    foreach(header function IN ZIP_LISTS headers functions)
      list(APPEND includes "#include \"${header}\"\n")
      string(APPEND calls "    ${function}();\n")
    endforeach()
  endforeach()
  if(NOT calls)
    return()
  endif()
  list(REMOVE_DUPLICATES includes)
  list(JOIN includes "" includes)
  set(source ${PROJECT_BINARY_DIR}/registration/${TARGET}.cpp)
  file(CONFIGURE OUTPUT ${source} CONTENT "// Written by cmake/Registration.cmake.
@includes@
namespace {

[[maybe_unused]] bool const isRegistered = [] {
@calls@    return true;
}();

} // namespace
" @ONLY)
  target_sources(${TARGET} PRIVATE ${source})
endfunction()

# framekeeper_register_programs(FOLDER): for each program of a folder and of those below. Shared libraries register the
# rooms they are made of themselves; a program's FRAMEKEEPER_ROOMS are then those that it has beside them.
function(framekeeper_register_programs FOLDER)
  get_property(targets DIRECTORY ${FOLDER} PROPERTY BUILDSYSTEM_TARGETS)
  foreach(target IN LISTS targets)
    get_target_property(type ${target} TYPE)
    if(type STREQUAL EXECUTABLE)
      get_target_property(linked ${target} FRAMEKEEPER_ROOMS)
      if(linked STREQUAL "linked-NOTFOUND")
        framekeeper_linked_targets(linked ${target})
      endif()
      framekeeper_register_rooms(${target} ${linked})
    endif()
  endforeach()
  get_property(folders DIRECTORY ${FOLDER} PROPERTY SUBDIRECTORIES)
  foreach(folder IN LISTS folders)
    framekeeper_register_programs(${folder})
  endforeach()
endfunction()

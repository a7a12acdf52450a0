# What every target shares, and one function for each kind of target.

add_library(framekeeper_options INTERFACE)
target_include_directories(framekeeper_options INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_options(framekeeper_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wextra-semi
                                                     -Wimplicit-fallthrough)
# A user's build does not end at what a newer compiler warns of. At -O3 GCC 12 sees overlaps, overflows and optional
# values without a beginning where the standard library's own code has none.
target_compile_options(
  framekeeper_options
  INTERFACE $<$<NOT:$<CONFIG:Release>>:-Werror>
            $<$<AND:$<CXX_COMPILER_ID:GNU>,$<CONFIG:Release>>:-Wno-restrict;-Wno-stringop-overflow;-Wno-array-bounds>
            $<$<AND:$<CXX_COMPILER_ID:GNU>,$<CONFIG:Release>>:-Wno-maybe-uninitialized>)
if(FRAMEKEEPER_SANITIZERS)
  target_compile_options(framekeeper_options INTERFACE -fsanitize=${FRAMEKEEPER_SANITIZERS}
                                                       -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(framekeeper_options INTERFACE -fsanitize=${FRAMEKEEPER_SANITIZERS})
endif()

# Compiles several sources of a target as one, so that the headers they share are read once. Names in unnamed namespaces
# must therefore differ within a target. Sources with compile definitions or options of their own stay alone.
option(FRAMEKEEPER_UNITY "Compile the sources of a target in batches" OFF)
set(FRAMEKEEPER_UNITY_BATCH 12 CACHE STRING "How many sources make a batch; 0 for all of a target")
# Targets that are compiled source by source even then: the walk of a disk is about a tenth slower from batches.
set(FRAMEKEEPER_ALONE framekeeper_walker)

function(framekeeper_compile_in_batches NAME)
  if(FRAMEKEEPER_UNITY AND NOT NAME IN_LIST FRAMEKEEPER_ALONE)
    set_target_properties(${NAME} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE ${FRAMEKEEPER_UNITY_BATCH})
    # Qt's macros named slots, signals and emit would reach sources that know nothing of Qt.
    target_compile_definitions(${NAME} PRIVATE QT_NO_KEYWORDS)
    # GCC takes a class in a source of a batch for one in a header.
    target_compile_options(${NAME} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>)
  endif()
endfunction()

# framekeeper_room(NAME SOURCES ... [HEADERS ...] [REGISTERS ...] [USES ...] [HIDES ...]): a folder of the tree as a
# library. HEADERS are the public ones; what they include is public, too. REGISTERS is the function that registers the
# room's classes and hands in its hooks (Registration.cmake). USES are the rooms its headers may include, HIDES what only
# its sources see, so that no toolkit reaches another room.
function(framekeeper_room NAME)
  cmake_parse_arguments(ROOM "" "" "SOURCES;HEADERS;REGISTERS;USES;HIDES" ${ARGN})
  add_library(framekeeper_${NAME} STATIC ${ROOM_SOURCES})
  framekeeper_compile_in_batches(framekeeper_${NAME})
  target_link_libraries(framekeeper_${NAME} PUBLIC framekeeper_options ${ROOM_USES} PRIVATE ${ROOM_HIDES})
  set_target_properties(framekeeper_${NAME} PROPERTIES FRAMEKEEPER_HIDES "${ROOM_HIDES}")
  if(ROOM_REGISTERS)
    framekeeper_registers(framekeeper_${NAME} ${ROOM_REGISTERS})
  endif()
  cmake_path(RELATIVE_PATH CMAKE_CURRENT_SOURCE_DIR BASE_DIRECTORY ${PROJECT_SOURCE_DIR} OUTPUT_VARIABLE folder)
  list(TRANSFORM ROOM_HEADERS PREPEND ${folder}/)
  set_property(GLOBAL APPEND PROPERTY FRAMEKEEPER_HEADERS ${ROOM_HEADERS})
endfunction()

# framekeeper_library_room(NAME ...): a room that the installed library is made of.
function(framekeeper_library_room NAME)
  framekeeper_room(${NAME} ${ARGN})
  set_property(GLOBAL APPEND PROPERTY FRAMEKEEPER_LIBRARY_ROOMS framekeeper_${NAME})
endfunction()

# framekeeper_link_shared(PROGRAM FOLDER LIBRARY...): links a program, which is installed in the folder, with shared
# libraries instead of the rooms that they are made of. Its other rooms come in as objects: what the libraries lack fails
# to link, and does not come in twice.
function(framekeeper_link_shared PROGRAM FOLDER)
  get_property(shared_rooms GLOBAL PROPERTY FRAMEKEEPER_LIBRARY_ROOMS)
  list(APPEND shared_rooms framekeeper_operations framekeeper_library framekeeper_pictures framekeeper_options)
  framekeeper_linked_targets(rooms ${PROGRAM})
  list(REMOVE_ITEM rooms ${PROGRAM} ${shared_rooms})
  set(externals)
  foreach(target IN LISTS PROGRAM rooms)
    get_target_property(linked ${target} LINK_LIBRARIES)
    list(APPEND externals ${linked})
  endforeach()
  list(FILTER externals EXCLUDE REGEX "^(.*framekeeper_.*|.*-NOTFOUND)$")
  list(REMOVE_DUPLICATES externals)
  foreach(room IN LISTS rooms)
    target_sources(${PROGRAM} PRIVATE $<TARGET_OBJECTS:${room}>)
  endforeach()
  # A library whose classes and hooks alone are needed counts as needed, too.
  set_target_properties(
    ${PROGRAM}
    PROPERTIES LINK_LIBRARIES "framekeeper_options;-Wl,--no-as-needed;${ARGN};-Wl,--as-needed;${externals}"
               FRAMEKEEPER_ROOMS "${rooms}")
  # Found also below a prefix where no loader looks.
  # Either folder may be absolute.
  cmake_path(ABSOLUTE_PATH CMAKE_INSTALL_LIBDIR BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX} OUTPUT_VARIABLE libraries)
  cmake_path(ABSOLUTE_PATH FOLDER BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX} OUTPUT_VARIABLE programs)
  cmake_path(RELATIVE_PATH libraries BASE_DIRECTORY ${programs} OUTPUT_VARIABLE from_program)
  set_target_properties(${PROGRAM} PROPERTIES INSTALL_RPATH "$ORIGIN/${from_program}")
endfunction()

# framekeeper_test(NAME [OWN_PROCESSES] [X_DISPLAY] SOURCES ... [USES ...]): a GoogleTest program, registered under its
# name. With OWN_PROCESSES it starts itself in a process namespace of its own, however it is run. With X_DISPLAY it, or
# a program of ours that it starts, opens windows on a real X display.
function(framekeeper_test NAME)
  cmake_parse_arguments(TEST "OWN_PROCESSES;X_DISPLAY" "" "SOURCES;USES" ${ARGN})
  add_executable(${NAME} ${TEST_SOURCES})
  framekeeper_compile_in_batches(${NAME})
  target_link_libraries(${NAME} PRIVATE framekeeper_options ${TEST_USES} framekeeper_test_support GTest::gtest)
  # Optimising what is only tests takes more than half of the time that their build takes under the sanitizers.
  if(FRAMEKEEPER_SANITIZERS)
    target_compile_options(${NAME} PRIVATE -O0)
  endif()
  if(TEST_OWN_PROCESSES)
    target_link_libraries(${NAME} PRIVATE framekeeper_own_processes)
  endif()
  add_test(NAME ${NAME} COMMAND ${NAME})
  set(address_options detect_stack_use_after_return=1:strict_string_checks=1)
  # The library that reads the keyboard map of an X display copies parts of texts that do not end with a zero byte,
  # which strict checks take for a fault.
  if(TEST_X_DISPLAY)
    string(APPEND address_options :intercept_strndup=0)
  endif()
  set_tests_properties(${NAME} PROPERTIES
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;UBSAN_OPTIONS=print_stacktrace=1;ASAN_OPTIONS=${address_options};LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/support/lsan.supp:print_suppressions=0")
endfunction()

# cmake -D TABLE=types.tsv -D SOURCE=SystemTypes.cpp -P SystemTypes.cmake: checks the table of the system's types and
# writes the source that holds it. Fails for an empty table, a line without exactly six columns, an identifier that
# stands twice or is empty, and for a type that conforms to one that is not there.
set(column "([^\t]*)")
set(parted "([^\t]+)\t${column}\t${column}\t${column}\t${column}\t${column}")
file(STRINGS ${TABLE} lines ENCODING UTF-8)

set(rows "")
set(count 0)
set(parents)
foreach(line IN LISTS lines)
  if(line MATCHES "^#")
    continue()
  endif()
  if(line MATCHES "[\\\"\\\\;]")
    message(FATAL_ERROR "${TABLE}: a quote, backslash or semicolon: ${line}")
  endif()
  if(NOT line MATCHES "^${parted}$")
    message(FATAL_ERROR "${TABLE}: not six columns, or no identifier: ${line}")
  endif()
  if(isType_${CMAKE_MATCH_1})
    message(FATAL_ERROR "${TABLE}: ${CMAKE_MATCH_1} stands twice")
  endif()
  set(isType_${CMAKE_MATCH_1} TRUE)
  string(APPEND rows
    "    SystemType{\"${CMAKE_MATCH_1}\", \"${CMAKE_MATCH_2}\", \"${CMAKE_MATCH_3}\",\n"
    "               \"${CMAKE_MATCH_4}\", \"${CMAKE_MATCH_5}\", \"${CMAKE_MATCH_6}\"},\n")
  math(EXPR count "${count} + 1")
  string(REPLACE " " ";" words "${CMAKE_MATCH_2}")
  list(APPEND parents ${words})
endforeach()

if(count EQUAL 0)
  message(FATAL_ERROR "${TABLE}: no types")
endif()
list(REMOVE_DUPLICATES parents)
foreach(parent IN LISTS parents)
  if(NOT isType_${parent})
    message(FATAL_ERROR "${TABLE}: a type conforms to ${parent}, which is not there")
  endif()
endforeach()

file(WRITE ${SOURCE} "// Written from platform/launchservices/types.tsv by cmake/SystemTypes.cmake.
#include \"platform/launchservices/TypeTree.h\"
#include <array>

namespace mac {

namespace {

constexpr std::array<SystemType, ${count}> SystemTypesOfTable{{
${rows}}};

} // namespace

std::span<SystemType const> systemTypes() { return SystemTypesOfTable; }

} // namespace mac
")
message(STATUS "${count} types")

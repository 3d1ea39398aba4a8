# The message compiler. A source file of messages is in the format of gencat: "$" and a blank begin
# a comment, "$set" and a number stand once, and each message is a line `number "text"`, whose
# escapes are those that C shares with gencat: \n, \t, \\, \" and three octal digits. Anything else
# ends the build.
#
#   add_message_table(<target> <source> <table>)     adds the exported table that the source defines
#   add_message_catalog(<target> <catalog> <source>...)  makes <catalog>.cat of them, installed

set(message_compiler ${CMAKE_CURRENT_LIST_FILE})

function(add_message_table target source table)
  cmake_path(GET source STEM stem)
  set(input ${CMAKE_CURRENT_SOURCE_DIR}/${source})
  set(output ${CMAKE_CURRENT_BINARY_DIR}/${stem}_msg.cc)
  add_custom_command(
    OUTPUT ${output}
    COMMAND ${CMAKE_COMMAND} -DINPUT=${input} -DOUTPUT=${output} -DTABLE=${table} -P
            ${message_compiler}
    DEPENDS ${input} ${message_compiler}
    COMMENT "Compiling messages ${source}"
    VERBATIM)
  target_sources(${target} PRIVATE ${output})
endfunction()

# Where it is installed, the catalog is found with NLSPATH=<prefix>/share/nls/%L/%N.cat; a
# translation stands beside the folder C, in one named as its locale is. Without it, or where gencat
# is missing, the tables' own texts are used.
function(add_message_catalog target catalog)
  find_program(GENCAT gencat DOC "The message catalog compiler, of the C library's tools")
  if(NOT GENCAT)
    message(STATUS "No gencat: the message catalog ${catalog}.cat is not made")
    return()
  endif()
  list(TRANSFORM ARGN PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/ OUTPUT_VARIABLE inputs)
  set(output ${CMAKE_CURRENT_BINARY_DIR}/${catalog}.cat)
  # gencat merges into a file that is there, and would keep what its sources have lost.
  add_custom_command(
    OUTPUT ${output}
    COMMAND ${CMAKE_COMMAND} -E rm -f ${output}
    COMMAND ${GENCAT} ${output} ${inputs}
    DEPENDS ${inputs}
    COMMENT "Compiling message catalog ${catalog}.cat"
    VERBATIM)
  add_custom_target(${target} ALL DEPENDS ${output})
  set_target_properties(${target} PROPERTIES CATALOG ${output})
  if(MIROXGCL_INSTALL)
    install(FILES ${output} DESTINATION ${CMAKE_INSTALL_DATADIR}/nls/C COMPONENT runtime)
  endif()
endfunction()

# From here on: this file as the script that compiles INPUT to OUTPUT, the source of TABLE.
if(NOT CMAKE_SCRIPT_MODE_FILE)
  return()
endif()
cmake_minimum_required(VERSION 3.25)

# Line by line with its number: a list would split texts at their semicolons and brackets.
set(escape [[\\([nt\\"]|[0-7][0-7][0-7])]])
file(READ ${INPUT} rest)
set(line_number 0)
set(texts "")
set(numbers "")
set(separator "")
set(count 0)
while(NOT rest STREQUAL "")
  math(EXPR line_number "${line_number} + 1")
  string(FIND "${rest}" "\n" end)
  if(end EQUAL -1)
    message(FATAL_ERROR "${INPUT}:${line_number}: the last line has no end")
  endif()
  string(SUBSTRING "${rest}" 0 ${end} line)
  math(EXPR end "${end} + 1")
  string(SUBSTRING "${rest}" ${end} -1 rest)

  if(line MATCHES [[^\$set ([0-9]+)$]] AND NOT DEFINED set_number)
    set(set_number ${CMAKE_MATCH_1})
  elseif(line MATCHES "^([0-9]+) (\"([^\\\"]|${escape})*\")$" AND DEFINED set_number)
    string(APPEND texts "    ${CMAKE_MATCH_2},\n")
    string(APPEND numbers "${separator}${CMAKE_MATCH_1}")
    set(separator ", ")
    math(EXPR count "${count} + 1")
  elseif(NOT line MATCHES [[^(\$( .*)?|\$quote ")?$]])
    message(FATAL_ERROR "${INPUT}:${line_number}: cannot be understood: ${line}")
  endif()
endwhile()
if(count EQUAL 0)
  message(FATAL_ERROR "${INPUT}: no messages")
endif()

file(CONFIGURE OUTPUT ${OUTPUT} @ONLY CONTENT [[
// Made by the build from @INPUT@.
#include "miroxgcl/gcl_msg_tables.h"

static char const* const _msg_txts[] = {
@texts@};

static short const _msg_catnums[] = {@numbers@};

tbs_msg_table_t const @TABLE@ = {
    "gcl_libobj", "gcl", @set_number@, @count@, _msg_txts, _msg_catnums};
]])

# Writes the sounds of the table FILE as the array that engine/factory_sounds.h declares into the C++ source OUTPUT.
cmake_minimum_required(VERSION 3.25)
set(column_count 39)  # number, name, 37 values
set(number_count 58)

include(${CMAKE_CURRENT_LIST_DIR}/read_table.cmake)
read_table(${FILE} ${column_count} row)
math(EXPR last_row "${row_count} - 1")
foreach(index RANGE ${last_row})
  set(cells "${row_${index}}")
  list(POP_FRONT cells number name)
  if(NOT number MATCHES "^[0-9]+$" OR NOT number LESS number_count OR DEFINED text_${number})
    message(FATAL_ERROR "${FILE}: \"${number}\" is no new sound number below ${number_count}: ${name}")
  endif()
  foreach(cell IN LISTS cells)
    if(NOT cell MATCHES "^[-+]?[0-9]+(\\.[0-9]+)?$")
      message(FATAL_ERROR "${FILE}: \"${cell}\" is no number: ${name}")
    endif()
  endforeach()
  list(JOIN cells "," text_${number})
  set(name_${number} "${name}")
endforeach()

set(entries "")
math(EXPR last "${number_count} - 1")
foreach(number RANGE ${last})
  if(NOT DEFINED text_${number})
    message(FATAL_ERROR "${FILE}: sound ${number} is missing")
  endif()
  string(APPEND entries "    // ${number}: ${name_${number}}\n    \"${text_${number}}\",\n")
endforeach()
file(WRITE ${OUTPUT}
"// Generated from the table of the factory sounds; not to be edited.
#include \"engine/factory_sounds.h\"

const std::string_view factory_sound_texts[] = {
${entries}};
const int32_t factory_sound_text_count = ${number_count};
")

# Writes the sounds of the table FILE as the array that engine/factory_sounds.h declares into the C++ source OUTPUT.
set(column_count 39)  # number, name, 37 values
set(number_count 58)

file(STRINGS ${FILE} rows)
set(seen_header FALSE)
foreach(row IN LISTS rows)
  if(row MATCHES "^#" OR row MATCHES "^ *$")
    continue()
  endif()
  string(REPLACE "," ";" cells "${row}")
  list(LENGTH cells count)
  if(NOT count EQUAL column_count)
    message(FATAL_ERROR "${FILE}: a row has ${count} columns, not ${column_count}: ${row}")
  endif()
  list(TRANSFORM cells STRIP)
  list(POP_FRONT cells number name)
  if(NOT seen_header)
    set(seen_header TRUE)
    continue()
  endif()
  if(NOT number MATCHES "^[0-9]+$" OR NOT number LESS number_count OR DEFINED text_${number})
    message(FATAL_ERROR "${FILE}: \"${number}\" is no new sound number below ${number_count}: ${row}")
  endif()
  foreach(cell IN LISTS cells)
    if(NOT cell MATCHES "^[-+]?[0-9]+(\\.[0-9]+)?$")
      message(FATAL_ERROR "${FILE}: \"${cell}\" is no number: ${row}")
    endif()
  endforeach()
  list(JOIN cells "," text_${number})
  set(name_${number} "${name}")
endforeach()

set(entries "")
math(EXPR last "${number_count} - 1")
foreach(number RANGE ${last})
  if(DEFINED text_${number})
    string(APPEND entries "    // ${number}: ${name_${number}}\n    \"${text_${number}}\",\n")
  else()
    string(APPEND entries "    {},  // ${number}\n")
  endif()
endforeach()
file(WRITE ${OUTPUT}
"// Generated from the table of the factory sounds; not to be edited.
#include \"engine/factory_sounds.h\"

const std::string_view factory_sound_texts[] = {
${entries}};
const int32_t factory_sound_text_count = ${number_count};
")

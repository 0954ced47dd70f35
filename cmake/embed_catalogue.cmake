# Writes the catalogue SOUNDS and the names and sounds of the default bank PROGRAMS as the arrays that
# plugin/factory_catalogue.h declares into the C++ source OUTPUT.
cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/read_table.cmake)

read_table(${SOUNDS} 6 sound)
set(sounds "")
set(uuids "")
set(categories "")
set(category_ids "")
set(first 0)
math(EXPR last "${sound_count} - 1")
foreach(row RANGE ${last})
  list(POP_FRONT sound_${row} number category root_key name uuid category_id)
  if(NOT number EQUAL row)
    message(FATAL_ERROR "${SOUNDS}: sound ${number} is in the row of sound ${row}")
  endif()
  if(uuid IN_LIST uuids)
    message(FATAL_ERROR "${SOUNDS}: the uuid of sound ${number} is that of another sound: ${uuid}")
  endif()
  list(APPEND uuids ${uuid})
  if(NOT "${category_id}: ${category}" STREQUAL "${current}")
    if(category_id IN_LIST category_ids)
      message(FATAL_ERROR "${SOUNDS}: category ${category_id} has a second name or is interrupted before sound ${number}")
    endif()
    if(DEFINED current)
      string(APPEND categories "${row} - ${first}}},\n")
    endif()
    set(current "${category_id}: ${category}")
    set(first ${row})
    list(APPEND category_ids ${category_id})
    string(APPEND categories "    {${category_id}, \"${category}\", {sounds + ${row}, ")
  endif()
  string(APPEND sounds "    {${number}, ${root_key}, \"${name}\", \"${uuid}\"},\n")
endforeach()
string(APPEND categories "${sound_count} - ${first}}},\n")

read_table(${PROGRAMS} 6 program)
set(programs "")
math(EXPR last "${program_count} - 1")
foreach(row RANGE ${last})
  list(POP_FRONT program_${row} name uuid)
  if(NOT uuid IN_LIST uuids)
    message(FATAL_ERROR "${PROGRAMS}: the catalogue has no sound ${uuid}")
  endif()
  string(APPEND programs "    {\"${name}\", \"${uuid}\"},\n")
endforeach()

file(WRITE ${OUTPUT}
"// Generated from the tables of the sounds and of the default bank; not to be edited.
#include \"plugin/factory_catalogue.h\"

static constexpr factory_sound sounds[] = {
${sounds}};
static constexpr factory_category categories[] = {
${categories}};
static constexpr factory_program programs[] = {
${programs}};

std::span<const factory_category> factory_categories() { return categories; }
std::span<const factory_program> factory_programs() { return programs; }
")

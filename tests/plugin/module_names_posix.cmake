# Stops when the module MODULE exports more or less than NAMES, which commas separate: of VST 2.4 unless given, its entry
# by two names.
if(NOT NAMES)
  set(NAMES MAIN,VSTPluginMain)
endif()
string(REPLACE "," ";" expected ${NAMES})
execute_process(COMMAND ${OBJDUMP} -T ${MODULE} OUTPUT_VARIABLE table COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "[^\n]* g [^\n]*" exported "${table}")
list(TRANSFORM exported REPLACE ".* " "")
list(SORT exported)
if(NOT exported STREQUAL expected)
  message(FATAL_ERROR "Exported: ${exported}")
endif()

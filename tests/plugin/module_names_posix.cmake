# Stops when the module MODULE exports more or less than its entry, by two names.
execute_process(COMMAND ${OBJDUMP} -T ${MODULE} OUTPUT_VARIABLE table COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "[^\n]* g [^\n]*" exported "${table}")
list(TRANSFORM exported REPLACE ".* " "")
list(SORT exported)
if(NOT exported STREQUAL "MAIN;VSTPluginMain")
  message(FATAL_ERROR "Exported: ${exported}")
endif()

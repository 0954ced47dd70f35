# Writes the turtle files of an LV2 bundle.
#   PROGRAM  asks the bundle's module to write them into the folder where it runs
#   BUNDLE   folder of KesrelVocoder4ME.so
#   WORK     folder for what else is written: the presets hold what the effect saves, so it runs, and keeps a log
set(turtles ${BUNDLE}/manifest.ttl ${BUNDLE}/KesrelVocoder4ME.ttl ${BUNDLE}/presets.ttl)
file(REMOVE ${turtles})
execute_process(
  COMMAND ${CMAKE_COMMAND} -E env XDG_DATA_HOME=${WORK}/data ${PROGRAM} ./KesrelVocoder4ME.so
  WORKING_DIRECTORY ${BUNDLE}
  OUTPUT_FILE ${WORK}/describe_lv2.log
  ERROR_FILE ${WORK}/describe_lv2.log
  COMMAND_ERROR_IS_FATAL ANY)
foreach(turtle IN LISTS turtles)
  if(NOT EXISTS ${turtle})
    message(FATAL_ERROR "${turtle} was not written; see ${WORK}/describe_lv2.log")
  endif()
endforeach()

# The framework's own extension isn't among those that validators know.
set(extension http://kxstudio.sf.net/ns/lv2ext/programs)
file(APPEND ${BUNDLE}/KesrelVocoder4ME.ttl "
<${extension}#Interface>
    a lv2:ExtensionData .

<${extension}#UIInterface>
    a lv2:ExtensionData .
")

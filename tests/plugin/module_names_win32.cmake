# Shows the libraries that the module MODULE needs. Stops when one isn't of Windows itself, and when the module exports
# more or less than its entry, by two names.
execute_process(COMMAND ${OBJDUMP} -p ${MODULE} OUTPUT_VARIABLE headers COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "DLL Name: [^\n]*" needed "${headers}")
list(TRANSFORM needed REPLACE "DLL Name: " "")
list(JOIN needed " " shown)
message("Needs ${shown}")
list(TRANSFORM needed TOUPPER)
list(REMOVE_ITEM needed
  ADVAPI32.DLL GDI32.DLL GDIPLUS.DLL KERNEL32.DLL MSVCRT.DLL OLE32.DLL SHELL32.DLL SHLWAPI.DLL USER32.DLL)
if(needed)
  message(FATAL_ERROR "Not of Windows: ${needed}")
endif()
string(REGEX REPLACE ".*Ordinal/Name Pointer\\] Table" "" exported "${headers}")
string(REGEX MATCHALL "\n\t\\[ *[0-9]+\\] [^\n]*" exported "${exported}")
list(TRANSFORM exported REPLACE ".*\\] " "")
if(NOT exported STREQUAL "MAIN;VSTPluginMain")
  message(FATAL_ERROR "Exported: ${exported}")
endif()

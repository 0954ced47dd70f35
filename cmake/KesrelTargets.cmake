# Functions that make our targets, so that each folder's CMakeLists.txt says only what it holds and links.

# Differences between systems are kept in whole files, named after the system.
if(WIN32)
  set(platform win32)
else()
  set(platform posix)
endif()

# Flags of all our own code.
add_library(kesrel_flags INTERFACE)
target_compile_features(kesrel_flags INTERFACE cxx_std_20)
target_compile_options(kesrel_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror
  # A fused multiply-add rounds once where the code says twice; results must not depend on the compiler's choice.
  -ffp-contract=off
  # Nothing here reads errno after a root or a power; without it roots are one instruction, and in lanes too.
  -fno-math-errno
  # Nothing leaves the module but its entry point.
  -fvisibility=hidden)
if(KESREL_LIBRARY_ASSERTIONS)
  target_compile_definitions(kesrel_flags INTERFACE _GLIBCXX_ASSERTIONS)
endif()
if(KESREL_SANITIZERS)
  add_compile_options(-fsanitize=${KESREL_SANITIZERS} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${KESREL_SANITIZERS})
endif()
if(KESREL_FUZZERS)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

# kesrel_library(NAME [OBJECT] SOURCES ... LINKS ...)
#   A static library of one folder. LINKS is what its headers and sources may include. An OBJECT library goes whole into
#   the programs that link it: they choose an implementation of what a library below them calls.
function(kesrel_library name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "OBJECT" "" "SOURCES;LINKS")
  if(arg_OBJECT)
    add_library(${name} OBJECT ${arg_SOURCES})
  else()
    add_library(${name} STATIC ${arg_SOURCES})
  endif()
  set_target_properties(${name} PROPERTIES CXX_EXTENSIONS OFF POSITION_INDEPENDENT_CODE ON)
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR})
  target_link_libraries(${name} PUBLIC ${arg_LINKS} PRIVATE $<BUILD_INTERFACE:kesrel_flags>)
endfunction()

# kesrel_program(NAME SOURCES ... LINKS ...)
function(kesrel_program name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LINKS")
  add_executable(${name} ${arg_SOURCES})
  set_target_properties(${name} PROPERTIES CXX_EXTENSIONS OFF)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
  target_link_libraries(${name} PRIVATE ${arg_LINKS} kesrel_flags)
endfunction()

# kesrel_version_resource(TARGET FILE DESCRIPTION)
#   What the properties of the module FILE show on Windows.
function(kesrel_version_resource target file description)
  get_filename_component(module ${file} NAME_WLE)
  configure_file(${PROJECT_SOURCE_DIR}/plugin/version.rc.in ${target}.rc)
  target_sources(${target} PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc)
endfunction()

# kesrel_vst2_module(NAME DESCRIPTION SOURCES ... LINKS ...)
#   A module that VST 2.4 hosts load, without a prefix to its NAME. The first of the SOURCES defines the two names that
#   leave it. DESCRIPTION is for kesrel_version_resource.
function(kesrel_vst2_module module description)
  cmake_parse_arguments(PARSE_ARGV 2 arg "" "" "SOURCES;LINKS")
  add_library(${module} MODULE ${arg_SOURCES})
  set_target_properties(${module} PROPERTIES PREFIX "" CXX_EXTENSIONS OFF)
  list(GET arg_SOURCES 0 entry)
  set_source_files_properties(${entry} PROPERTIES COMPILE_OPTIONS -fvisibility=default)
  target_include_directories(${module} PRIVATE ${PROJECT_SOURCE_DIR})
  target_link_libraries(${module} PRIVATE ${arg_LINKS} kesrel_flags)
  set(shared ${PROJECT_SOURCE_DIR}/plugin)
  if(WIN32)
    target_sources(${module} PRIVATE ${shared}/dll_main_win32.cpp ${shared}/exports.def)
    kesrel_version_resource(${module} ${module}.dll "${description}")
    # Without names of what is local, as nobody's debugger on Windows reads them in this form.
    target_link_options(${module} PRIVATE $<$<CONFIG:Release>:-s>)
  else()
    set_target_properties(${module} PROPERTIES LINK_DEPENDS ${shared}/exports.map)
    target_link_options(${module} PRIVATE
      -Wl,--version-script=${shared}/exports.map
      -Wl,--no-undefined
      # The tables of a loaded module are not written to any more.
      -Wl,-z,relro,-z,now
      # Handlers of the process, for crashes or for X errors, may outlive the last effect, so their code stays too.
      -Wl,-z,nodelete)
  endif()
endfunction()

# kesrel_tests(NAME [LOCK RESOURCE] SOURCES ... LINKS ...)
#   A test program of one folder. A *_test.cpp in the folder of one of the SOURCES that isn't listed stops the
#   configuration, so that no test is left out by mistake. Tests that LOCK the same thing don't run at the same time.
function(kesrel_tests name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "LOCK" "SOURCES;LINKS")
  set(patterns ${arg_SOURCES})
  list(FILTER patterns EXCLUDE REGEX "^\\.\\./")  # the tests of other folders are theirs to list
  list(TRANSFORM patterns REPLACE "[^/]+$" "*_test.cpp")
  list(REMOVE_DUPLICATES patterns)
  file(GLOB present RELATIVE ${CMAKE_CURRENT_SOURCE_DIR} CONFIGURE_DEPENDS ${patterns})
  list(REMOVE_ITEM present ${arg_SOURCES})
  if(present)
    message(FATAL_ERROR "Tests that ${name} does not list: ${present}")
  endif()
  kesrel_program(${name} SOURCES ${arg_SOURCES} LINKS ${arg_LINKS} GTest::gtest_main)
  set(properties "")
  if(arg_LOCK)
    set(properties PROPERTIES RESOURCE_LOCK ${arg_LOCK})
  endif()
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 300 ${properties})
endfunction()

# kesrel_resources(NAME FUNCTION TYPE FILES ...)
#   Makes FILES resources of every program and module that links the library NAME: on Windows in its resource data, where
#   the system finds them, elsewhere as registered bytes. Each has its file's name. The library has the function that is
#   declared by `void FUNCTION();` and that makes them known.
function(kesrel_resources name function type)
  cmake_parse_arguments(PARSE_ARGV 3 arg "" "" "FILES")
  set(registration ${CMAKE_CURRENT_BINARY_DIR}/${function}.cpp)
  kesrel_library(${name} SOURCES ${registration} LINKS kesrel_support)
  set(notice "// Generated from a list of files; not to be edited.\n")
  set(declarations "")
  set(entries "")
  set(script "#pragma code_page(65001)\n")
  foreach(file IN LISTS arg_FILES)
    get_filename_component(resource ${file} NAME)
    string(MAKE_C_IDENTIFIER ${resource} symbol)
    if(WIN32)
      # The neutral language, each time: texts that follow one another would become one.
      string(APPEND script "LANGUAGE 0, 0\n\"${resource}\" ${type} \"${file}\"\n")
    else()
      kesrel_embed(${name} ${symbol} ${file})
      string(APPEND declarations "extern const signed char ${symbol}[];\nextern const unsigned int ${symbol}_size;\n")
      string(APPEND entries "  files::add_embedded_resource({\"${type}\", \"${resource}\", ${symbol}, ${symbol}_size});\n")
    endif()
  endforeach()
  if(WIN32)
    # In a library of its own: of a static one the linker would take only what is called.
    file(CONFIGURE OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/${function}.rc CONTENT "${notice}${script}")
    add_library(${name}_data OBJECT ${CMAKE_CURRENT_BINARY_DIR}/${function}.rc)
    set_source_files_properties(${CMAKE_CURRENT_BINARY_DIR}/${function}.rc PROPERTIES OBJECT_DEPENDS "${arg_FILES}")
    target_sources(${name} INTERFACE $<TARGET_OBJECTS:${name}_data>)
  endif()
  file(CONFIGURE OUTPUT ${registration} CONTENT
"${notice}#include \"support/files/embedded_resources.h\"

${declarations}
void ${function}();
void ${function}() {
${entries}}
")
endfunction()

# kesrel_embed(TARGET SYMBOL FILE)
#   Makes the bytes of FILE part of TARGET, as declared by
#     extern const signed char SYMBOL[]; extern const unsigned int SYMBOL_size;
function(kesrel_embed target symbol file)
  set(source ${CMAKE_CURRENT_BINARY_DIR}/${symbol}.cpp)
  add_custom_command(
    OUTPUT ${source}
    COMMAND ${CMAKE_COMMAND} -D FILE=${file} -D SYMBOL=${symbol} -D OUTPUT=${source}
            -P ${PROJECT_SOURCE_DIR}/cmake/embed_bytes.cmake
    DEPENDS ${file} ${PROJECT_SOURCE_DIR}/cmake/embed_bytes.cmake
    VERBATIM)
  target_sources(${target} PRIVATE ${source})
endfunction()

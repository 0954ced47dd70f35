# The LV2 bundle: the module, and the description that hosts read instead of loading it.
kesrel_dpf_module(kesrel_lv2 LV2 KesrelVocoder4ME.lv2/KesrelVocoder4ME.so lv2.map)

# The framework's program that asks a module for its description.
enable_language(C)
add_executable(kesrel_lv2_describe ${DPF_FOLDER}/utils/lv2-ttl-generator/lv2_ttl_generator.c)
target_compile_options(kesrel_lv2_describe PRIVATE -w)
target_link_libraries(kesrel_lv2_describe PRIVATE ${CMAKE_DL_LIBS})
set_target_properties(kesrel_lv2_describe PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR})

set(lv2_bundle ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/KesrelVocoder4ME.lv2)
set(lv2_description ${lv2_bundle}/manifest.ttl ${lv2_bundle}/KesrelVocoder4ME.ttl ${lv2_bundle}/presets.ttl)
add_custom_command(
  OUTPUT ${lv2_description}
  COMMAND ${CMAKE_COMMAND} -D PROGRAM=$<TARGET_FILE:kesrel_lv2_describe> -D BUNDLE=${lv2_bundle}
          -D WORK=${CMAKE_CURRENT_BINARY_DIR} -P ${CMAKE_CURRENT_SOURCE_DIR}/describe_lv2.cmake
  DEPENDS kesrel_lv2 kesrel_lv2_describe describe_lv2.cmake
  VERBATIM)
add_custom_target(kesrel_lv2_description ALL DEPENDS ${lv2_description})

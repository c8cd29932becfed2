# converters_layer(TARGET LIBRARY...): TARGET, an object library, is a layer of libconverters above
# these libraries. Its objects, compiled once, go into the shared library, into converters_internal,
# and into the Python module.
function(converters_layer target)
  target_include_directories(${target} PUBLIC ${PROJECT_SOURCE_DIR})
  target_link_libraries(${target} PUBLIC ${ARGN} PRIVATE converters_compiler_settings)
endfunction()

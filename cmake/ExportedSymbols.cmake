# converters_export_only(TARGET MAP): limits what the shared library TARGET exports to what the
# linker version script MAP lists.
function(converters_export_only target map)
  target_link_options(${target} PRIVATE "LINKER:--version-script=${map}")
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "${map}")
endfunction()

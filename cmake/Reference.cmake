# The API reference: `cmake --build build/release --target reference` makes it in reference/html.
configure_file(${PROJECT_SOURCE_DIR}/docs/Doxyfile.in ${PROJECT_BINARY_DIR}/Doxyfile @ONLY)

find_program(DOXYGEN_EXECUTABLE doxygen)
mark_as_advanced(DOXYGEN_EXECUTABLE)
if(PROJECT_IS_TOP_LEVEL AND DOXYGEN_EXECUTABLE)
  add_custom_target(
    reference
    COMMAND ${DOXYGEN_EXECUTABLE} ${PROJECT_BINARY_DIR}/Doxyfile
    COMMENT "The API reference: ${PROJECT_BINARY_DIR}/reference/html/index.html"
    VERBATIM)
endif()

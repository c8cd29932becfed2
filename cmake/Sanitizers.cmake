# CONVERTERS_SANITIZE: a list for -fsanitize=, for example "address,undefined".
set(CONVERTERS_SANITIZE "" CACHE STRING "Sanitizers to build with, separated by commas")

if(CONVERTERS_SANITIZE)
  add_compile_options(-fsanitize=${CONVERTERS_SANITIZE} -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${CONVERTERS_SANITIZE})
  if(CONVERTERS_SANITIZE MATCHES "integer")
    add_compile_options("-fsanitize-ignorelist=${CMAKE_CURRENT_LIST_DIR}/integer-exceptions.txt")
  endif()
endif()

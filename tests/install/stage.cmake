# Installs the build folder BUILD into the folder STAGE, emptied first.
file(REMOVE_RECURSE "${STAGE}")
execute_process(COMMAND "${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${STAGE}"
                COMMAND_ERROR_IS_FATAL ANY)

# cmake -DNM=… -DLIBRARY=… -DEXPECTED=NAME -P CheckExports.cmake
# Fails unless NAME is the only symbol that LIBRARY exports.

execute_process(COMMAND ${NM} -D --defined-only --format=posix ${LIBRARY}
    OUTPUT_VARIABLE listing OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
string(REGEX REPLACE " [^\n]*" "" names "${listing}")
if(NOT names STREQUAL EXPECTED)
    message(FATAL_ERROR "${LIBRARY} should export ${EXPECTED} alone, but exports:\n${names}")
endif()

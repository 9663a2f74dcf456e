# cmake "-DWIDL=widl;argument;..." -DOUTPUT=file -P RunWidl.cmake: runs widl and fails when it
# warns, since some of its warnings stand for damaged output ("duplicate uuid" in a type library).
execute_process(COMMAND ${WIDL} OUTPUT_VARIABLE said ERROR_VARIABLE said RESULT_VARIABLE result)
if(NOT result EQUAL 0 OR said MATCHES "warning")
    file(REMOVE ${OUTPUT})
    message(FATAL_ERROR "widl failed or warned (${result}):\n${said}")
endif()

# cmake "-DWIDL=widl;argument;..." -DFOLDER=folder -DOUTPUT=file -P RunWidl.cmake: runs widl in that
# folder and fails when it warns, since some of its warnings stand for damaged output ("duplicate
# uuid" in a type library).
execute_process(COMMAND ${WIDL} WORKING_DIRECTORY ${FOLDER}
                OUTPUT_VARIABLE said ERROR_VARIABLE said RESULT_VARIABLE result)
if(NOT result EQUAL 0 OR said MATCHES "warning")
    file(REMOVE ${OUTPUT})
    message(FATAL_ERROR "widl failed or warned (${result}):\n${said}")
endif()

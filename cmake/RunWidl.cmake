# cmake -P RunWidl.cmake -- widl [argument...] output input.idl: runs widl and fails when it warns,
# since some of its warnings stand for damaged output ("duplicate uuid" in a type library).
set(command)
foreach(index RANGE 4 ${CMAKE_ARGC})
    if(index LESS CMAKE_ARGC)
        list(APPEND command ${CMAKE_ARGV${index}})
    endif()
endforeach()
list(GET command -2 output)

execute_process(COMMAND ${command} OUTPUT_VARIABLE said ERROR_VARIABLE said RESULT_VARIABLE result)
if(NOT result EQUAL 0 OR said MATCHES "warning")
    file(REMOVE ${output})
    message(FATAL_ERROR "widl failed or warned (${result}):\n${said}")
endif()

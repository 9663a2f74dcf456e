# Everything that is made out of server/Quorvane.idl: the C++ header and the identifiers here,
# the type library, proxies and late-binding data in the folders that use them.
find_program(WIDL x86_64-w64-mingw32-widl REQUIRED)
set(QUORVANE_IDL ${CMAKE_SOURCE_DIR}/server/Quorvane.idl)
set(QUORVANE_GENERATED ${CMAKE_BINARY_DIR}/generated)
set(WIDL_FLAGS --win64 -I /usr/include/wine/wine/windows
               -L /usr/lib/x86_64-linux-gnu/wine/x86_64-windows)
file(MAKE_DIRECTORY ${QUORVANE_GENERATED})

# quorvane_widl(output option...): makes ${QUORVANE_GENERATED}/output; a warning is an error. It runs
# beside the definition, whose path it writes into what it makes.
function(quorvane_widl output)
    set(path ${QUORVANE_GENERATED}/${output})
    get_filename_component(folder ${QUORVANE_IDL} DIRECTORY)
    get_filename_component(name ${QUORVANE_IDL} NAME)
    set(command ${WIDL} ${WIDL_FLAGS} ${ARGN} ${path} ${name})
    add_custom_command(
        OUTPUT ${path}
        COMMAND ${CMAKE_COMMAND} "-DWIDL=${command}" -DFOLDER=${folder} -DOUTPUT=${path}
                -P ${CMAKE_SOURCE_DIR}/cmake/RunWidl.cmake
        DEPENDS ${QUORVANE_IDL} ${CMAKE_SOURCE_DIR}/cmake/RunWidl.cmake VERBATIM)
endfunction()

quorvane_widl(Quorvane.h -h -H)
quorvane_widl(Quorvane_i.c -u -U)
add_custom_target(quorvane_idl DEPENDS ${QUORVANE_GENERATED}/Quorvane.h)

# The identifiers (IID_ISmtpMail, CLSID_SmtpMail ...) and the include path of the header.
add_library(quorvane_identifiers STATIC ${QUORVANE_GENERATED}/Quorvane_i.c
                                        ${QUORVANE_GENERATED}/Quorvane.h)
target_include_directories(quorvane_identifiers SYSTEM PUBLIC ${QUORVANE_GENERATED})
if(NOT WIN32)
    target_include_directories(quorvane_identifiers PUBLIC ${CMAKE_SOURCE_DIR}/platform/include)
endif()

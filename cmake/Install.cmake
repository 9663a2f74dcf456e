# What `cmake --install` puts where. Nothing of it says where it was built or is installed, so that
# the folder can be moved, and packages can be made of any finished build. The folders are texts: one
# of the type PATH that comes from the command line would be taken as one of the build tree's.

# What CMake chose for a test library, in build trees from before this file, doesn't count.
function(choose folder place words)
    get_property(was CACHE ${folder} PROPERTY HELPSTRING)
    if(was MATCHES "\\)$")  # the text that GNUInstallDirs gives to a default
        unset(${folder} CACHE)
    endif()
    set(${folder} ${place} CACHE STRING ${words})
endfunction()

if(WIN32)
    # One folder with everything, the library and the command at its top.
    choose(CMAKE_INSTALL_BINDIR . "Programs")
    choose(CMAKE_INSTALL_DOCDIR . "Texts")
elseif(CMAKE_LIBRARY_ARCHITECTURE AND EXISTS /etc/debian_version)
    # Below every prefix, where CMake would do so below /usr alone.
    choose(CMAKE_INSTALL_LIBDIR lib/${CMAKE_LIBRARY_ARCHITECTURE} "Libraries")
endif()
string(TOLOWER ${PROJECT_NAME} package)
choose(CMAKE_INSTALL_DOCDIR share/doc/${package} "Texts")
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)
set(headers ${CMAKE_INSTALL_INCLUDEDIR}/${package})
if(WIN32)
    set(headers ${CMAKE_INSTALL_INCLUDEDIR})
endif()

# Library, command, and Quorvane::quorvane for find_package(), which needs no command.
set_target_properties(quorvane_server PROPERTIES EXPORT_NAME quorvane)
target_include_directories(quorvane_server INTERFACE $<INSTALL_INTERFACE:${headers}>)
target_compile_features(quorvane_server INTERFACE cxx_std_20)
install(TARGETS quorvane_server EXPORT Quorvane)
install(TARGETS quorvane-send)
set(cmake_folder ${CMAKE_INSTALL_LIBDIR}/cmake/Quorvane)
set(version_file ${CMAKE_BINARY_DIR}/QuorvaneConfigVersion.cmake)
write_basic_package_version_file(${version_file} COMPATIBILITY SameMajorVersion)
install(EXPORT Quorvane NAMESPACE Quorvane:: FILE QuorvaneConfig.cmake DESTINATION ${cmake_folder})
install(FILES ${version_file} DESTINATION ${cmake_folder})

# Headers.
install(DIRECTORY ${CMAKE_SOURCE_DIR}/include/ DESTINATION ${headers} FILES_MATCHING PATTERN *.hpp)
install(FILES ${QUORVANE_GENERATED}/Quorvane.h ${QUORVANE_IDL} DESTINATION ${headers})
if(WIN32)
    target_link_libraries(quorvane_server INTERFACE
        $<INSTALL_INTERFACE:ole32> $<INSTALL_INTERFACE:oleaut32> $<INSTALL_INTERFACE:uuid>)
    install(FILES ${QUORVANE_GENERATED}/Quorvane_i.c DESTINATION ${headers})
else()
    # The Windows SDK's, as far as the interfaces and their users need them.
    set(sdk guiddef.h libloaderapi.h oaidl.h objbase.h objidl.h ocidl.h ole2.h oleauto.h olectl.h
            oleidl.h rpc.h rpcndr.h unknwn.h winbase.h windef.h windows.h winerror.h wingdi.h winnls.h
            winreg.h winuser.h wtypes.h)
    list(TRANSFORM sdk PREPEND ${CMAKE_SOURCE_DIR}/platform/include/)
    install(FILES ${sdk} DESTINATION ${headers})

    file(RELATIVE_PATH libraries /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
    set_target_properties(quorvane-send PROPERTIES INSTALL_RPATH $ORIGIN/${libraries})
    file(RELATIVE_PATH prefix /./${CMAKE_INSTALL_LIBDIR}/pkgconfig /.)
    string(REGEX REPLACE "/$" "" prefix ${prefix})
    configure_file(${CMAKE_CURRENT_LIST_DIR}/quorvane.pc.in ${CMAKE_BINARY_DIR}/quorvane.pc @ONLY)
    install(FILES ${CMAKE_BINARY_DIR}/quorvane.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

    set(cli ${CMAKE_SOURCE_DIR}/cli)
    install(FILES ${cli}/quorvane-send.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
    install(FILES ${cli}/completion/quorvane-send.bash RENAME quorvane-send
            DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
    install(FILES ${cli}/completion/_quorvane-send
            DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
endif()

# Texts and examples, in the places that their links to each other expect.
install(FILES ${CMAKE_SOURCE_DIR}/CHANGELOG.md ${CMAKE_SOURCE_DIR}/SECURITY.md
        DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES ${CMAKE_SOURCE_DIR}/LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} RENAME LICENSE.txt)
install(DIRECTORY ${CMAKE_SOURCE_DIR}/docs DESTINATION ${CMAKE_INSTALL_DOCDIR}
        PATTERN *.dot EXCLUDE)
install(DIRECTORY ${CMAKE_SOURCE_DIR}/examples DESTINATION ${CMAKE_INSTALL_DOCDIR}
        PATTERN .gitattributes EXCLUDE PATTERN make_sample.py EXCLUDE
        PATTERN __pycache__ EXCLUDE)

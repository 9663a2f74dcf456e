# Packages that the build takes from the system. The header-only ones are linked into a folder of
# the build tree each, so that the Windows compiler never sees /usr/include itself.
function(quorvane_header_package target folder)
    find_path(${target}_ROOT ${folder} PATHS /usr/include NO_DEFAULT_PATH
              NO_CMAKE_FIND_ROOT_PATH REQUIRED)
    set(root ${CMAKE_BINARY_DIR}/packages/${target})
    file(MAKE_DIRECTORY ${root})
    if(NOT EXISTS ${root}/${folder})
        file(CREATE_LINK ${${target}_ROOT}/${folder} ${root}/${folder} SYMBOLIC)
    endif()
    add_library(${target} INTERFACE)
    target_include_directories(${target} SYSTEM INTERFACE ${root})
endfunction()

quorvane_header_package(fmt_headers fmt)
target_compile_definitions(fmt_headers INTERFACE FMT_HEADER_ONLY)
quorvane_header_package(cli11_headers CLI)
quorvane_header_package(json_headers nlohmann)

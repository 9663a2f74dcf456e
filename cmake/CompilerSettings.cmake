# Language level, warnings, visibility and sanitizers of every target.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG")
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(THREADS_PREFER_PTHREAD_FLAG ON)
find_package(Threads REQUIRED)

# What every target of our own is compiled with; foreign and generated code leaves it out.
add_library(quorvane_settings INTERFACE)
target_include_directories(quorvane_settings INTERFACE ${CMAKE_SOURCE_DIR})
target_compile_options(quorvane_settings INTERFACE
    -Wall -Wextra -Wpedantic -Werror
    # g++ 12 sees overlapping copies in the standard library's own string operations.
    $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
if(WIN32)
    # UNICODE is left alone: the code names the W functions itself. 0x0A00 is Windows 10.
    target_compile_definitions(quorvane_settings INTERFACE
        _WIN32_WINNT=0x0A00 SECURITY_WIN32 WIN32_LEAN_AND_MEAN NOMINMAX)
    target_link_libraries(quorvane_settings INTERFACE gdi32 ws2_32 dnsapi secur32 ole32 oleaut32 uuid)
else()
    target_include_directories(quorvane_settings INTERFACE ${CMAKE_SOURCE_DIR}/platform/include)
    target_link_libraries(quorvane_settings INTERFACE Threads::Threads)
endif()

if(NOT QUORVANE_SANITIZE)
    # What a fault can be used for is kept small: stack guards, checked copies, branch targets, and
    # tables that are read-only once the program has been linked.
    add_compile_options(-fstack-protector-strong)
    add_link_options(-fstack-protector-strong)
    if(CMAKE_BUILD_TYPE MATCHES "^Rel")
        add_compile_options(-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
    endif()
    if(NOT WIN32)
        add_compile_options(-fcf-protection=full -fstack-clash-protection)
        add_link_options(-Wl,-z,relro,-z,now,-z,noexecstack)
    endif()
endif()

if(QUORVANE_SANITIZE)
    # Callers of COM interfaces may pass any integer as an enumeration and objects that no C++
    # compiler made, so those two checks have nothing to hold on to.
    add_compile_options(-fsanitize=${QUORVANE_SANITIZE} -fno-omit-frame-pointer
                        -fno-sanitize-recover=all -fno-sanitize=enum,vptr)
    add_link_options(-fsanitize=${QUORVANE_SANITIZE})
endif()

# quorvane_folder(name [dependency...]): the static library of one folder, made of its sources.
function(quorvane_folder name)
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp
         ${CMAKE_CURRENT_SOURCE_DIR}/*.h)
    add_library(quorvane_${name} STATIC ${sources})
    set_target_properties(quorvane_${name} PROPERTIES LINKER_LANGUAGE CXX)
    target_link_libraries(quorvane_${name} PUBLIC quorvane_settings ${ARGN})
endfunction()

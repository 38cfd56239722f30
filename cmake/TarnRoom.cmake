# What every target of the project is compiled with.
add_library(tarn_options INTERFACE)
target_compile_options(tarn_options INTERFACE -Wall -Wextra -Wpedantic -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # GCC 12 sees overlaps that cannot be when std::string is inlined (its bug 105651).
    target_compile_options(tarn_options INTERFACE -Wno-restrict)
endif()
if(TARN_SANITIZE)
    target_compile_options(tarn_options INTERFACE -fsanitize=address,undefined
                                                  -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(tarn_options INTERFACE -fsanitize=address,undefined)
endif()
if(TARN_FUZZ)
    # The rooms report their branches to the fuzzer, too: without that it would search blindly.
    target_compile_options(tarn_options INTERFACE -fsanitize=fuzzer-no-link,address,undefined
                                                  -fno-sanitize-recover=all)
    target_link_options(tarn_options INTERFACE -fsanitize=address,undefined)
endif()

# tarn_room(NAME [DEPENDS room...]): one folder, one library. A room sees its own folder and those
# of the rooms it depends on, so that an include against the arrows does not compile.
function(tarn_room name)
    cmake_parse_arguments(ROOM "" "" "DEPENDS" ${ARGN})
    file(GLOB_RECURSE sources CONFIGURE_DEPENDS *.cpp)
    list(FILTER sources EXCLUDE REGEX "/os/win32/")
    add_library(tarn_${name} STATIC ${sources})
    add_library(tarn::${name} ALIAS tarn_${name})
    target_include_directories(tarn_${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
    target_link_libraries(tarn_${name} PRIVATE tarn_options)
    foreach(dependency IN LISTS ROOM_DEPENDS)
        target_link_libraries(tarn_${name} PUBLIC tarn::${dependency})
    endforeach()
endfunction()

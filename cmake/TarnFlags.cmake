# One place for compiler flags and Qt definitions; every target of ours links tarn_flags.
add_library(tarn_flags INTERFACE)
target_compile_features(tarn_flags INTERFACE cxx_std_17)
target_compile_definitions(tarn_flags INTERFACE
    QT_NO_CAST_FROM_ASCII
    QT_NO_CAST_TO_ASCII
    QT_NO_URL_CAST_FROM_STRING
    QT_STRICT_ITERATORS
    QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
    QT_DEPRECATED_WARNINGS
)
if(MSVC)
    target_compile_options(tarn_flags INTERFACE /W4 /utf-8 $<$<BOOL:${TARN_WERROR}>:/WX>)
else()
    target_compile_options(tarn_flags INTERFACE
        -Wall -Wextra -Wpedantic $<$<BOOL:${TARN_WERROR}>:-Werror>)
endif()
if(TARN_SANITIZE)
    target_compile_options(tarn_flags INTERFACE
        -fsanitize=${TARN_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    target_link_options(tarn_flags INTERFACE -fsanitize=${TARN_SANITIZE})
endif()

function(tarn_plugin name file)
    add_library(${name} MODULE ${ARGN})
    set_target_properties(${name} PROPERTIES
        PREFIX "" OUTPUT_NAME ${file}
        LIBRARY_OUTPUT_DIRECTORY ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/plugins)
    # What it takes from rooms below are copies of its own, which nobody mistakes for the program's.
    if(UNIX AND NOT APPLE AND NOT TARN_SHARED_ROOMS)
        target_link_options(${name} PRIVATE -Wl,--exclude-libs,ALL)
    endif()
    if(NOT TARN_SANITIZE)
        target_link_options(${name} PRIVATE $<$<NOT:$<CXX_COMPILER_ID:MSVC>>:-Wl,-z,defs>)
    endif()
endfunction()

# tarn_room(<name> [PLUGIN file] SOURCES ... LINK ...): one folder of src/ as a library, seen from src/ as root. It
# may use what stands in LINK and what that links in turn, and nothing else: with TARN_SHARED_ROOMS
# every room is a shared library that has to find all of its symbols there. A PLUGIN is a library that
# the program loads from the folder plugins beside itself, when it needs it; none links it.
function(tarn_room name)
    cmake_parse_arguments(ARG "" "PLUGIN" "SOURCES;LINK" ${ARGN})
    if(ARG_PLUGIN)
        tarn_plugin(${name} ${ARG_PLUGIN} ${ARG_SOURCES})
    elseif(TARN_SHARED_ROOMS)
        add_library(${name} SHARED ${ARG_SOURCES})
        # A sanitizer's own symbols come with the program, not with a library.
        if(NOT TARN_SANITIZE)
            target_link_options(${name} PRIVATE -Wl,-z,defs)
        endif()
    else()
        add_library(${name} STATIC ${ARG_SOURCES})
    endif()
    target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR}/src)
    target_link_libraries(${name} PUBLIC tarn_flags ${ARG_LINK})
    # The headers made from a room's forms are part of what it offers.
    if(ARG_SOURCES MATCHES "\\.ui")
        target_include_directories(${name} PUBLIC ${CMAKE_CURRENT_BINARY_DIR}/${name}_autogen/include)
    endif()
endfunction()

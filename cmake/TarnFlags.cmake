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

# tarn_library(<name> SOURCES ... LINK ...): one folder's static library, seen from src/ as root.
function(tarn_library name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
    add_library(${name} STATIC ${ARG_SOURCES})
    target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR}/src)
    target_link_libraries(${name} PUBLIC tarn_flags ${ARG_LINK})
endfunction()

# One place for compiler flags and Qt definitions; every target of ours links tarn_flags.
add_library(tarn_flags INTERFACE)
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
        -Wall -Wextra -Wpedantic $<$<BOOL:${TARN_WERROR}>:-Werror>
        # Qt's QSKIP leaves the dots of its macro empty, as newer C++ allows.
        $<$<CXX_COMPILER_ID:Clang>:-Wno-gnu-zero-variadic-macro-arguments>)
endif()
# A room compiled in one piece is to the compiler a source that includes the others, and what only
# one of them uses looks like a header's.
if(CMAKE_UNITY_BUILD AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(tarn_flags INTERFACE -Wno-subobject-linkage)
endif()
if(TARN_SANITIZE)
    set(sanitizer -fsanitize=${TARN_SANITIZE})
    target_compile_options(tarn_flags INTERFACE
        ${sanitizer} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    # A room that is a shared library has to find the sanitizer's functions too; Clang would keep
    # them in the program.
    if(TARN_SHARED_ROOMS AND CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
        execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-runtime-dir
            OUTPUT_VARIABLE runtime_dir OUTPUT_STRIP_TRAILING_WHITESPACE)
        list(APPEND sanitizer -shared-libsan -Wl,-rpath,${runtime_dir})
    endif()
    target_link_options(tarn_flags INTERFACE ${sanitizer})
    # What GCC says by itself.
    if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang" AND TARN_SANITIZE MATCHES "address")
        target_compile_definitions(tarn_flags INTERFACE __SANITIZE_ADDRESS__)
    endif()
endif()

# What the program that users get defends itself with: it reads what strangers on the network send.
# The rest of it, position independence, is on everywhere, because Qt asks for it.
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
include(CheckPIESupported)
check_pie_supported(LANGUAGES CXX)
set(hardened $<CONFIG:Release,RelWithDebInfo,MinSizeRel>)
if(NOT MSVC)
    target_compile_options(tarn_flags INTERFACE
        $<${hardened}:-fstack-protector-strong>
        # First undefined, because some compilers come with a level of their own.
        $<${hardened}:-U_FORTIFY_SOURCE>
        $<${hardened}:-D_FORTIFY_SOURCE=2>)
    target_compile_definitions(tarn_flags INTERFACE $<${hardened}:_GLIBCXX_ASSERTIONS>)
endif()
if(MINGW)
    # What the stack protector calls is a library of its own here; in the program, not beside it.
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=libssp.a
        OUTPUT_VARIABLE guard_library OUTPUT_STRIP_TRAILING_WHITESPACE)
    target_link_libraries(tarn_flags INTERFACE ${guard_library})
endif()
if(UNIX)
    target_link_options(tarn_flags INTERFACE -Wl,-z,relro -Wl,-z,now)
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
    if(UNIX AND NOT APPLE AND (TARN_SHARED_ROOMS OR NOT TARN_SANITIZE))
        target_link_options(${name} PRIVATE -Wl,-z,defs)
    endif()
endfunction()

# tarn_room(<name> [PLUGIN file] SOURCES ... LINK ...): one folder of src/ as a library, seen from
# src/ as root. It may use what stands in LINK and what that links in turn, and nothing else: with TARN_SHARED_ROOMS
# every room is a shared library that has to find all of its symbols there. A PLUGIN is a library that
# the program loads from the folder plugins beside itself, when it needs it; none links it.
function(tarn_room name)
    cmake_parse_arguments(ARG "" "PLUGIN" "SOURCES;LINK" ${ARGN})
    if(ARG_PLUGIN)
        tarn_plugin(${name} ${ARG_PLUGIN} ${ARG_SOURCES})
    elseif(TARN_SHARED_ROOMS)
        add_library(${name} SHARED ${ARG_SOURCES})
        target_link_options(${name} PRIVATE -Wl,-z,defs)
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

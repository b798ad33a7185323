# What Windows wants to know of a program, and what has to lie beside it.

string(REPLACE "." "," TARN_RC_VERSION ${PROJECT_VERSION})
set(tarn_windows ${CMAKE_SOURCE_DIR}/packaging/windows)
set(tarn_manifest ${tarn_windows}/program.manifest)

# Files that the program loads and that no target here knows: the decoders' libraries, the compiler's
# own, curl.exe. scripts/build-windows fills it from the kit.
set(TARN_RUNTIME_FILES "" CACHE STRING "Files that belong beside the program, besides those of Qt")

# tarn_describe(<target> <what it is>): icon, version and manifest.
function(tarn_describe target what)
    set(TARN_RC_NAME ${target})
    set(TARN_RC_WHAT ${what})
    if(MSVC)
        target_sources(${target} PRIVATE ${tarn_manifest}) # merged with the linker's own
    else()
        set(TARN_RC_MANIFEST "1 24 \"${tarn_manifest}\"")
    endif()
    configure_file(${tarn_windows}/tarn-hub.rc.in ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc @ONLY)
    target_sources(${target} PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc)
    set_property(SOURCE ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc
        APPEND PROPERTY OBJECT_DEPENDS ${tarn_manifest})
endfunction()

get_target_property(tarn_qmake Qt5::qmake IMPORTED_LOCATION)
get_filename_component(tarn_qt_plugins ${tarn_qmake}/../../plugins ABSOLUTE)
set(tarn_libraries ${TARN_RUNTIME_FILES})
foreach(part Core Gui Network Svg WebSockets Widgets)
    list(APPEND tarn_libraries $<TARGET_FILE:Qt5::${part}>)
endforeach()
set(tarn_plugins platforms/qwindows styles/qwindowsvistastyle imageformats/qsvg imageformats/qico
    iconengines/qsvgicon)
if(MSVC)
    set(tarn_debug_suffix $<$<CONFIG:Debug>:d>)
endif()

# tarn_runtime: the build's bin/ becomes a folder to run from. The plugins go where Qt looks beside
# a program.
add_custom_target(tarn_runtime ALL
    COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}
    COMMAND ${CMAKE_COMMAND} -E copy_if_different ${tarn_libraries}
        ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}
    VERBATIM COMMAND_EXPAND_LISTS)
install(FILES ${tarn_libraries} DESTINATION . COMPONENT program)
foreach(plugin IN LISTS tarn_plugins)
    get_filename_component(folder ${plugin} DIRECTORY)
    set(file ${tarn_qt_plugins}/${plugin}${tarn_debug_suffix}.dll)
    add_custom_command(TARGET tarn_runtime POST_BUILD
        COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${folder}
        COMMAND ${CMAKE_COMMAND} -E copy_if_different ${file}
            ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${folder}
        VERBATIM)
    install(FILES ${file} DESTINATION ${folder} COMPONENT program)
endforeach()

tarn_describe(tarn-hub "Tarn Hub")
tarn_describe(tarn-upgrade "Tarn Hub Upgrade")
tarn_describe(tarn-setup-helper "Tarn Hub Setup")
# The name that the upgrade is told to start again.
install(PROGRAMS $<TARGET_FILE:tarn-hub> DESTINATION . RENAME "Tarn Hub.exe" COMPONENT program)
install(TARGETS tarn-upgrade RUNTIME DESTINATION . COMPONENT program)
install(TARGETS tarn-fping RUNTIME DESTINATION fping/fping_x64 COMPONENT program)
install(FILES ${CMAKE_SOURCE_DIR}/LICENSE DESTINATION licences RENAME tarn-hub.txt
    COMPONENT program)

# Where everything goes when it is installed, and the Debian package of that.
include(GNUInstallDirs)

# The program looks for its library of the browser engine beside itself, so both have a folder of
# their own, and the name that is typed is a link there.
set(tarn_private ${CMAKE_INSTALL_LIBDIR}/tarn-hub)
install(TARGETS tarn-hub RUNTIME DESTINATION ${tarn_private} COMPONENT program)
if(TARGET tarn_web_engine)
    install(TARGETS tarn_web_engine LIBRARY DESTINATION ${tarn_private}/plugins COMPONENT program)
endif()
file(RELATIVE_PATH tarn_link /${CMAKE_INSTALL_BINDIR} /${tarn_private}/tarn-hub)
install(CODE "
    set(bin \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}\")
    file(MAKE_DIRECTORY \"\${bin}\")
    file(CREATE_LINK ${tarn_link} \"\${bin}/tarn-hub\" SYMBOLIC)" COMPONENT program)

set(tarn_linux ${CMAKE_SOURCE_DIR}/packaging/linux)
install(FILES ${tarn_linux}/tarn-hub.desktop
    DESTINATION ${CMAKE_INSTALL_DATADIR}/applications COMPONENT program)
install(FILES ${tarn_linux}/example.tarn_hub.TarnHub.metainfo.xml
    DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo COMPONENT program)
install(FILES ${CMAKE_SOURCE_DIR}/resources/icon/TH.svg RENAME tarn-hub.svg
    DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps COMPONENT program)
foreach(size 48 64 128 256)
    install(FILES ${tarn_linux}/icons/${size}.png RENAME tarn-hub.png
        DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps COMPONENT program)
endforeach()
install(FILES ${tarn_linux}/copyright DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT program)

# Packed as Debian wants it: without a name and a time inside.
find_program(TARN_GZIP gzip REQUIRED)
mark_as_advanced(TARN_GZIP)
foreach(text tarn-hub.1 changelog)
    set(packed ${CMAKE_BINARY_DIR}/packaging/${text}.gz)
    add_custom_command(OUTPUT ${packed}
        COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/packaging
        COMMAND sh -c "exec \"$0\" -9nc \"$1\" > \"$2\"" ${TARN_GZIP} ${tarn_linux}/${text} ${packed}
        DEPENDS ${tarn_linux}/${text} VERBATIM)
    list(APPEND tarn_packed ${packed})
endforeach()
add_custom_target(tarn_packed_texts ALL DEPENDS ${tarn_packed})
install(FILES ${CMAKE_BINARY_DIR}/packaging/tarn-hub.1.gz
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT program)
install(FILES ${CMAKE_BINARY_DIR}/packaging/changelog.gz
    DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT program)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tarn-hub)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "The Tarn Hub developers <developers@tarn-hub.example>")
set(CPACK_PACKAGE_HOMEPAGE_URL https://tarn-hub.example/)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "manage KORA network video boxes")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
    "Tarn Hub finds every KORA network video box (NDI encoders and decoders) on
the local network, shows which ones are online, watches their pictures,
changes their settings, records, and brings new firmware to many boxes at
once. It speaks Chinese, English and Korean.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL program)
set(CPACK_COMPONENTS_GROUPING ALL_COMPONENTS_IN_ONE)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Qt loads what reads SVG when it is needed: no linking tells of it.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "curl, fping, libqt5svg5")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "fonts-noto-cjk, qttranslations5-l10n")
set(CPACK_DEBIAN_PACKAGE_SECTION video)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
include(CPack)

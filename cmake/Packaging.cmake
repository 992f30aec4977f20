# What an installation brings along besides the programs, and the Debian packages: lumoscript-batch
# holds what a server needs, lumoscript the window on top of it.
set(LUMO_PACKAGING ${PROJECT_SOURCE_DIR}/packaging)

install(DIRECTORY ${PROJECT_SOURCE_DIR}/share/ DESTINATION ${CMAKE_INSTALL_DATADIR}/lumoscript
        COMPONENT batch)
install(FILES ${LUMO_PACKAGING}/copyright ${PROJECT_SOURCE_DIR}/README.md
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/lumoscript-batch COMPONENT batch)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/lumoscript-batch COMPONENT batch)

install(FILES ${LUMO_PACKAGING}/copyright DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/lumoscript
        COMPONENT desktop)
install(FILES ${LUMO_PACKAGING}/lumoscript.desktop
        DESTINATION ${CMAKE_INSTALL_DATADIR}/applications COMPONENT desktop)
install(FILES ${LUMO_PACKAGING}/org.lumoscript.Lumoscript.metainfo.xml
        DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo COMPONENT desktop)
install(FILES ${LUMO_PACKAGING}/lumoscript-mime.xml RENAME lumoscript.xml
        DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages COMPONENT desktop)
set(LUMO_ICON_THEME ${CMAKE_INSTALL_DATADIR}/icons/hicolor)
foreach(size 16 22 24 32 48 64 128 256 512)
  set(folder ${size}x${size})
  install(FILES ${LUMO_PACKAGING}/icons/${folder}/lumoscript.png
          DESTINATION ${LUMO_ICON_THEME}/${folder}/apps COMPONENT desktop)
  install(FILES ${LUMO_PACKAGING}/icons/${folder}/lumoscript-script.png
          DESTINATION ${LUMO_ICON_THEME}/${folder}/mimetypes COMPONENT desktop)
endforeach()
install(FILES ${LUMO_PACKAGING}/icons/lumoscript.svg
        DESTINATION ${LUMO_ICON_THEME}/scalable/apps COMPONENT desktop)
install(FILES ${LUMO_PACKAGING}/icons/lumoscript-script.svg
        DESTINATION ${LUMO_ICON_THEME}/scalable/mimetypes COMPONENT desktop)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME lumoscript)
set(CPACK_PACKAGE_CONTACT "The Lumoscript developers <developers@lumoscript.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY ${PROJECT_DESCRIPTION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL batch desktop)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(CPACK_COMPONENT_BATCH_DESCRIPTION
"Script-driven image processor, without a window
 Runs Scripts of commands (resize, crop, frame, stamp, filter, blend, convert,
 rename, header data) over folders of photographs and image lists. This package
 holds the program for servers and scheduled runs and the shipped frames, masks
 and example Scripts; it needs no display and no window library.")
set(CPACK_DEBIAN_BATCH_PACKAGE_NAME lumoscript-batch)
set(CPACK_DEBIAN_BATCH_PACKAGE_RECOMMENDS "fonts-dejavu-core | fonts-liberation")

set(CPACK_COMPONENT_DESKTOP_DESCRIPTION
"Script-driven image processor for folders of photographs
 You build a Script out of 91 commands, try it on one sample picture shown
 before and after, and run it over a folder or an image list. Conditions, loops,
 counters and subroutines steer the run; logs say what happened.")
set(CPACK_DEBIAN_DESKTOP_PACKAGE_NAME lumoscript)
set(CPACK_DEBIAN_DESKTOP_PACKAGE_DEPENDS "lumoscript-batch (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_DESKTOP_PACKAGE_RECOMMENDS "xdg-utils, qt6-wayland")
include(CPack)

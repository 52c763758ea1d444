# What `cmake --install` puts beside program and data, and what `cpack` makes of it.
if(WIN32)
  include(QuarnWindowsPackage)
  return()
endif()

install(FILES ${PROJECT_SOURCE_DIR}/docs/man/quarn-batch.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples/ DESTINATION ${CMAKE_INSTALL_DATADIR}/quarn/examples
  FILES_MATCHING PATTERN "*.gds" PATTERN "*.txt" PATTERN "CMakeLists.txt" EXCLUDE)
install(FILES ${PROJECT_SOURCE_DIR}/README.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs/ DESTINATION ${CMAKE_INSTALL_DOCDIR}
  FILES_MATCHING PATTERN "*.md" PATTERN "*.png" PATTERN "man" EXCLUDE)

# What the desktops of Linux want to know of the window: menu entry, kind of file, metadata, icons, manual.
if(TARGET quarn)
  set(quarn_desktop_files ${PROJECT_SOURCE_DIR}/data/desktop)
  set(quarn_icons ${PROJECT_SOURCE_DIR}/data/icon)
  install(FILES ${quarn_desktop_files}/quarn.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
  install(FILES ${quarn_desktop_files}/quarn.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages)
  install(FILES ${quarn_desktop_files}/quarn.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
  install(FILES ${PROJECT_SOURCE_DIR}/docs/man/quarn.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  foreach(size 16 22 24 32 48 64 128 256 512)
    install(FILES ${quarn_icons}/quarn-${size}.png RENAME quarn.png
      DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps)
  endforeach()
  install(FILES ${quarn_icons}/quarn.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME quarn)
set(CPACK_PACKAGE_VENDOR "Quarn developers")
set(CPACK_PACKAGE_CONTACT "Quarn developers <quarn@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "renders semiconductor process cross sections")
set(CPACK_PACKAGE_DESCRIPTION
  "Quarn runs a plain-text list of process steps (deposition, coating,
lithography, etching, release) on the polygons of a GDSII layout and draws
a picture of the cross section after every step.
")
if(TARGET quarn)
  string(APPEND CPACK_PACKAGE_DESCRIPTION
    "This package holds quarn, the desktop program, which shows every step
while the run goes on, and quarn-batch, the program for the command line,
which needs no display.")
else()
  string(APPEND CPACK_PACKAGE_DESCRIPTION
    "This package holds quarn-batch, the program for the command line;
it needs no display.")
endif()
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The libraries that draw the pictures and the face of their texts are loaded when the program runs.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "libgl1-mesa-dri, fonts-liberation")
include(CPack)

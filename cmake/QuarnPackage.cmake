# What `cmake --install` puts beside program and data, and what `cpack` makes of it.
if(WIN32)
  include(QuarnWindowsPackage)
  return()
endif()

# What only a distributor can give, since it names people and their terms. Empty: left out.
set(QUARN_PACKAGE_MAINTAINER "" CACHE STRING "Who answers for the Debian package: Name <address>")
set(QUARN_PACKAGE_COPYRIGHT "" CACHE FILEPATH "Copyright file of the Debian package")
set(QUARN_PACKAGE_CHANGELOG "" CACHE FILEPATH "Changelog of the Debian package, in Debian's format")

find_program(QUARN_GZIP gzip)
mark_as_advanced(QUARN_GZIP)

# quarn_install_packed(FILE NAME FOLDER): installs a file under a name as NAME.gz, always of the same bytes; as it is
# where there is no gzip.
function(quarn_install_packed file name folder)
  if(NOT QUARN_GZIP)
    install(FILES ${file} RENAME ${name} DESTINATION ${folder})
    return()
  endif()
  set(packed ${PROJECT_BINARY_DIR}/packed/${name}.gz)
  add_custom_command(OUTPUT ${packed}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${PROJECT_BINARY_DIR}/packed
    COMMAND ${QUARN_GZIP} -9nc ${file} > ${packed}
    DEPENDS ${file} VERBATIM)
  add_custom_target(quarn_packed_${name} ALL DEPENDS ${packed})
  install(FILES ${packed} DESTINATION ${folder})
endfunction()

quarn_install_packed(${PROJECT_SOURCE_DIR}/docs/man/quarn-batch.1 quarn-batch.1 ${CMAKE_INSTALL_MANDIR}/man1)
# bash looks for a file of the name of the program.
install(FILES ${PROJECT_SOURCE_DIR}/data/shell/quarn-batch.bash RENAME quarn-batch
  DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples/ DESTINATION ${CMAKE_INSTALL_DATADIR}/quarn/examples
  FILES_MATCHING PATTERN "*.gds" PATTERN "*.txt" PATTERN "CMakeLists.txt" EXCLUDE)
# The programs hold three.js.
install(FILES ${PROJECT_SOURCE_DIR}/export/page/three-license.txt RENAME three.js.txt
  DESTINATION ${CMAKE_INSTALL_DOCDIR}/licenses)
# The page about building is for those who have the sources; the installed pages do not lead to it.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs/ DESTINATION ${CMAKE_INSTALL_DOCDIR}
  FILES_MATCHING PATTERN "*.md" PATTERN "*.png" PATTERN "man" EXCLUDE PATTERN "building.md" EXCLUDE
  PATTERN "contributing.md" EXCLUDE PATTERN "design.md" EXCLUDE)
if(QUARN_PACKAGE_COPYRIGHT)
  install(FILES ${QUARN_PACKAGE_COPYRIGHT} RENAME copyright DESTINATION ${CMAKE_INSTALL_DOCDIR})
endif()
if(QUARN_PACKAGE_CHANGELOG)
  quarn_install_packed(${QUARN_PACKAGE_CHANGELOG} changelog ${CMAKE_INSTALL_DOCDIR})
endif()

# What the desktops of Linux want to know of the window: menu entry, kind of file, metadata, icons, manual.
if(TARGET quarn)
  set(quarn_desktop_files ${PROJECT_SOURCE_DIR}/data/desktop)
  set(quarn_icons ${PROJECT_SOURCE_DIR}/data/icon)
  install(FILES ${quarn_desktop_files}/quarn.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
  install(FILES ${quarn_desktop_files}/quarn.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages)
  install(FILES ${quarn_desktop_files}/quarn.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
  install(FILES ${PROJECT_SOURCE_DIR}/data/shell/quarn-batch.bash RENAME quarn
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
  quarn_install_packed(${PROJECT_SOURCE_DIR}/docs/man/quarn.1 quarn.1 ${CMAKE_INSTALL_MANDIR}/man1)
  foreach(size 16 22 24 32 48 64 128 256 512)
    install(FILES ${quarn_icons}/quarn-${size}.png RENAME quarn.png
      DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps)
  endforeach()
  install(FILES ${quarn_icons}/quarn.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME quarn)
set(CPACK_PACKAGE_VENDOR "Quarn developers")
# The field cannot be left out. Without an address it is plain that none was given.
set(CPACK_PACKAGE_CONTACT "Quarn developers")
if(QUARN_PACKAGE_MAINTAINER)
  set(CPACK_PACKAGE_CONTACT "${QUARN_PACKAGE_MAINTAINER}")
endif()
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

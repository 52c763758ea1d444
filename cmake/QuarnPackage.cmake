# What `cmake --install` puts beside program and data, and what `cpack` makes of it.
install(FILES ${PROJECT_SOURCE_DIR}/docs/man/quarn-batch.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples/ DESTINATION ${CMAKE_INSTALL_DATADIR}/quarn/examples
  FILES_MATCHING PATTERN "*.gds" PATTERN "*.txt" PATTERN "CMakeLists.txt" EXCLUDE)
install(FILES ${PROJECT_SOURCE_DIR}/README.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs/ DESTINATION ${CMAKE_INSTALL_DOCDIR}
  FILES_MATCHING PATTERN "*.md" PATTERN "*.png" PATTERN "man" EXCLUDE)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME quarn)
set(CPACK_PACKAGE_VENDOR "Quarn developers")
set(CPACK_PACKAGE_CONTACT "Quarn developers <quarn@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "renders semiconductor process cross sections")
set(CPACK_PACKAGE_DESCRIPTION
  "Quarn runs a plain-text list of process steps (deposition, coating, lithography, etching, release)
on the polygons of a GDSII layout and draws a picture of the cross section after every step.
This package holds quarn-batch, the program for the command line; it needs no display.")
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The libraries that draw the pictures and the face of their texts are loaded when the program runs.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "libgl1-mesa-dri, fonts-liberation")
include(CPack)

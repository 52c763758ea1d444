# What `cpack` puts into the archive for Windows: one folder with everything, to unpack anywhere. The programs
# find their data beside them.
install(FILES ${PROJECT_SOURCE_DIR}/README.md DESTINATION .)
# What a double-click opens everywhere; older editors need both characters of a line end.
configure_file(${PROJECT_SOURCE_DIR}/data/windows/README.txt.in ${PROJECT_BINARY_DIR}/README.txt
  @ONLY NEWLINE_STYLE CRLF)
install(FILES ${PROJECT_BINARY_DIR}/README.txt DESTINATION .)
install(FILES ${PROJECT_SOURCE_DIR}/data/quarn.ico DESTINATION .)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs DESTINATION .
  FILES_MATCHING PATTERN "*.md" PATTERN "*.png" PATTERN "man" EXCLUDE)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples DESTINATION .
  FILES_MATCHING PATTERN "*.gds" PATTERN "*.txt" PATTERN "CMakeLists.txt" EXCLUDE)
# Those of the libraries that are linked into the programs.
if(EXISTS ${QUARN_WINDOWS_PREFIX}/share/licenses)
  install(DIRECTORY ${QUARN_WINDOWS_PREFIX}/share/licenses DESTINATION .)
endif()
# That of the library which every page holds.
install(FILES ${PROJECT_SOURCE_DIR}/export/page/three-license.txt RENAME three.js.txt DESTINATION licenses)

set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_NAME quarn)
set(CPACK_PACKAGE_VENDOR "Quarn developers")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "renders semiconductor process cross sections")
set(CPACK_PACKAGE_FILE_NAME quarn-${PROJECT_VERSION}-windows-x86_64)
set(CPACK_INCLUDE_TOPLEVEL_DIRECTORY ON)
set(CPACK_STRIP_FILES ON)
include(CPack)

# quarn_embed(TARGET SYMBOL FILE): makes a file's bytes part of a target: `extern const unsigned char SYMBOL[]`, how
# many there are as `extern const long long SYMBOL_SIZE`, and their SHA-256 as `extern const unsigned char
# SYMBOL_SHA256[32]`. A file that has changed is taken in anew by the next build.
function(quarn_embed target symbol file)
  set(source ${CMAKE_CURRENT_BINARY_DIR}/embedded/${symbol}.cpp)
  add_custom_command(OUTPUT ${source}
    COMMAND ${CMAKE_COMMAND} -DINPUT=${file} -DOUTPUT=${source} -DSYMBOL=${symbol}
      -P ${PROJECT_SOURCE_DIR}/cmake/EmbedFile.cmake
    DEPENDS ${file} ${PROJECT_SOURCE_DIR}/cmake/EmbedFile.cmake VERBATIM)
  target_sources(${target} PRIVATE ${source})
endfunction()

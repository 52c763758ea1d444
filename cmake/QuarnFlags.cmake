# The flags of every target of the project.
add_library(quarn_flags INTERFACE)
target_include_directories(quarn_flags INTERFACE ${PROJECT_SOURCE_DIR})
# Results must be the same bits everywhere: no contraction of multiply and add, no fast-math.
if(MSVC)
  target_compile_options(quarn_flags INTERFACE /fp:precise /utf-8 /Zc:__cplusplus /W4 $<$<BOOL:${QUARN_WERROR}>:/WX>)
  # The C library's own functions are the portable ones here.
  target_compile_definitions(quarn_flags INTERFACE _CRT_SECURE_NO_WARNINGS _USE_MATH_DEFINES)
else()
  target_compile_options(quarn_flags INTERFACE -ffp-contract=off)
  # Indices are signed; clang would warn wherever one meets a library's unsigned size.
  target_compile_options(quarn_flags INTERFACE -Wall -Wextra -Wshadow -Wconversion -Wno-sign-conversion)
  if(QUARN_WERROR)
    target_compile_options(quarn_flags INTERFACE -Werror)
  endif()
endif()
if(WIN32)
  # Wide system calls, those of Windows 10, and no macros named min and max.
  target_compile_definitions(quarn_flags INTERFACE UNICODE _UNICODE _WIN32_WINNT=0x0A00 NOMINMAX
    WIN32_LEAN_AND_MEAN)
endif()
if(QUARN_SANITIZE)
  set(quarn_sanitizers ${QUARN_SANITIZE})
  if("${QUARN_SANITIZE}" MATCHES "^(ON|TRUE|YES|Y|1)$")
    set(quarn_sanitizers address undefined)
  endif()
  list(JOIN quarn_sanitizers "," quarn_sanitizers)
  target_compile_options(quarn_flags INTERFACE -fsanitize=${quarn_sanitizers} -fno-sanitize-recover=all
    -fno-omit-frame-pointer)
  target_link_options(quarn_flags INTERFACE -fsanitize=${quarn_sanitizers})
endif()

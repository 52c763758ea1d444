# The flags of every target of the project.
add_library(quarn_flags INTERFACE)
target_include_directories(quarn_flags INTERFACE ${PROJECT_SOURCE_DIR})
# Results must be the same bits everywhere: no contraction of multiply and add, no fast-math.
target_compile_options(quarn_flags INTERFACE -ffp-contract=off)
target_compile_options(quarn_flags INTERFACE -Wall -Wextra -Wshadow -Wconversion -Werror)
if(QUARN_SANITIZE)
  target_compile_options(quarn_flags INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=all
    -fno-omit-frame-pointer)
  target_link_options(quarn_flags INTERFACE -fsanitize=address,undefined)
endif()

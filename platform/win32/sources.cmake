set(platform_system_sources
  arguments.cpp
  clock.cpp
  file_replace.cpp
  files.cpp
  folder_contents.cpp
  folders.cpp
  font.cpp
  give_back.cpp
  gl_context.cpp
  input.cpp
  interrupt.cpp
  memory_ahead.cpp
  system_error.cpp
  system_path.cpp
  terminal.cpp
  text_bitmap.cpp
  text_convert.cpp
  text_family.cpp
  thread.cpp)
# usp10 first: the library of gdi32 names the functions of both, and older systems have them in usp10 only.
set(platform_system_links usp10 gdi32 user32 shell32 ole32 uuid)

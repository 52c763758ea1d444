set(platform_system_sources arguments.cpp clock.cpp file_replace.cpp files.cpp folder_contents.cpp folders.cpp
  font.cpp give_back.cpp gl_context.cpp input.cpp interrupt.cpp memory_ahead.cpp system_error.cpp system_path.cpp
  terminal.cpp text_bitmap.cpp text_convert.cpp thread.cpp)

set(platform_system_sources arguments.cpp clock.cpp file_replace.cpp files.cpp folder_contents.cpp folders.cpp
  font.cpp font_face.cpp give_back.cpp gl_context.cpp input.cpp interrupt.cpp memory_ahead.cpp system_error.cpp
  terminal.cpp text_bitmap.cpp text_convert.cpp thread.cpp)
set(platform_system_links OpenGL::EGL PkgConfig::FREETYPE PkgConfig::FONTCONFIG)

set(platform_system_sources arguments.cpp clock.cpp file_replace.cpp files.cpp folder_contents.cpp folders.cpp
  font.cpp give_back.cpp gl_context.cpp input.cpp interrupt.cpp system_error.cpp terminal.cpp text_convert.cpp thread.cpp)
set(platform_system_links OpenGL::EGL PkgConfig::FREETYPE PkgConfig::FONTCONFIG)

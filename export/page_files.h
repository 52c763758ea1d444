// page_files.h: the files that every page is put together from, as bytes in the program. The build makes the
// tables from the list in export/CMakeLists.txt.
#pragma once
#include "platform/base.h"

struct PageFile {
    const char *name;
    const u8 *bytes;  // UTF-8; a 0 follows that is not counted
    const long long *size;
    const u8 *sha256;  // of the bytes, 32 of them
};

extern const PageFile PAGE_SKELETON;   // HTML with marks such as <!--quarn:title--> where the parts go
extern const PageFile PAGE_STYLE;      // CSS
extern const PageFile PAGE_LICENSE;    // of the library for graphics, the first script
extern const PageFile PAGE_SCRIPTS[];  // in the order in which they run
extern const i32 PAGE_SCRIPT_COUNT;

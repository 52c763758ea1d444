// folder_contents.h: look into folders and remove empty ones. Any thread.
#pragma once
#include "platform/base.h"

// Called with each name, without its folder.
using PlatformNameVisitor = void (*)(const wchar_t *name, void *context);

// Visits everything that lies in a folder, in no order; what the visitor adds to or removes from the folder
// may be visited or not. A folder that cannot be read gives nothing.
void platform_folder_visit(const wchar_t *path, PlatformNameVisitor visit, void *context);

// Removes a folder when it is empty. True on success.
bool platform_folder_remove(const wchar_t *path);

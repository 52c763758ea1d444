// file_dialog.h: the dialog that asks for an existing file.
#pragma once
#include <windows.h>

#include "app/frontend.h"

// Shows the dialog on top of its owner. A new string, freed with wstring_free; null when cancelled.
WString *file_dialog_open(HWND owner, FileKind kind);

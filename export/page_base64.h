// page_base64.h: bytes as text that may stand anywhere in HTML.
#pragma once
#include "export/export_text.h"

// Appends bytes as base64 with its padding, in one line.
void page_base64_put(ExportText *text, const u8 *bytes, i64 size);

// export_wish.h: what runs write besides their pictures, as it is asked for.
#pragma once
#include "export/export_formats.h"
#include "log/text.h"

// All zero: nothing.
struct ExportWish {
    bool formats[EXPORT_FORMAT_COUNT];  // files of each step
    WString *page_path;  // where a page of the run is written; null: no page; owned by the state
};

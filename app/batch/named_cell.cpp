#include "app/batch/named_cell.h"

#include <cassert>

#include "log/log.h"
#include "log/near_name.h"
#include "log/shown_text.h"
#include "sim/stack_extract.h"

GdsCell *named_cell_find(const GdsDatabase *layout, const char *name) {
    assert(layout != nullptr && name != nullptr);
    GdsCell *cell = extract_cell_find(layout, name);
    if (cell != nullptr) {
        return cell;
    }
    NearName near = {name, nullptr, 0};
    for (i32 i = 0; i < layout->cell_count; ++i) {
        if (layout->cells[i].name != nullptr) {
            near_name_try(&near, nstring_text(layout->cells[i].name));
        }
    }
    if (near.best != nullptr) {
        diagnostic_write(L"there is no cell \"%ls\" in the layout: did you mean \"%ls\"?",
                         shown_text(name).text, shown_text(near.best).text);
    } else {
        diagnostic_write(L"there is no cell \"%ls\" in the layout: --cells lists those that are there",
                         shown_text(name).text);
    }
    return nullptr;
}

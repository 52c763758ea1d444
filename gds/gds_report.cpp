#include "gds/gds_report.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <cwchar>

#include "gds/gds_error.h"
#include "gds/gds_record.h"
#include "log/log.h"
#include "log/near_name.h"
#include "log/shown_text.h"
#include "platform/owned.h"

static constexpr i32 UNBOUND_LINES = 20;
static constexpr i32 CELLS_COMPARED = 20000;  // with a missing name, so that it takes no second
static constexpr size_t CELL_WORDS_ROOM = SHOWN_TEXT_MOST * 6 + 40;

static const wchar_t *record_name(u16 code) {
    switch (code) {
        case GDS_RECORD_HEADER: return L"HEADER";
        case GDS_RECORD_UNITS: return L"UNITS";
        case GDS_RECORD_BGNSTR: return L"BGNSTR";
        case GDS_RECORD_STRNAME: return L"STRNAME";
        case GDS_RECORD_ENDSTR: return L"ENDSTR";
        case GDS_RECORD_BOUNDARY: return L"BOUNDARY";
        case GDS_RECORD_PATH: return L"PATH";
        case GDS_RECORD_SREF: return L"SREF";
        case GDS_RECORD_AREF: return L"AREF";
        case GDS_RECORD_TEXT: return L"TEXT";
        case GDS_RECORD_LAYER: return L"LAYER";
        case GDS_RECORD_WIDTH: return L"WIDTH";
        case GDS_RECORD_XY: return L"XY";
        case GDS_RECORD_ENDEL: return L"ENDEL";
        case GDS_RECORD_SNAME: return L"SNAME";
        case GDS_RECORD_COLROW: return L"COLROW";
        case GDS_RECORD_NODE: return L"NODE";
        case GDS_RECORD_STRANS: return L"STRANS";
        case GDS_RECORD_MAG: return L"MAG";
        case GDS_RECORD_ANGLE: return L"ANGLE";
        case GDS_RECORD_PATHTYPE: return L"PATHTYPE";
        case GDS_RECORD_BOX: return L"BOX";
        default: return L"other record";
    }
}

static ShownText shown_name(const NString *name) {
    return shown_text(nstring_text(name));
}

// "cell "A"", or "a cell without a name": its STRNAME is missing or has not been reached.
static void cell_words(const NString *name, wchar_t words[CELL_WORDS_ROOM]) {
    if (name == nullptr) {
        std::wcscpy(words, L"a cell without a name");
    } else {
        std::swprintf(words, CELL_WORDS_ROOM, L"cell \"%ls\"", shown_name(name).text);
    }
}

void gds_report_error(const GdsPlace *place, i32 error) {
    assert(place != nullptr && place->path != nullptr);
    diagnostic_write(L"%ls: error %d: %ls", place->path, error, gds_error_text(error));
    if (!place->in_record) {
        return;
    }
    if (error == GDS_ERROR_RECORD_LENGTH) {
        diagnostic_write(L"%ls: byte offset %lld, record %lld: its length is given as %d", place->path,
                         static_cast<long long>(place->offset), static_cast<long long>(place->record_number),
                         place->length);
    } else {
        diagnostic_write(L"%ls: byte offset %lld, record %lld (%ls)", place->path,
                         static_cast<long long>(place->offset), static_cast<long long>(place->record_number),
                         record_name(place->code));
    }
    if (place->element_offset >= 0) {
        diagnostic_write(L"%ls: the element was opened at byte offset %lld", place->path,
                         static_cast<long long>(place->element_offset));
    }
    if (place->in_structure) {
        wchar_t cell[CELL_WORDS_ROOM];
        cell_words(place->structure, cell);
        diagnostic_write(L"%ls: in %ls", place->path, cell);
    }
}

void gds_report_early_end(const GdsPlace *place, bool cut) {
    assert(place != nullptr && place->path != nullptr);
    if (place->offset == 0 && !cut) {
        diagnostic_write(L"%ls: the file is empty", place->path);
        return;
    }
    const wchar_t *where = cut ? L"inside the record at" : L"at";
    diagnostic_write(
        L"%ls: warning: the file ends %ls byte offset %lld, without ENDLIB; it may be incomplete",
        place->path, where, static_cast<long long>(place->offset));
    if (place->in_structure) {
        wchar_t cell[CELL_WORDS_ROOM];
        cell_words(place->structure, cell);
        diagnostic_write(L"%ls: warning: %ls has no ENDSTR and is left out", place->path, cell);
    }
}

void gds_report_no_header(const wchar_t *path) {
    assert(path != nullptr);
    diagnostic_write(L"%ls: it has no HEADER record: perhaps it is no GDSII file, or a compressed one", path);
}

void gds_report_packed(const wchar_t *path, const GdsGzipCheck *check) {
    assert(path != nullptr && check != nullptr);
    const auto offset = static_cast<long long>(check->offset);
    if (check->state == GDS_GZIP_CUT) {
        diagnostic_write(
            L"%ls: error %d: the file is compressed with gzip and cut off: it ends at byte offset %lld", path,
            static_cast<i32>(GDS_ERROR_PACKED), offset);
    } else {
        diagnostic_write(
            L"%ls: error %d: the file is compressed with gzip and damaged: %ls, found at byte offset %lld",
            path, static_cast<i32>(GDS_ERROR_PACKED), text_widen(check->reason).get(), offset);
    }
}

void gds_report_unpacked(const wchar_t *path) {
    assert(path != nullptr);
    diagnostic_write(L"%ls: the file is compressed with gzip: byte offsets are those of what it holds", path);
}

void gds_report_unchecked(const wchar_t *path) {
    assert(path != nullptr);
    diagnostic_write(
        L"%ls: warning: the file is compressed with gzip and not looked at to its end; it may be damaged",
        path);
}

void gds_report_units(const wchar_t *path, const GdsUnitsPlace *place, f64 unit) {
    assert(path != nullptr && place != nullptr);
    auto offset = static_cast<long long>(place->offset);
    if (place->offset < 0) {
        diagnostic_write(L"%ls: there is no UNITS record", path);
    } else if (!place->used) {
        diagnostic_write(L"%ls: byte offset %lld: the UNITS record holds less than two numbers", path,
                         offset);
    } else {
        diagnostic_write(L"%ls: byte offset %lld: the UNITS record gives a database unit of %g um", path,
                         offset, unit);
    }
}

void gds_report_system(const wchar_t *path, const wchar_t *what, const wchar_t *reason) {
    assert(path != nullptr && what != nullptr && reason != nullptr);
    diagnostic_write(L"%ls: error %d: %ls: %ls", path, static_cast<i32>(GDS_ERROR_OPEN), what, reason);
}

// A reference that leads nowhere.
struct Unbound {
    const GdsName *name;  // null without SNAME
    i32 cell;             // of the reference
};

static i32 unbound_compare(const Unbound &a, const Unbound &b) {
    if (a.cell != b.cell) {
        return a.cell < b.cell ? -1 : 1;
    }
    if (a.name == nullptr || b.name == nullptr) {
        return static_cast<i32>(a.name != nullptr) - static_cast<i32>(b.name != nullptr);
    }
    return std::strcmp(gds_name_text(a.name), gds_name_text(b.name));
}

static void report_unbound_line(const wchar_t *path, const GdsDatabase *database, const Unbound *unbound) {
    wchar_t cell[CELL_WORDS_ROOM];
    cell_words(database->cells[unbound->cell].name, cell);
    if (unbound->name == nullptr) {
        diagnostic_write(L"%ls: %ls has a reference without a name", path, cell);
        return;
    }
    NearName near = {gds_name_text(unbound->name), nullptr, 0};
    const i32 compared = std::min(database->cell_count, CELLS_COMPARED);
    for (i32 i = 0; i < compared; ++i) {
        if (database->cells[i].name != nullptr) {
            near_name_try(&near, nstring_text(database->cells[i].name));
        }
    }
    const ShownText name = shown_text(gds_name_text(unbound->name));
    if (near.best != nullptr) {
        diagnostic_write(L"%ls: %ls refers to \"%ls\", which is not in the file: is \"%ls\" meant?", path,
                         cell, name.text, shown_text(near.best).text);
    } else {
        diagnostic_write(L"%ls: %ls refers to \"%ls\", which is not in the file", path, cell, name.text);
    }
}

void gds_report_unbound(const wchar_t *path, const GdsDatabase *database) {
    assert(path != nullptr && database != nullptr);
    Owned<Unbound[]> items;
    i32 count = 0;
    i32 capacity = 0;
    for (i32 i = 0; i < database->cell_count; ++i) {
        const GdsCell *cell = &database->cells[i];
        for (i32 k = 0; k < cell->sref_count; ++k) {
            if (cell->srefs[k].cell == nullptr) {
                array_append(&items, &count, &capacity, Unbound{cell->srefs[k].name, i});
            }
        }
        for (i32 k = 0; k < cell->aref_count; ++k) {
            if (cell->arefs[k].cell == nullptr) {
                array_append(&items, &count, &capacity, Unbound{cell->arefs[k].name, i});
            }
        }
    }
    std::sort(items.get(), items.get() + count,
              [](const Unbound &a, const Unbound &b) { return unbound_compare(a, b) < 0; });
    i32 distinct = 0;
    for (i32 i = 0; i < count; ++i) {
        if (i > 0 && unbound_compare(items[i - 1], items[i]) == 0) {
            continue;
        }
        if (distinct++ < UNBOUND_LINES) {
            report_unbound_line(path, database, &items[i]);
        }
    }
    if (distinct > UNBOUND_LINES) {
        diagnostic_write(L"%ls: and %d more", path, distinct - UNBOUND_LINES);
    }
}

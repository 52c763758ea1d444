#include "gds/gds_report.h"

#include <algorithm>
#include <cstring>
#include <cwchar>

#include "gds/gds_read.h"
#include "gds/gds_record.h"
#include "log/log.h"
#include "log/near_name.h"
#include "log/shown_text.h"
#include "platform/memory.h"

static constexpr i32 UNBOUND_LINES = 20;
static constexpr i32 CELLS_COMPARED = 20000;  // with a missing name, so that it takes no second
static constexpr size_t CELL_WORDS_ROOM = SHOWN_TEXT_MOST * 6 + 40;

const wchar_t *gds_error_text(i32 error) {
    switch (error) {
        case GDS_OK: return L"no error";
        case GDS_ERROR_OPEN: return L"the file cannot be read";
        case GDS_ERROR_PATH:
            return L"a PATH cannot be made into a polygon: it has less than two points, two equal points in "
                   L"a row, two parallel segments in a row, or ends that cannot be extended";
        case GDS_ERROR_UNITS: return L"there is no UNITS record with a positive database unit";
        case GDS_ERROR_RECORD_LENGTH: return L"a record length is below 4";
        case GDS_ERROR_BGNSTR: return L"BGNSTR inside a structure";
        case GDS_ERROR_ENDSTR: return L"ENDSTR outside a structure";
        case GDS_ERROR_BOUNDARY: return L"BOUNDARY outside a structure or inside an open element";
        case GDS_ERROR_PATH_PLACE: return L"PATH outside a structure or inside an open element";
        case GDS_ERROR_SREF: return L"SREF outside a structure or inside an open element";
        case GDS_ERROR_AREF: return L"AREF outside a structure or inside an open element";
        case GDS_ERROR_TEXT: return L"TEXT outside a structure or inside an open element";
        case GDS_ERROR_NODE: return L"NODE outside a structure or inside an open element";
        case GDS_ERROR_BOX: return L"BOX outside a structure or inside an open element";
        case GDS_ERROR_ENDEL: return L"ENDEL with no element open or outside a structure";
        case GDS_ERROR_SNAME: return L"SNAME outside SREF and AREF";
        case GDS_ERROR_COLROW: return L"COLROW outside AREF";
        case GDS_ERROR_PATHTYPE: return L"PATHTYPE outside PATH";
        case GDS_ERROR_STRANS: return L"STRANS outside SREF, AREF and TEXT";
        case GDS_ERROR_ANGLE: return L"ANGLE outside SREF, AREF and TEXT";
        case GDS_ERROR_MAG: return L"MAG outside SREF, AREF and TEXT";
        case GDS_ERROR_XY: return L"XY with no element open";
        case GDS_ERROR_SREF_POINTS: return L"XY of an SREF with more than one point";
        case GDS_ERROR_AREF_POINTS: return L"XY of an AREF with more than three points";
        case GDS_ERROR_LAYER: return L"LAYER with no element open or in SREF or AREF";
        case GDS_ERROR_WIDTH: return L"WIDTH outside PATH and TEXT";
        case GDS_ERROR_STRNAME: return L"STRNAME outside a structure";
        case GDS_ERROR_UNKNOWN_STRUCTURE: return L"a reference names a structure that is not in the file";
        case GDS_ERROR_NO_LAYER: return L"BOUNDARY or PATH without LAYER";
        default: return L"unknown error";
    }
}

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
    diagnostic_write(L"%ls: it has no HEADER record: perhaps it is no GDSII file, or a compressed one", path);
}

void gds_report_units(const wchar_t *path, const GdsUnitsPlace *place, f64 unit) {
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
    diagnostic_write(L"%ls: error %d: %ls: %ls", path, static_cast<i32>(GDS_ERROR_OPEN), what, reason);
}

// A reference that leads nowhere.
struct Unbound {
    const NString *name;  // null without SNAME
    i32 cell;             // of the reference
};

static i32 unbound_compare(const Unbound &a, const Unbound &b) {
    if (a.cell != b.cell) {
        return a.cell < b.cell ? -1 : 1;
    }
    if (a.name == nullptr || b.name == nullptr) {
        return static_cast<i32>(a.name != nullptr) - static_cast<i32>(b.name != nullptr);
    }
    return std::strcmp(nstring_text(a.name), nstring_text(b.name));
}

static void report_unbound_line(const wchar_t *path, const GdsDatabase *database, const Unbound *unbound) {
    wchar_t cell[CELL_WORDS_ROOM];
    cell_words(database->cells[unbound->cell].name, cell);
    if (unbound->name == nullptr) {
        diagnostic_write(L"%ls: %ls has a reference without a name", path, cell);
        return;
    }
    NearName near = {nstring_text(unbound->name), nullptr, 0};
    const i32 compared = std::min(database->cell_count, CELLS_COMPARED);
    for (i32 i = 0; i < compared; ++i) {
        if (database->cells[i].name != nullptr) {
            near_name_try(&near, nstring_text(database->cells[i].name));
        }
    }
    ShownText name = shown_name(unbound->name);
    if (near.best != nullptr) {
        diagnostic_write(L"%ls: %ls refers to \"%ls\", which is not in the file: is \"%ls\" meant?", path,
                         cell, name.text, shown_text(near.best).text);
    } else {
        diagnostic_write(L"%ls: %ls refers to \"%ls\", which is not in the file", path, cell, name.text);
    }
}

void gds_report_unbound(const wchar_t *path, const GdsDatabase *database) {
    Unbound *items = nullptr;
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
    std::sort(items, items + count,
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
    memory_free(items);
}

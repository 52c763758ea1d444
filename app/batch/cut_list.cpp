#include "app/batch/cut_list.h"

#include <cassert>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "log/log.h"
#include "log/shown_text.h"
#include "platform/memory.h"
#include "process/process_text.h"

static constexpr i32 FIRST_CAPACITY = 16;
static constexpr size_t LONGEST_NAME = 200;  // bytes; a folder's name may have 255
static constexpr i32 FIGURES = 4;
static constexpr const char *FIGURE_NAMES[FIGURES] = {"x", "y", "dx", "dy"};

// Tells what is wrong at a place; false, for the caller's return.
static bool tell(CutPlace place, const char *name, const wchar_t *what) {
    const ShownText shown = shown_text(name);
    if (place.file != nullptr) {
        diagnostic_write(L"%ls:%d: cut \"%ls\": %ls", place.file, place.line, shown.text, what);
    } else {
        diagnostic_write(L"--cut: \"%ls\": %ls", shown.text, what);
    }
    return false;
}

static char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

static bool same_but_for_case(const char *a, const char *b) {
    while (*a != 0 && lower(*a) == lower(*b)) {
        ++a;
        ++b;
    }
    return *a == *b;
}

// Names of devices, which no folder on Windows can have, with or without an extension.
static bool is_device(const char *name) {
    static const char *const devices[] = {"con", "prn", "aux", "nul"};
    const size_t length = std::strcspn(name, ".");
    for (const char *device : devices) {
        if (length == 3 && lower(name[0]) == device[0] && lower(name[1]) == device[1] &&
            lower(name[2]) == device[2]) {
            return true;
        }
    }
    const bool port = length == 4 && name[3] >= '1' && name[3] <= '9';
    const char start[] = {lower(name[0]), port ? lower(name[1]) : '\0', port ? lower(name[2]) : '\0', 0};
    return port && (std::strcmp(start, "com") == 0 || std::strcmp(start, "lpt") == 0);
}

// What keeps a text from being the name of a folder on one of the systems; null: nothing. A list of cuts
// works on all of them.
static const wchar_t *name_fault(const char *name) {
    const size_t length = std::strlen(name);
    if (length == 0) {
        return L"a cut needs a name";
    }
    if (length > LONGEST_NAME) {
        return L"the name is too long for a folder";
    }
    for (const char *at = name; *at != 0; ++at) {
        const auto byte = static_cast<unsigned char>(*at);
        if (byte < 0x20 || byte == 0x7F || std::strchr("/\\<>:\"|?*", *at) != nullptr) {
            return L"a name that is a folder has none of / \\ < > : \" | ? * and no control characters";
        }
    }
    if (name[0] == ' ' || name[length - 1] == ' ' || name[length - 1] == '.') {
        return L"a name that is a folder neither begins with a blank nor ends with a blank or a dot";
    }
    return is_device(name) ? L"Windows keeps this name for a device" : nullptr;
}

static bool is_number(const char *text) {
    char *end = nullptr;
    const f64 value = std::strtod(text, &end);
    return end != text && *end == 0 && std::isfinite(value) && std::strpbrk(text, "xX") == nullptr;
}

static bool check_figures(const Cut *cut, CutPlace place) {
    const char *const figures[FIGURES] = {cut->x, cut->y, cut->dx, cut->dy};
    for (i32 i = 0; i < FIGURES; ++i) {
        if (figures[i][0] == 0 || std::strlen(figures[i]) >= SECTION_FIGURE_SIZE || !is_number(figures[i])) {
            wchar_t what[256];
            std::swprintf(what, sizeof(what) / sizeof(what[0]), L"%s is no number: \"%ls\"", FIGURE_NAMES[i],
                          shown_text(figures[i]).text);
            return tell(place, cut->name, what);
        }
    }
    return true;
}

static bool check_new(const CutList *list, const char *name, CutPlace place) {
    for (i32 i = 0; i < list->count; ++i) {
        if (same_but_for_case(list->items[i].name, name)) {
            return tell(place, name, L"another cut has this name");
        }
    }
    return true;
}

bool cut_list_append(CutList *list, const Cut *cut, CutPlace place) {
    assert(list != nullptr && cut != nullptr && cut->name != nullptr);
    const wchar_t *fault = name_fault(cut->name);
    if (fault != nullptr) {
        return tell(place, cut->name, fault);
    }
    if (!check_figures(cut, place) || !check_new(list, cut->name, place)) {
        return false;
    }
    Cut copy = {};
    copy.name = process_text_copy(cut->name).release();
    copy.x = process_text_copy(cut->x).release();
    copy.y = process_text_copy(cut->y).release();
    copy.dx = process_text_copy(cut->dx).release();
    copy.dy = process_text_copy(cut->dy).release();
    copy.cell = process_text_copy(cut->cell).release();
    array_append(&list->items, &list->count, &list->capacity, copy, FIRST_CAPACITY);
    return true;
}

bool cut_list_add_option(CutList *list, const char *text) {
    assert(list != nullptr && text != nullptr);
    const NarrowText copy = process_text_copy(text);
    // A name may hold "=", figures never do.
    char *equals = std::strrchr(copy.get(), '=');
    char *parts[FIGURES] = {};
    i32 count = 0;
    if (equals != nullptr) {
        *equals = 0;
        for (char *at = equals + 1; at != nullptr; ++count) {
            char *comma = std::strchr(at, ',');
            if (count < FIGURES) {
                parts[count] = at;
            }
            if (comma != nullptr) {
                *comma = 0;
            }
            at = comma != nullptr ? comma + 1 : nullptr;
        }
    }
    const CutPlace place = {nullptr, 0};
    if (count != FIGURES) {
        return tell(place, text, L"a cut is written NAME=X,Y,DX,DY");
    }
    const Cut cut = {copy.get(), parts[0], parts[1], parts[2], parts[3], nullptr};
    return cut_list_append(list, &cut, place);
}

SectionChoice cut_section(const Cut *cut) {
    assert(cut != nullptr);
    return {cut->x, cut->y, cut->dx, cut->dy, cut->cell};
}

void cut_list_free(CutList *list) {
    for (i32 i = 0; i < list->count; ++i) {
        const Cut *cut = &list->items[i];
        char *const texts[] = {cut->name, cut->x, cut->y, cut->dx, cut->dy, cut->cell};
        for (char *text : texts) {
            memory_free(text);
        }
    }
    memory_free(list->items);
    *list = {};
}

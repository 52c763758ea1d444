#include "app/save_form.h"

#include <cassert>
#include <cwchar>
#include <cwctype>

// Whether a text ends in an extension, which has no capitals.
static bool ends_in(const wchar_t *path, const wchar_t *extension) {
    const size_t length = std::wcslen(path);
    const size_t size = std::wcslen(extension);
    if (size > length) {
        return false;
    }
    for (size_t i = 0; i < size; ++i) {
        const wint_t letter = std::towlower(static_cast<wint_t>(path[length - size + i]));
        if (static_cast<wchar_t>(letter) != extension[i]) {
            return false;
        }
    }
    return true;
}

i32 save_kind_of(const SaveForm *form, const wchar_t *path) {
    assert(form != nullptr && path != nullptr && form->kind_count <= MOST_SAVE_KINDS);
    i32 kind = 0;
    while (kind < form->kind_count && !ends_in(path, form->kinds[kind].extension)) {
        ++kind;
    }
    return kind;
}

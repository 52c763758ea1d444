// save_form.h: what a dialog for saving one file offers, the same in every window.
#pragma once
#include "app/app_state.h"

struct SaveKind {
    const wchar_t *name;       // for people
    const wchar_t *extension;  // with its point
};

struct SaveForm {
    const wchar_t *title;
    const SaveKind *kinds;  // not owned
    i32 kind_count;
};

inline constexpr i32 MOST_SAVE_KINDS = 8;

// The kind of which the extension of a file name tells, whatever its case; kind_count when it tells of none.
i32 save_kind_of(const SaveForm *form, const wchar_t *path);

// Asks where a file is to be saved. A new string, freed with wstring_free; null when cancelled. A file that
// is there is returned only when the user wants it replaced. User-interface thread.
//   name   proposed
//   kind   in: that of the proposed name; out: that which was chosen, for names whose extension tells of none
using SaveDialog = WString *(*)(AppState *state, const SaveForm *form, const wchar_t *name, i32 *kind);

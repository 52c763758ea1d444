#include "app/picture_wish.h"

#include <cassert>
#include <cwchar>

#include "app/frontend.h"
#include "platform/thread_role.h"

const VerticalScale VERTICAL_SCALES[VERTICAL_SCALE_COUNT] = {
    {1.0F, L"1"}, {2.0F, L"2"}, {5.0F, L"5"}, {10.0F, L"10"}, {50.0F, L"50"},
};

static const wchar_t *const FINE_TEXTS[] = {L"0", L"1"};

// During a run the worker only reads the style, so it may be read here as well.
bool picture_wish_fine(const AppState *state) {
    assert(state != nullptr && thread_role_fits(THREAD_WINDOW));
    return state->picture_wish.quality_chosen ? state->picture_wish.fine : state->picture_style.fine;
}

f32 picture_wish_scale(const AppState *state) {
    assert(state != nullptr && thread_role_fits(THREAD_WINDOW));
    const f32 chosen = state->picture_wish.vertical_scale;
    return chosen > 0.0F ? chosen : state->picture_style.vertical_scale;
}

static void tell(AppState *state, const wchar_t *text) {
    if (state->quit_pending == 0) {
        state->frontend->set_status(state, STATUS_PROCESS, text);
    }
}

void picture_wish_choose_fine(AppState *state, bool fine) {
    assert(state != nullptr && thread_role_fits(THREAD_WINDOW));
    state->picture_wish.quality_chosen = true;
    state->picture_wish.fine = fine;
    tell(state, fine ? L"Fine pictures from the next run on" : L"Plain pictures from the next run on");
}

void picture_wish_choose_scale(AppState *state, i32 index) {
    assert(state != nullptr && thread_role_fits(THREAD_WINDOW));
    assert(index >= 0 && index < VERTICAL_SCALE_COUNT);
    state->picture_wish.vertical_scale = VERTICAL_SCALES[index].factor;
    const Owned<WString> text(
        wstring_make(L"Vertical scale %ls from the next run on", VERTICAL_SCALES[index].text));
    tell(state, wstring_text(text.get()));
}

void picture_wish_apply(AppState *state) {
    assert(state->run_active == 0);
    state->picture_style.fine = picture_wish_fine(state);
    state->picture_style.vertical_scale = picture_wish_scale(state);
}

const wchar_t *picture_wish_fine_text(const AppState *state) {
    return FINE_TEXTS[picture_wish_fine(state) ? 1 : 0];
}

const wchar_t *picture_wish_scale_text(const AppState *state) {
    for (const VerticalScale &scale : VERTICAL_SCALES) {
        if (scale.factor == picture_wish_scale(state)) {
            return scale.text;
        }
    }
    return nullptr;
}

void picture_wish_remember(AppState *state, const wchar_t *fine, const wchar_t *scale) {
    assert(state != nullptr && thread_role_fits(THREAD_WINDOW));
    PictureWish *wish = &state->picture_wish;
    const bool is_plain = !wish->quality_chosen && state->picture_style.fine == PLAIN_STYLE.fine;
    if (is_plain && fine != nullptr && std::wcscmp(fine, FINE_TEXTS[1]) == 0) {
        wish->quality_chosen = true;
        wish->fine = true;
    }
    if (wish->vertical_scale > 0.0F || state->picture_style.vertical_scale != PLAIN_STYLE.vertical_scale) {
        return;
    }
    for (const VerticalScale &known : VERTICAL_SCALES) {
        if (scale != nullptr && std::wcscmp(scale, known.text) == 0) {
            wish->vertical_scale = known.factor;
        }
    }
}

#include "app/export_facts.h"

#include <cassert>
#include <cstdio>

#include "app/step_choice.h"
#include "platform/wide_text.h"

// The program's name and version in one text, made by the compiler.
struct ProgramTitle {
    char text[32];
};

static constexpr ProgramTitle make_program_title() {
    ProgramTitle title = {};
    i32 length = 0;
    const char *const parts[] = {PROGRAM_NAME, " ", PROGRAM_VERSION};
    for (const char *part : parts) {
        for (; *part != 0; ++part) {
            title.text[length++] = *part;
        }
    }
    return title;
}

static constexpr ProgramTitle PROGRAM_TITLE = make_program_title();

ExportFacts export_facts(const AppState *state) {
    assert(state != nullptr);
    ExportFacts facts = {};
    facts.program = PROGRAM_TITLE.text;
    facts.layout_path = wstring_text(state->gds_path);
    facts.process_path = wstring_text(state->process_path);
    facts.cut_name = state->cut_name;
    const PlatformTime now = platform_local_time();
    std::snprintf(facts.date, EXPORT_DATE_SIZE, "%04d-%02d-%02d %02d:%02d", now.year, now.month, now.day,
                  now.hour, now.minute);
    return facts;
}

WideText export_title(const Stack *stack, i32 step_index) {
    assert(stack != nullptr && step_index >= 0 && step_index < stack->steps->count);
    const char *title = stack->steps->items[step_index]->title;
    if (step_index == 0) {
        return wide_copy(L"The substrate");
    }
    return wide_join(L"Cross section after ", wide_from_bytes(title != nullptr ? title : "").get());
}

ExportStep export_step(const AppState *state, const Stack *stack, i32 step_index, const wchar_t *title,
                       const ExportFacts *facts) {
    assert(state != nullptr && stack != nullptr && title != nullptr && facts != nullptr);
    return {stack,
            step_index,
            step_picture_number(stack, step_index),
            title,
            state->picture_style.title,
            state->picture_style.vertical_scale,
            facts};
}

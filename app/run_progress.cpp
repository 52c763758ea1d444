#include "app/run_progress.h"

#include <cassert>

#include "log/progress.h"
#include "log/shown_text.h"
#include "platform/wide_text.h"

void run_progress_step(const Stack *stack, i32 step_index, const char *what) {
    assert(stack != nullptr && step_index >= 0 && step_index < stack->steps->count);
    if (!progress_is_seen()) {
        return;
    }
    const char *title = stack->steps->items[step_index]->title;
    const ShownText shown = shown_text(step_index == 0 ? "the substrate" : title);
    const WideText made = wide_from_bytes(what != nullptr ? what : "");
    progress_show(L"step %d of %d%ls%ls%ls%ls", step_index, stack->steps->count - 1,
                  shown.text[0] != 0 ? L": " : L"", shown.text, made[0] != 0 ? L", " : L"", made.get());
}

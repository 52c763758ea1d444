#include "app/browse_command.h"

#include <cassert>

#include "app/frontend.h"
#include "platform/thread_role.h"

i32 browse_images(AppState *state, i32 direction) {
    assert(state != nullptr && thread_role_fits(THREAD_WINDOW));
    const i32 last = state->image_count - 1;
    if (last < 0) {
        return 0;
    }
    i32 current = state->current_image;
    if (direction < 0) {
        current = current <= 0 || current > last ? last : current - 1;
    } else {
        current = current < 0 || current >= last ? 0 : current + 1;
    }
    state->current_image = current;
    state->frontend->set_title(state, wstring_text(state->images[current]->title));
    return 1;
}

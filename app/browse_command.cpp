#include "app/commands.h"
#include "app/frontend.h"

i32 browse_images(AppState *state, i32 direction) {
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

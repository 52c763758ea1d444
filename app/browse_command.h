// browse_command.h: the arrow keys.
#pragma once
#include "app/app_state.h"

// The next (direction > 0) or previous picture, wrapping at both ends; sets the title. With no
// picture nothing happens. Returns 1 when the render area should be repainted. User-interface thread, also
// during a run.
i32 browse_images(AppState *state, i32 direction);

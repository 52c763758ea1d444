#include "app/batch/batch_graphics.h"

#include "app/startup.h"
#include "log/log.h"
#include "render/scene.h"

BatchStatus batch_graphics_start(AppState *state, i32 picture_width) {
    const wchar_t *reason = nullptr;
    state->gl_context = platform_gl_create_offscreen(&reason);
    if (state->gl_context == nullptr) {
        diagnostic_write(L"no graphics: %ls", reason != nullptr ? reason : L"the system does not say why");
        return BATCH_NO_GRAPHICS;
    }
    render_state_init();
    const Owned<WString> fault(picture_width_fault(picture_width));
    if (fault != nullptr) {
        diagnostic_write(L"no graphics: %ls", wstring_text(fault.get()));
        return BATCH_NO_GRAPHICS;
    }
    return app_require_shaders(state) == 0 ? BATCH_DONE : BATCH_NO_GRAPHICS;
}

#include "app/load_command.h"

#include <cassert>

#include "app/frontend.h"
#include "app/menu.h"
#include "gds/gds_read.h"
#include "log/log.h"
#include "log/progress.h"
#include "platform/memory.h"
#include "platform/thread_role.h"

static void report_cancel(AppState *state) {
    state->frontend->set_title(state, L"Quarn");
    console_append(L"Handling \"Load GDS\" command canceled");
    console_append(L"\r\n");
    console_append(L"\r\n");
    menu_update(state);
}

// Loads the file; the previous layout stays unless that succeeds.
static void load_layout(AppState *state, const wchar_t *path) {
    console_printf_w(L"Loading GDS database %ls and calculating cell sizes. Please wait ...", path);
    console_append(L"\r\n\r\n");
    state->frontend->paint_now(state);
    Owned<GdsDatabase> layout(memory_new_zeroed<GdsDatabase>());
    const f64 start_ms = platform_clock_ms();
    state->load_result = gds_read(layout.get(), path);
    progress_clear();
    const f64 elapsed_ms = platform_clock_ms() - start_ms;
    if (state->load_result == GDS_INTERRUPTED) {
        report_cancel(state);
        return;
    }
    if (state->load_result != GDS_OK) {
        console_printf_w(L"Loading GDS database failed with error: %d", state->load_result);
        console_append(L"\r\n");
        console_append(L"\r\n");
        diagnostics_show();
        menu_update(state);
        return;
    }
    gds_free(state->layout);
    state->layout = layout.release();
    wstring_free(state->gds_path);
    state->gds_path = wstring_copy(path);
    state->frontend->set_status(state, STATUS_LAYOUT, wstring_text(state->gds_path));
    menu_update(state);
    state->frontend->set_title(state, L"");
    const f32 elapsed_s = static_cast<f32>(elapsed_ms) / 1000.0F;
    console_printf_w(L"GDS database finished loading in %.3f s", static_cast<f64>(elapsed_s));
    console_append(L"\r\n");
    console_append(L"\r\n");
    if (state->image_count > 0) {
        diagnostic_write(L"the picture on show belongs to the layout that was loaded before");
    }
    diagnostics_show();
}

void load_gds_command(AppState *state) {
    assert(state != nullptr && thread_role_fits(THREAD_WINDOW));
    if (state->run_active != 0) {
        return;
    }
    console_clear();
    log_write(L"Loading GDS file");
    console_append(L"--- Handling \"Load GDS\" command ---");
    console_append(L"\r\n\r\n");
    menu_disable_all(state);
    log_write(L"Selecting GDS file");
    const Owned<WString> path(state->frontend->choose_file(state, FILE_LAYOUT));
    if (path == nullptr) {
        state->load_result = GDS_INTERRUPTED;
        report_cancel(state);
        return;
    }
    load_layout(state, wstring_text(path.get()));
}

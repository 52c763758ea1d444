#include "app/gtk/desktop.h"

#include <glib-unix.h>
#include <gtk/gtk.h>

#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstring>

#include "app/commands.h"
#include "app/gtk/desktop_options.h"
#include "app/gtk/gtk_desktop.h"
#include "app/gtk/gtk_frontend.h"
#include "app/startup.h"
#include "log/log.h"
#include "render/scene.h"

// Menus and dialogs speak the user's language, but decimals are read and printed with a point whatever the
// language, and letters are those of UTF-8: process files and results must not depend on the user's settings.
static void start_language() {
    gtk_disable_setlocale();
    if (std::setlocale(LC_ALL, "") == nullptr) {
        std::setlocale(LC_ALL, "C.UTF-8");
    }
    std::setlocale(LC_NUMERIC, "C");
    if (!g_get_charset(nullptr)) {
        std::setlocale(LC_CTYPE, "C.UTF-8");
    }
}

// The context is made on this thread, which lends it to the worker of each run. Returns 0, or 1 after
// telling.
static i32 start_graphics(AppState *state) {
    const wchar_t *reason = nullptr;
    state->gl_context = platform_gl_create_offscreen(&reason);
    if (state->gl_context == nullptr) {
        diagnostic_write(L"no graphics: %ls", reason != nullptr ? reason : L"the system does not say why");
        message_show(L"Could not initialize graphics");
        return 1;
    }
    render_state_init();
    log_write(L"OpenGL Initialized");
    return 0;
}

// Window, graphics and shaders, in the order that the log shows. Returns 0, or 1 after telling why.
static i32 start_window(AppState *state) {
    // There are no window classes to register here; whoever reads logs finds the lines of both systems alike.
    log_write(L"Register the main window");
    log_write(L"Start creating the main window");
    main_window_create(state);
    if (start_graphics(state) != 0) {
        message_show(L"Main window creation failed");
        return 1;
    }
    menu_update(state);
    log_write(L"Main window created");
    state->frontend->set_title(state, L"Quarn");
    main_window_show(state);
    log_write(L"Main window shown");
    app_load_shaders(state);
    app_welcome();
    return 0;
}

// The source goes with the first signal, so that a second one ends the program at once.
static gboolean end_by_signal(gpointer state) {
    desktop_close(static_cast<AppState *>(state));
    return G_SOURCE_REMOVE;
}

// The window is on show: it is drawn before the main loop is idle and the files are opened.
static gboolean open_named_files(GtkWidget *window, GdkEvent *, gpointer options) {
    g_signal_handlers_disconnect_by_data(window, options);
    const auto *files = static_cast<const DesktopOptions *>(options);
    desktop_open_later(g_desktop->state, files->layout_path, files->process_path);
    return FALSE;
}

static void run_window(AppState *state, DesktopOptions *options) {
    const guint sources[] = {g_unix_signal_add(SIGINT, end_by_signal, state),
                             g_unix_signal_add(SIGTERM, end_by_signal, state),
                             g_unix_signal_add(SIGHUP, end_by_signal, state)};
    g_signal_connect(state->main_window, "map-event", G_CALLBACK(open_named_files), options);
    gtk_main();
    for (const guint source : sources) {
        if (g_main_context_find_source_by_id(nullptr, source) != nullptr) {
            g_source_remove(source);
        }
    }
}

// Undoes every start that was done.
static void end_all(AppState *state) {
    PlatformGl *gl_context = state->gl_context;
    main_window_destroy(state);
    app_end(state);
    platform_gl_free(gl_context);
}

// The program's icon lies beside it also where the desktop does not look: in a tree that was moved or just
// built.
static void start_icon() {
    const WideText program = platform_program_folder();
    if (program != nullptr) {
        const NarrowText folder = platform_system_from_wide(program.get());
        g_autofree char *icons = g_build_filename(folder.get(), "..", "share", "icons", nullptr);
        gtk_icon_theme_append_search_path(gtk_icon_theme_get_default(), icons);
    }
    gtk_window_set_default_icon_name("quarn");
}

static i32 run_program(DesktopOptions *options) {
    AppState state;
    app_start(&state, &GTK_FRONTEND, nullptr);
    g_desktop->state = &state;
    i32 result = app_open_files(&state);
    if (result == 0) {
        result = start_window(&state);
    }
    if (result == 0) {
        result = picture_options_start(&options->pictures, &state);
    }
    if (result == 0) {
        picture_menu_load(&state);
        run_window(&state, options);
    }
    end_all(&state);
    g_desktop->state = nullptr;
    return result;
}

i32 desktop_main(i32 argument_count, char **arguments) {
    // It outlives what lack of memory may end at any time.
    static GtkDesktop desktop = {};
    g_desktop = &desktop;
    if (desktop_options_answer(argument_count, arguments) == DESKTOP_PARSE_END) {
        return 0;
    }
    start_language();
    // Desktops find the program's icon and entry by these.
    g_set_prgname("quarn");
    g_set_application_name(PROGRAM_NAME);
    if (!gtk_init_check(&argument_count, &arguments)) {
        std::fputs("quarn: there is no display to open a window on; quarn-batch needs none\n", stderr);
        return 1;
    }
    start_icon();
    DesktopOptions options;
    if (desktop_options_parse(argument_count, arguments, &options) != DESKTOP_PARSE_OK) {
        return 1;
    }
    main_thread_start();
    memory_box_create();
    return run_program(&options);
}

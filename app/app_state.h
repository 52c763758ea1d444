// app_state.h: everything the program holds. One record, reachable through g_app.
// During a run the user-interface thread and the worker share it without locks. What both touch then are the
// fields of type SharedNumber, and the slots of `images` below image_count, which the worker fills before it
// counts them. The worker looks at what is asked of it between steps. Of the rest the worker has what its
// comment gives to it; the start of the worker and run_done hand that over.
#pragma once
#include "app/data_files.h"
#include "app/export_wish.h"
#include "app/picture_wish.h"
#include "app/picture_writer.h"
#include "app/shared_number.h"
#include "gds/gds_database.h"
#include "image/image_file.h"
#include "platform/platform.h"
#include "process/stack.h"
#include "render/camera.h"
#include "render/offscreen.h"
#include "render/picture_style.h"
#include "render/shader.h"

inline constexpr const char *PROGRAM_NAME = "Quarn";
inline constexpr const char *PROGRAM_VERSION = "3.0.0";

// Ids of the menu commands.
enum MenuCommand {
    MENU_RUN = 4,
    MENU_STOP = 6,
    MENU_ABOUT = 7,
    MENU_LOAD_GDS = 8,
    MENU_SAVE_IMAGES = 10,
};

// Why the last run ended early or did not start, beyond the faults that the console tells.
enum RunFailure {
    RUN_NO_FAILURE = 0,
    RUN_NO_GRAPHICS,  // a picture could not be drawn or read: the run ended with the pictures before it
    RUN_NO_MEMORY,    // for a picture: the same
    RUN_NO_DUMP,      // "VertexData.txt" cannot be written, and dump_required: the run did not start
};

struct ExportRun;
struct Frontend;
struct SectionChoice;

// All zero is the state at start, but for what app_start sets.
struct AppState {
    const Frontend *frontend;  // what is asked of it; set by app_start
    DataPlaces places;         // where the installed files are looked for
    Camera *camera;            // of the last rendered step; the worker's during a run
    Stack *stack;              // of the last run; the worker's during a run, but for its polygons, which stay
    GdsDatabase *layout;       // null until a layout is loaded
    WString *gds_path;         // of the loaded layout
    WString *process_path;     // of the last process file run
    void *main_window;         // handles of the front end, null where it has none
    void *render_window;
    void *status_bar;
    PlatformGl *gl_context;         // null: the run makes no pictures; current on the thread that draws
    PlatformThread *worker_thread;  // of the last run; joined when the next one starts
    ShaderProgram *surface_program;
    ShaderProgram *point_program;
    OffscreenTarget *framebuffer;     // null until the first rendered step; the worker's during a run
    SharedNumber running;             // 1 while the worker is working; set by the worker
    SharedNumber stop_requested;      // 1: set by Stop or by closing the window; cleared by Run
    SharedNumber sizing;              // 1 while the user moves the window
    SharedNumber quit_pending;        // 1: the window was closed while a run was going on
    SharedNumber current_image;       // index of the picture on show
    i32 render_width, render_height;  // client size of the render area, pixels
    PictureStyle picture_style;       // of the pictures; the worker's during a run
    WString *picture_title;           // that of the style, or null; owned
    PictureWish picture_wish;         // what becomes of picture_style when the next run starts
    WString *appdata_path;            // the per-user data folder
    PixelImage **images;              // pictures of the last run, in step order, packed; owned
    SharedNumber image_count;
    i32 image_capacity;        // at least one for each step of the run, so that the list never moves
    WString *output_folder;    // where "Save images" writes; null for a new time-stamped folder; owned
    ImageFormat image_format;  // of saved pictures
    // Where each picture is written when it is made, and its pixels freed, so that "Save images" only tells
    // of it; null: pictures are kept; owned. The worker's during a run.
    PictureFolder *picture_folder;
    PictureWriter *picture_writer;  // the worker's; null where it writes no pictures
    ExportWish export_wish;         // what runs write besides pictures
    ExportRun *export_run;          // the same of the last run, under way; null: nothing; owned
    const SectionChoice *section;   // that runs cut; null: the one of the process file; not owned
    const char *cut_name;           // of that section; null for that of the process file; not owned
    const char *step_list;          // pictures that a run makes (app/step_choice.h); null: all; not owned
    u8 *step_wanted;                // a flag a step of the run; null: every step; owned
    i32 save_failed;                // 1 when the last "Save images" could not write everything
    WString *dump_folder;           // of "VertexData.txt"; null: the current folder; owned
    i32 dump_required;              // 1: no run starts that could not write it
    SharedNumber run_failure;       // RunFailure of the last run
    // 1 from just before the worker starts until run_done. The user-interface thread sets it while there is
    // no worker, and clears it while the worker waits for run_done to return, so the worker may read it.
    i32 run_active;
    i32 load_result;  // of the last "Load GDS": 0 or a GdsError, -1 when cancelled
    i32 run_number;   // of the list of pictures: counts them, so that those of two runs can be told apart
};

// Set by app_start, cleared by app_end.
extern AppState *g_app;

// Makes an empty list of pictures with room for one of every step, so that the worker never moves the list
// while the user browses in it. The list before must have been freed.
void images_create(AppState *state, i32 step_count);

// Frees the pictures and their list; the list is then empty.
void images_free(AppState *state);

// Frees the data of the last run, but for the layout, and forgets where its files go. The OpenGL context, if
// any, must be current here.
void app_forget_run(AppState *state);

// Frees the data of runs: layout, stack, framebuffer, camera, pictures, paths, fonts. The OpenGL
// context, if any, must be current here. Shader programs, colour names, data folder and context stay.
void app_cleanup(AppState *state);

#include "tests/win32/resource_watch.h"

#include <windows.h>
// After windows.h, whose types it would else declare anew.
#include <GL/glew.h>

#include <mutex>
#include <set>
#include <utility>

#include "tests/win32/import_patch.h"

static std::mutex live_mutex;
static std::map<std::string, std::set<u64>> live;
static i64 made;

static void add(const char *kind, u64 name) {
    if (name != 0) {
        const std::lock_guard<std::mutex> lock(live_mutex);
        live[kind].insert(name);
        ++made;
    }
}

static void remove(const char *kind, u64 name) {
    const std::lock_guard<std::mutex> lock(live_mutex);
    live[kind].erase(name);
}

static void remove_all(const char *kind) {
    const std::lock_guard<std::mutex> lock(live_mutex);
    live[kind].clear();
}

// Kinds of OpenGL objects that are made and deleted several at once.
using GenFunction = void APIENTRY(GLsizei, GLuint *);
using DeleteFunction = void APIENTRY(GLsizei, const GLuint *);

struct ObjectKind {
    const char *name;
    GenFunction **gen;
    DeleteFunction **remove;
    GenFunction *gen_original;
    DeleteFunction *remove_original;
};

static ObjectKind kinds[] = {
    {"buffer", &__glewGenBuffers, &__glewDeleteBuffers, nullptr, nullptr},
    {"vertex array", &__glewGenVertexArrays, &__glewDeleteVertexArrays, nullptr, nullptr},
    {"framebuffer", &__glewGenFramebuffers, &__glewDeleteFramebuffers, nullptr, nullptr},
    {"renderbuffer", &__glewGenRenderbuffers, &__glewDeleteRenderbuffers, nullptr, nullptr},
};

template <i32 KIND>
static void APIENTRY gen_watched(GLsizei count, GLuint *names) {
    kinds[KIND].gen_original(count, names);
    for (GLsizei i = 0; i < count; ++i) {
        add(kinds[KIND].name, names[i]);
    }
}

template <i32 KIND>
static void APIENTRY delete_watched(GLsizei count, const GLuint *names) {
    kinds[KIND].remove_original(count, names);
    for (GLsizei i = 0; i < count; ++i) {
        remove(kinds[KIND].name, names[i]);
    }
}

template <i32 KIND>
static void watch_kind() {
    ObjectKind *kind = &kinds[KIND];
    kind->gen_original = std::exchange(*kind->gen, gen_watched<KIND>);
    kind->remove_original = std::exchange(*kind->remove, delete_watched<KIND>);
}

// Shaders and programs.

static PFNGLCREATEPROGRAMPROC create_program;
static PFNGLDELETEPROGRAMPROC delete_program;
static PFNGLCREATESHADERPROC create_shader;
static PFNGLDELETESHADERPROC delete_shader;

static GLuint APIENTRY create_program_watched() {
    const GLuint name = create_program();
    add("program", name);
    return name;
}

static void APIENTRY delete_program_watched(GLuint name) {
    delete_program(name);
    remove("program", name);
}

static GLuint APIENTRY create_shader_watched(GLenum type) {
    const GLuint name = create_shader(type);
    add("shader", name);
    return name;
}

static void APIENTRY delete_shader_watched(GLuint name) {
    delete_shader(name);
    remove("shader", name);
}

static void watch_entry_points() {
    watch_kind<0>();
    watch_kind<1>();
    watch_kind<2>();
    watch_kind<3>();
    create_program = std::exchange(__glewCreateProgram, create_program_watched);
    delete_program = std::exchange(__glewDeleteProgram, delete_program_watched);
    create_shader = std::exchange(__glewCreateShader, create_shader_watched);
    delete_shader = std::exchange(__glewDeleteShader, delete_shader_watched);
}

// What is imported from the system: display lists, contexts, windows, fonts, brushes.

static decltype(glGenLists) *gen_lists;
static decltype(wglCreateContext) *create_context;
static decltype(wglDeleteContext) *delete_context;
static decltype(CreateFontW) *create_font;
static decltype(CreateFontA) *create_font_narrow;
static decltype(CreateSolidBrush) *create_brush;
static decltype(DeleteObject) *delete_object;
static decltype(GetDC) *get_dc;
static decltype(GetDCEx) *get_dc_ex;
static decltype(ReleaseDC) *release_dc;
static decltype(ShowWindow) *show_window;

static GLuint APIENTRY gen_lists_watched(GLsizei count) {
    const GLuint name = gen_lists(count);
    add("display lists", name);
    return name;
}

static HGLRC WINAPI create_context_watched(HDC device) {
    HGLRC context = create_context(device);
    add("context", reinterpret_cast<u64>(context));
    return context;
}

// Display lists go with their context, of which there is one.
static BOOL WINAPI delete_context_watched(HGLRC context) {
    remove("context", reinterpret_cast<u64>(context));
    remove_all("display lists");
    return delete_context(context);
}

static HFONT WINAPI create_font_watched(int height, int width, int escapement, int orientation, int weight,
                                        DWORD italic, DWORD underline, DWORD strikeout, DWORD charset,
                                        DWORD out_precision, DWORD clip_precision, DWORD quality, DWORD pitch,
                                        LPCWSTR face) {
    HFONT font = create_font(height, width, escapement, orientation, weight, italic, underline, strikeout,
                             charset, out_precision, clip_precision, quality, pitch, face);
    add("drawing object", reinterpret_cast<u64>(font));
    return font;
}

static HFONT WINAPI create_font_narrow_watched(int height, int width, int escapement, int orientation,
                                               int weight, DWORD italic, DWORD underline, DWORD strikeout,
                                               DWORD charset, DWORD out_precision, DWORD clip_precision,
                                               DWORD quality, DWORD pitch, LPCSTR face) {
    HFONT font = create_font_narrow(height, width, escapement, orientation, weight, italic, underline,
                                    strikeout, charset, out_precision, clip_precision, quality, pitch, face);
    add("drawing object", reinterpret_cast<u64>(font));
    return font;
}

static HBRUSH WINAPI create_brush_watched(COLORREF color) {
    HBRUSH brush = create_brush(color);
    add("drawing object", reinterpret_cast<u64>(brush));
    return brush;
}

static BOOL WINAPI delete_object_watched(HGDIOBJ object) {
    remove("drawing object", reinterpret_cast<u64>(object));
    return delete_object(object);
}

// Device contexts of a window have the same handle each time, so they are only balanced.
static i64 device_contexts;

static HDC WINAPI get_dc_watched(HWND window) {
    const std::lock_guard<std::mutex> lock(live_mutex);
    ++device_contexts;
    return get_dc(window);
}

static HDC WINAPI get_dc_ex_watched(HWND window, HRGN clip, DWORD flags) {
    const std::lock_guard<std::mutex> lock(live_mutex);
    ++device_contexts;
    return get_dc_ex(window, clip, flags);
}

static int WINAPI release_dc_watched(HWND window, HDC device) {
    const std::lock_guard<std::mutex> lock(live_mutex);
    --device_contexts;
    return release_dc(window, device);
}

static BOOL WINAPI show_window_watched(HWND window, int command) {
    static bool watched = false;
    if (!watched) {
        watched = true;
        watch_entry_points();
    }
    return show_window(window, command);
}

void resource_watch() {
    gen_lists = import_replace("glGenLists", gen_lists_watched);
    create_context = import_replace("wglCreateContext", create_context_watched);
    delete_context = import_replace("wglDeleteContext", delete_context_watched);
    create_font = import_replace("CreateFontW", create_font_watched);
    create_font_narrow = import_replace("CreateFontA", create_font_narrow_watched);
    create_brush = import_replace("CreateSolidBrush", create_brush_watched);
    delete_object = import_replace("DeleteObject", delete_object_watched);
    get_dc = import_replace("GetDC", get_dc_watched);
    get_dc_ex = import_replace("GetDCEx", get_dc_ex_watched);
    release_dc = import_replace("ReleaseDC", release_dc_watched);
    show_window = import_replace("ShowWindow", show_window_watched);
}

std::map<std::string, i64> resources_live() {
    const std::lock_guard<std::mutex> lock(live_mutex);
    std::map<std::string, i64> counts;
    for (const auto &[kind, names] : live) {
        if (!names.empty()) {
            counts[kind] = static_cast<i64>(names.size());
        }
    }
    if (device_contexts != 0) {
        counts["device context"] = device_contexts;
    }
    return counts;
}

std::string resources_text() {
    std::string text;
    for (const auto &[kind, count] : resources_live()) {
        text += (text.empty() ? "" : ", ") + kind + " " + std::to_string(count);
    }
    return text;
}

i64 resources_made() {
    const std::lock_guard<std::mutex> lock(live_mutex);
    return made;
}

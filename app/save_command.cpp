#include "app/save_command.h"

#include <cassert>
#include <cwchar>
#include <utility>

#include "app/frontend.h"
#include "app/menu.h"
#include "gds/gds_write.h"
#include "image/image_pack.h"
#include "log/log.h"
#include "platform/thread_role.h"

// Length of a path without the extension of its file name; a "." in the name of a folder is not one. Every
// system takes "/" between folders too.
static size_t length_without_extension(const wchar_t *path) {
    const wchar_t *dot = std::wcsrchr(path, L'.');
    const wchar_t *separator = std::wcsrchr(path, PLATFORM_SEPARATOR[0]);
    const wchar_t *slash = std::wcsrchr(path, L'/');
    separator = separator == nullptr || (slash != nullptr && slash > separator) ? slash : separator;
    const bool has_extension = dot != nullptr && (separator == nullptr || dot > separator);
    return has_extension ? static_cast<size_t>(dot - path) : std::wcslen(path);
}

WString *stamped_folder_name(const wchar_t *path) {
    assert(path != nullptr);
    const PlatformTime now = platform_local_time();
    return wstring_make(L"%.*ls %04d-%02d-%02d %02d-%02d-%02d",
                        static_cast<int>(length_without_extension(path)), path, now.year, now.month, now.day,
                        now.hour, now.minute, now.second);
}

WString *output_folder_name(const AppState *state) {
    if (state->output_folder != nullptr) {
        return wstring_copy(wstring_text(state->output_folder));
    }
    return stamped_folder_name(wstring_text(state->process_path));
}

// Creates a folder to save into. The system's reason for a failure goes to diagnostic_write.
//   may_exist   with its missing parents, and it may be there; else it must be new and its parent be there
static PlatformFolderResult create_folder(const wchar_t *folder, bool may_exist) {
    PlatformFolderResult result = PLATFORM_FOLDER_CREATED;
    if (!may_exist) {
        result = platform_folder_create(folder);
    } else if (!platform_folder_create_all(folder)) {
        result = PLATFORM_FOLDER_FAILED;
    }
    if (result != PLATFORM_FOLDER_CREATED) {
        diagnostic_write(L"%ls: %ls", folder, platform_error_text());
    }
    return result;
}

i32 save_polygons(const AppState *state, const wchar_t *folder) {
    assert(state->layout != nullptr && state->stack != nullptr && folder != nullptr);
    const Owned<WString> path(wstring_make(L"%ls%lsPolygon.gds", folder, PLATFORM_SEPARATOR));
    return gds_write_polygons(state->layout, wstring_text(path.get()), state->stack->polygons);
}

// Writes every picture that it can. Returns 0, or 1 when one is missing.
static i32 save_pictures(const AppState *state, const wchar_t *path) {
    const Owned<PictureFolder> folder(picture_folder_open(path, state->image_format));
    for (i32 i = 0; i < state->image_count; ++i) {
        const Owned<PixelImage> unpacked(image_unpack(state->images[i]));
        picture_folder_save(folder.get(), unpacked.get(), i, wstring_text(state->images[i]->title));
    }
    picture_folder_report(folder.get());
    return folder->failed > 0 ? 1 : 0;
}

// The same where the worker has written them already.
static i32 tell_saved_pictures(const PictureFolder *folder) {
    picture_folder_report(folder);
    return folder->failed > 0 ? 1 : 0;
}

// Tells a failure in a message box and on the console.
static void report_failure(AppState *state, const wchar_t *format, const wchar_t *folder) {
    state->save_failed = 1;
    const Owned<WString> message(wstring_make(format, folder));
    message_show(wstring_text(message.get()));
    console_append(wstring_text(message.get()));
    console_append(L"\r\n");
    console_append(L"\r\n");
}

// The format of the message for a folder that could not be created; null when it was.
static const wchar_t *folder_failure_format(PlatformFolderResult result) {
    switch (result) {
        case PLATFORM_FOLDER_CREATED: return nullptr;
        case PLATFORM_FOLDER_EXISTS:
            return L"Output folder \"%ls\" already exists. Saving images failed. Try again.";
        case PLATFORM_FOLDER_PATH_NOT_FOUND:
            return L"Output folder \"%ls\" could not be created because the path doesn't exist anymore. "
                   L"Try again.";
        default: return L"Unknown error creating output folder \"%ls\". Saving images failed. Try again.";
    }
}

// Writes pictures and polygons into a folder. Returns false when a message has told of a failure.
static bool save_into(AppState *state, const wchar_t *folder, bool may_exist) {
    const wchar_t *failure = folder_failure_format(create_folder(folder, may_exist));
    if (failure != nullptr) {
        report_failure(state, failure, folder);
        return false;
    }
    console_printf_w(L"Saving images to folder \"%ls\". Please wait ...", folder);
    console_append(L"\r\n");
    const i32 pictures_failed = state->picture_folder != nullptr ? tell_saved_pictures(state->picture_folder)
                                                                 : save_pictures(state, folder);
    const i32 polygons_failed = save_polygons(state, folder);
    if (pictures_failed != 0) {
        report_failure(state, L"Error while saving image(s) to output folder \"%ls\"", folder);
        return false;
    }
    wstring_free(state->saved_folder);
    state->saved_folder = wstring_copy(folder);
    console_append(L"Saving images completed");
    console_append(L"\r\n");
    // The console says the same whether the polygons could be written or not, and names the file in the
    // plural; both are kept, since scripts compare the console text.
    state->save_failed = polygons_failed;
    console_append(L"Saved polygons to \"Polygons.gds\" in the image output directory");
    console_append(L"\r\n");
    console_append(L"\r\n");
    return true;
}

void save_images_command(AppState *state) {
    assert(state != nullptr && thread_role_fits(THREAD_WINDOW));
    if (state->run_active != 0) {
        return;
    }
    log_write(L"Saving images");
    menu_disable_all(state);
    console_append(L"--- Handling \"Save images\" command ---");
    console_append(L"\r\n");
    Owned<WString> folder(output_folder_name(state));
    bool may_exist = state->output_folder != nullptr;
    // A failure loses nothing: the user names another folder, which may be there already.
    while (!save_into(state, wstring_text(folder.get()), may_exist)) {
        diagnostics_show();
        Owned<WString> other(state->frontend->choose_folder(state, wstring_text(folder.get())));
        if (other == nullptr) {
            break;
        }
        folder = std::move(other);
        may_exist = true;
    }
    diagnostics_show();
    menu_update(state);
}

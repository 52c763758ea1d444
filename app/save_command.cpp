#include <cwchar>

#include "app/commands.h"
#include "gds/gds_write.h"
#include "image/image_pack.h"
#include "log/log.h"

// Length of a path without the extension of its file name; a "." in the name of a folder is not one. Every
// system takes "/" between folders too.
static size_t length_without_extension(const wchar_t *path) {
    const wchar_t *dot = std::wcsrchr(path, L'.');
    const wchar_t *separator = std::wcsrchr(path, PLATFORM_SEPARATOR[0]);
    const wchar_t *slash = std::wcsrchr(path, L'/');
    separator = separator == nullptr || (slash != nullptr && slash > separator) ? slash : separator;
    bool has_extension = dot != nullptr && (separator == nullptr || dot > separator);
    return has_extension ? static_cast<size_t>(dot - path) : std::wcslen(path);
}

WString *output_folder_name(const AppState *state) {
    if (state->output_folder != nullptr) {
        return wstring_copy(wstring_text(state->output_folder));
    }
    const wchar_t *path = wstring_text(state->process_path);
    PlatformTime now = platform_local_time();
    return wstring_format(L"%.*ls %04d-%02d-%02d %02d-%02d-%02d",
                          static_cast<int>(length_without_extension(path)), path, now.year, now.month,
                          now.day, now.hour, now.minute, now.second);
}

PlatformFolderResult output_folder_create(const AppState *state, const wchar_t *folder) {
    PlatformFolderResult result = PLATFORM_FOLDER_CREATED;
    if (state->output_folder == nullptr) {
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
    WString *path = wstring_format(L"%ls%lsPolygon.gds", folder, PLATFORM_SEPARATOR);
    i32 result = gds_write_polygons(state->layout, wstring_text(path), state->stack->polygons);
    wstring_free(path);
    return result;
}

// Where "/" separates folders it cannot be part of a file name, though a step may be named so.
static void replace_separators(wchar_t *file_name) {
    if (PLATFORM_SEPARATOR[0] != L'/') {
        return;
    }
    for (wchar_t *unit = file_name; *unit != 0; unit++) {
        if (*unit == L'/') {
            *unit = L'_';
        }
    }
}

// Returns 0, or 1 at the first picture that cannot be written.
static i32 save_pictures(const AppState *state, const wchar_t *folder) {
    const wchar_t *extension = state->image_format == IMAGE_PNG ? L"png" : L"bmp";
    for (i32 i = 0; i < state->image_count; i++) {
        const PixelImage *image = state->images[i];
        WString *name = wstring_format(L"%.03d %ls.%ls", i, wstring_text(image->title), extension);
        replace_separators(name->text);
        WString *path = wstring_format(L"%ls%ls%ls", folder, PLATFORM_SEPARATOR, wstring_text(name));
        PixelImage *unpacked = image_unpack(image);
        i32 result = unpacked != nullptr ? image_save(unpacked, wstring_text(path), state->image_format) : 1;
        image_free(unpacked);
        wstring_free(path);
        wstring_free(name);
        if (result != 0) {
            return 1;
        }
    }
    return 0;
}

// Tells a failure in a message box and on the console.
static void report_failure(AppState *state, const wchar_t *format, const wchar_t *folder) {
    state->save_failed = 1;
    WString *message = wstring_format(format, folder);
    message_show(wstring_text(message));
    console_append(wstring_text(message));
    console_append(L"\r\n");
    console_append(L"\r\n");
    wstring_free(message);
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

static void save_into(AppState *state, const wchar_t *folder) {
    const wchar_t *failure = folder_failure_format(output_folder_create(state, folder));
    if (failure != nullptr) {
        report_failure(state, failure, folder);
        return;
    }
    console_printf_w(L"Saving images to folder \"%ls\". Please wait ...", folder);
    console_append(L"\r\n");
    if (save_pictures(state, folder) != 0) {
        report_failure(state, L"Error while saving image(s) to output folder \"%ls\"", folder);
        return;
    }
    console_append(L"Saving images completed");
    console_append(L"\r\n");
    // The console says the same whether the polygons could be written or not, and names the file in the
    // plural; both are kept, since scripts compare the console text.
    state->save_failed = save_polygons(state, folder);
    console_append(L"Saved polygons to \"Polygons.gds\" in the image output directory");
    console_append(L"\r\n");
    console_append(L"\r\n");
}

void save_images_command(AppState *state) {
    if (state->run_active != 0) {
        return;
    }
    log_write(L"Saving images");
    menu_disable_all(state);
    console_append(L"--- Handling \"Save images\" command ---");
    console_append(L"\r\n");
    WString *folder = output_folder_name(state);
    save_into(state, wstring_text(folder));
    wstring_free(folder);
    diagnostics_show();
    menu_update(state);
}

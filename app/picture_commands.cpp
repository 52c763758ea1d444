#include "app/picture_commands.h"

#include <cassert>
#include <cwchar>
#include <cwctype>

#include "app/picture_name.h"
#include "image/image_on_white.h"
#include "image/image_pack.h"
#include "log/log.h"
#include "platform/thread_role.h"

const PictureMenuItem PICTURE_MENU_ITEMS[PICTURE_MENU_COUNT] = {
    {PICTURE_COPY, L"&Copy picture"},
    {PICTURE_SAVE, L"&Save this picture as..."},
    {PICTURE_FINE, L"&Fine pictures"},
};

const wchar_t *const PICTURE_SCALE_LABEL = L"&Vertical scale";

// clang-format off
const PictureMenuItem PICTURE_SCALE_ITEMS[VERTICAL_SCALE_COUNT] = {
    {PICTURE_SCALE, L"&1"},
    {PICTURE_SCALE + 1, L"&2"},
    {PICTURE_SCALE + 2, L"&5"},
    {PICTURE_SCALE + 3, L"1&0"},
    {PICTURE_SCALE + 4, L"5&0"},
};
// clang-format on

const wchar_t *const PICTURE_SAVE_TITLE = L"Save this picture as";

const PictureFileKind PICTURE_FILE_KINDS[IMAGE_FORMAT_COUNT] = {
    {L"BMP Files (*.bmp)", L"*.bmp"},
    {L"PNG Files (*.png)", L"*.png"},
};

static bool is_scale(i32 command) {
    return command >= PICTURE_SCALE && command < PICTURE_SCALE + VERTICAL_SCALE_COUNT;
}

bool picture_command_exists(i32 command) {
    return command == PICTURE_COPY || command == PICTURE_SAVE || command == PICTURE_FINE || is_scale(command);
}

// The place of the picture on show in the list, or -1. Its number is read first: the worker counts a picture
// before it shows it.
static i32 index_on_show(const AppState *state) {
    const i32 current = state->current_image;
    const bool there = current >= 0 && current < state->image_count;
    return there && state->images[current] != nullptr ? current : -1;
}

bool picture_command_enabled(const AppState *state, i32 command) {
    assert(state != nullptr && picture_command_exists(command) && thread_role_fits(THREAD_WINDOW));
    return (command != PICTURE_COPY && command != PICTURE_SAVE) || index_on_show(state) >= 0;
}

bool picture_command_checked(const AppState *state, i32 command) {
    assert(state != nullptr && picture_command_exists(command) && thread_role_fits(THREAD_WINDOW));
    if (is_scale(command)) {
        return VERTICAL_SCALES[command - PICTURE_SCALE].factor == picture_wish_scale(state);
    }
    return command == PICTURE_FINE && picture_wish_fine(state);
}

const wchar_t *picture_command_choose(AppState *state, i32 command, const wchar_t **value) {
    assert(state != nullptr && value != nullptr && thread_role_fits(THREAD_WINDOW));
    if (command == PICTURE_FINE) {
        picture_wish_choose_fine(state, !picture_wish_fine(state));
        *value = picture_wish_fine_text(state);
        return PICTURE_FINE_KEY;
    }
    if (is_scale(command)) {
        picture_wish_choose_scale(state, command - PICTURE_SCALE);
        *value = picture_wish_scale_text(state);
        return PICTURE_SCALE_KEY;
    }
    return nullptr;
}

PixelImage *picture_to_copy(const AppState *state) {
    assert(state != nullptr && thread_role_fits(THREAD_WINDOW));
    const i32 index = index_on_show(state);
    PixelImage *picture = index >= 0 ? image_unpack(state->images[index]) : nullptr;
    if (picture != nullptr && !picture->transparent) {
        image_lay_on_white(picture);
    }
    return picture;
}

static void tell_failure(const wchar_t *text) {
    message_show(text);
    console_append(text);
    console_append(L"\r\n");
    console_append(L"\r\n");
}

void picture_copy_failed() {
    tell_failure(L"The picture could not be copied: the clipboard does not take it");
}

i32 picture_format_of(const wchar_t *path) {
    assert(path != nullptr);
    const size_t length = std::wcslen(path);
    for (i32 format = 0; format < IMAGE_FORMAT_COUNT; ++format) {
        const wchar_t *extension = IMAGE_FORMATS[format].extension;
        const size_t size = std::wcslen(extension);
        size_t same = 0;
        while (same < size && size <= length &&
               static_cast<wchar_t>(std::towlower(static_cast<wint_t>(path[length - size + same]))) ==
                   extension[same]) {
            ++same;
        }
        if (same == size) {
            return format;
        }
    }
    return IMAGE_FORMAT_COUNT;
}

// Returns false when a message has told of a failure.
static bool save_as(const PixelImage *picture, const wchar_t *path, ImageFormat chosen) {
    const i32 named = picture_format_of(path);
    const ImageFormat format = named < IMAGE_FORMAT_COUNT ? static_cast<ImageFormat>(named) : chosen;
    wchar_t reason[IMAGE_REASON_SIZE] = L"there is no memory for it";
    if (picture != nullptr && image_try_save(picture, path, format, reason) == 0) {
        log_write(L"Saved the picture on show as %ls", path);
        return true;
    }
    const Owned<WString> text(wstring_make(L"The picture could not be saved as \"%ls\": %ls", path, reason));
    tell_failure(wstring_text(text.get()));
    return false;
}

void picture_save_command(AppState *state, PictureSaveDialog ask) {
    assert(state != nullptr && ask != nullptr && thread_role_fits(THREAD_WINDOW));
    const i32 index = index_on_show(state);
    if (index < 0) {
        return;
    }
    log_write(L"Saving this picture");
    // Both belong to this command: while the user is being asked, the list may come to its end.
    const WideText name =
        picture_name(index, wstring_text(state->images[index]->title),
                     IMAGE_FORMATS[state->image_format].extension, picture_name_rules(), nullptr);
    const Owned<PixelImage> picture(image_unpack(state->images[index]));
    bool saved = false;
    while (!saved) {
        ImageFormat format = state->image_format;
        const Owned<WString> path(ask(state, name.get(), &format));
        if (path == nullptr) {
            break;
        }
        saved = save_as(picture.get(), wstring_text(path.get()), format);
    }
}

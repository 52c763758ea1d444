// Windows tells for a whole text which faces it would take, not for a letter; these come with it and have the
// letters that Arial lacks.
#include "platform/text_family.h"

#include <windows.h>

#include <cstring>

struct Family {
    const char *name;
    const wchar_t *wide_name;
};

static constexpr Family FAMILIES[] = {
    {"Segoe UI", L"Segoe UI"},
    {"Segoe UI Symbol", L"Segoe UI Symbol"},
    {"Yu Gothic", L"Yu Gothic"},
    {"MS Gothic", L"MS Gothic"},
    {"Microsoft YaHei", L"Microsoft YaHei"},
    {"SimSun", L"SimSun"},
    {"Malgun Gothic", L"Malgun Gothic"},
    {"Nirmala UI", L"Nirmala UI"},
    {"Leelawadee UI", L"Leelawadee UI"},
};

// A family that is not installed is given as another, which may have the letter; its name is then that of a
// face that is found by it all the same.
static bool family_has(const wchar_t *name, wchar_t letter, bool bold) {
    HDC device = CreateCompatibleDC(nullptr);
    HFONT font = CreateFontW(16, 0, 0, 0, bold ? FW_BOLD : FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET,
                             OUT_TT_PRECIS, CLIP_DEFAULT_PRECIS, ANTIALIASED_QUALITY, DEFAULT_PITCH, name);
    bool has = false;
    if (device != nullptr && font != nullptr) {
        HGDIOBJ previous = SelectObject(device, font);
        WORD glyph = 0xFFFF;
        const DWORD count = GetGlyphIndicesW(device, &letter, 1, &glyph, GGI_MARK_NONEXISTING_GLYPHS);
        has = count == 1 && glyph != 0xFFFF;
        SelectObject(device, previous);
    }
    if (font != nullptr) {
        DeleteObject(font);
    }
    if (device != nullptr) {
        DeleteDC(device);
    }
    return has;
}

bool platform_text_family(u32 character, bool bold, char family[PLATFORM_FAMILY_SIZE]) {
    if (character > 0xFFFF) {
        return false;
    }
    for (const Family &candidate : FAMILIES) {
        if (family_has(candidate.wide_name, static_cast<wchar_t>(character), bold)) {
            std::strcpy(family, candidate.name);
            return true;
        }
    }
    return false;
}

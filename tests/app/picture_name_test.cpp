#include "app/picture_name.h"

#include <gtest/gtest.h>

#include "log/text.h"
#include "tests/support/test_support.h"

struct NamedPicture {
    std::wstring name;
    bool shortened;
};

static NamedPicture name_of(i32 number, const std::wstring &title, const wchar_t *extension,
                            PictureNameRules rules) {
    bool shortened = false;
    const WideText name = picture_name(number, title.c_str(), extension, rules, &shortened);
    return {name.get(), shortened};
}

static std::wstring widened(const std::string &bytes) {
    const WideText wide = text_widen(bytes.c_str());
    std::wstring result = wide.get();
    return result;
}

static std::string times(i32 count, const std::string &part) {
    std::string text;
    for (i32 i = 0; i < count; ++i) {
        text += part;
    }
    return text;
}

TEST(PictureName, FitsTheFileSystem) {
    const struct {
        i32 number;
        const wchar_t *title;
        const wchar_t *extension;
        const wchar_t *on_linux, *on_windows;
    } cases[] = {
        {0, L"The substrate", L".bmp", L"000 The substrate.bmp", L"000 The substrate.bmp"},
        {12, L"x", L".png", L"012 x.png", L"012 x.png"},
        {3, L"x", L".csv", L"003 x.csv", L"003 x.csv"},
        {1000, L"x", L".bmp", L"1000 x.bmp", L"1000 x.bmp"},
        {1, L"Si/SiO2", L".bmp", L"001 Si_SiO2.bmp", L"001 Si_SiO2.bmp"},
        {1, L"../x", L".bmp", L"001 .._x.bmp", L"001 .._x.bmp"},
        {1, L"a\\b<c>d:e\"f|g?h*i", L".bmp", L"001 a\\b<c>d:e\"f|g?h*i.bmp", L"001 a_b_c_d_e_f_g_h_i.bmp"},
        {1, L"a\x1b[31m\tb\n\x7f", L".bmp", L"001 a_[31m_b__.bmp", L"001 a_[31m_b__.bmp"},
        {1, L"ends in a dot. ", L".bmp", L"001 ends in a dot. .bmp", L"001 ends in a dot. .bmp"},
        {1, L"", L".bmp", L"001 .bmp", L"001 .bmp"},
        {1, L"\u00E9\u65E5", L".bmp", L"001 \u00E9\u65E5.bmp", L"001 \u00E9\u65E5.bmp"},
    };
    for (const auto &c : cases) {
        const NamedPicture on_linux = name_of(c.number, c.title, c.extension, PICTURE_NAME_LINUX);
        const NamedPicture on_windows = name_of(c.number, c.title, c.extension, PICTURE_NAME_WINDOWS);
        EXPECT_EQ(on_linux.name, c.on_linux);
        EXPECT_EQ(on_windows.name, c.on_windows);
        EXPECT_FALSE(on_linux.shortened);
        EXPECT_FALSE(on_windows.shortened);
    }
}

// 255 less "001 " and ".bmp" leave 247 for the title.
TEST(PictureName, IsCutBetweenCharacters) {
    const std::wstring pair = {static_cast<wchar_t>(0xD83D), static_cast<wchar_t>(0xDE00)};  // one character
    const struct {
        const char *what;
        std::wstring title;
        size_t linux_units, windows_units;  // of the title that stay
    } cases[] = {
        {"just fits", std::wstring(247, L'x'), 247, 247},
        {"one too many", std::wstring(248, L'x'), 247, 247},
        {"two bytes each", std::wstring(200, L'\u00E9'), 123, 200},
        {"three bytes each", std::wstring(100, L'\u65E5'), 82, 100},
        // "e" with an accent has two bytes, which text_widen makes two units of three bytes each: 41 of six.
        {"widened bytes", widened(times(200, "\xC3\xA9")), 82, 246},
        // The same shifted by a letter: 246 bytes and 246 units remain, both for whole characters.
        {"widened bytes behind a letter", L"x" + widened(times(200, "\xC3\xA9")), 83, 247},
        // Three bytes each become nine: 27 characters are 243.
        {"widened longer bytes", widened(times(100, "\xE6\x97\xA5")), 81, 246},
        {"a pair over the edge", std::wstring(246, L'x') + pair, 246, 246},
        {"letters without a beginning", widened(times(300, "\xA9")), 79, 244},
        // Bytes that are no text count as one each.
        {"bytes", std::wstring(300, static_cast<wchar_t>(0xDCFF)), 247, 247},
    };
    for (const auto &c : cases) {
        for (const PictureNameRules rules : {PICTURE_NAME_LINUX, PICTURE_NAME_WINDOWS}) {
            const size_t units = rules == PICTURE_NAME_LINUX ? c.linux_units : c.windows_units;
            const NamedPicture picture = name_of(1, c.title, L".bmp", rules);
            const std::wstring expected = L"001 " + c.title.substr(0, units) + L".bmp";
            EXPECT_EQ(picture.name.size(), expected.size()) << c.what << ", rules " << rules;
            EXPECT_EQ(picture.name, expected) << c.what << ", rules " << rules;
            EXPECT_EQ(units < c.title.size(), picture.shortened) << c.what << ", rules " << rules;
        }
    }
}

TEST(PictureName, ALongNameCanBeWritten) {
    const TemporaryFolder folder;
    std::vector<std::wstring> titles = {std::wstring(400, L'x')};
#ifndef _WIN32  // Wine keeps the files of Windows in a file system that counts bytes
    titles.push_back(widened(times(300, "\xC3\xA9")));
#endif
    for (const std::wstring &title : titles) {
        const NamedPicture picture = name_of(1, title, L".png", picture_name_rules());
        EXPECT_TRUE(picture.shortened);
        test_file_write(folder.file(picture.name), "x");
        EXPECT_TRUE(test_file_exists(folder.file(picture.name)));
    }
}

TEST(PictureNameNumber, KnowsItsOwnNamesOnly) {
    const struct {
        const wchar_t *name;
        const wchar_t *extension;
        i32 number;
    } cases[] = {
        {L"000 The substrate.bmp", L".bmp", 0},
        {L"000 The substrate.png", L".png", 0},
        {L"007 Cross section after A deposition.bmp", L".bmp", 7},
        {L"1234 Cross section after x.png", L".png", 1234},
        {L"000 Cross section after A deposition.bmp", L".bmp", -1},  // the first picture is the substrate
        {L"001 The substrate.bmp", L".bmp", -1},
        {L"000 The substrate 2.bmp", L".bmp", -1},
        {L"01 Cross section after x.bmp", L".bmp", -1},
        {L"0001 Cross section after x.bmp", L".bmp", -1},
        {L"001 holiday.png", L".png", -1},
        {L"001Cross section after x.bmp", L".bmp", -1},
        {L"001 Cross section after x.jpg", L".bmp", -1},
        {L"001 Cross section after x", L".bmp", -1},
        {L"99999999999 Cross section after x.bmp", L".bmp", -1},
        {L"004 Cross section after x.glb", L".glb", 4},
        {L"004 Cross section after x.glb", L".bmp", -1},
        {L"001", L".bmp", -1},
        {L"", L".bmp", -1},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(picture_name_number(c.name, c.extension), c.number) << test_utf8(c.name);
    }
}

TEST(PictureNamesCheck, TellsTheStepsWhoseNamesAreCut) {
    char long_title[302];
    std::fill(long_title, long_title + 301, 'x');
    long_title[301] = 0;
    char short_title[] = "A deposition";
    ProcessStep substrate = {};
    ProcessStep dump = {};
    ProcessStep a = {};
    ProcessStep b = {};
    substrate.kind = STEP_DEPOSITION;
    dump.kind = STEP_DUMP;
    a.kind = STEP_DEPOSITION;
    a.title = short_title;
    b.kind = STEP_ETCH;
    b.title = long_title;
    ProcessStep *items[] = {&substrate, &dump, &a, &b};
    StepList list = {};
    list.items = items;
    list.count = 4;
    Stack stack = {};
    stack.steps = &list;
    const ConsoleCapture capture;
    picture_names_check(&stack, L".png");
    // Two pictures come before it, since a dump makes none. "Cross section after " has 20 of the 247 letters.
    EXPECT_EQ(capture.diagnostics(),
              "step 3 has a title too long for a file name: its picture will be \"002 Cross section after " +
                  std::string(227, 'x') + ".png\"\n");
}

// The picture's menu without a window: what is greyed and checked, the copy, and saving one picture.
#include "app/picture_commands.h"

#include <gtest/gtest.h>

#include <cstring>
#include <set>

#include "app/commands.h"
#include "app/picture_name.h"
#include "image/image_pack.h"
#include "tests/app/app_inputs.h"
#include "tests/app/test_frontend.h"

// Pictures of 2 x 1 pixels, one for each title, the last one on show.
struct PictureFixture {
    TemporaryFolder folder;
    TestFrontEnd front;
    AppState *state = &front.state;

    explicit PictureFixture(const std::vector<std::wstring> &titles) {
        images_create(state, static_cast<i32>(titles.size()));
        for (const std::wstring &title : titles) {
            const i32 count = state->image_count;
            PixelImage *image = image_create(2, 1, title.c_str());
            // Blue, green, red, alpha: an opaque pixel, and a translucent one.
            const u8 pixels[8] = {10, 20, static_cast<u8>(30 + count), 255, 0, 100, 200, 51};
            std::memcpy(image->pixels, pixels, sizeof pixels);
            image_pack(image);
            state->images[count] = image;
            state->image_count = count + 1;
            state->current_image = count;
        }
    }
};

TEST(PictureMenu, CopyingAndSavingNeedAPicture) {
    const PictureFixture none({});
    EXPECT_FALSE(picture_command_enabled(none.state, PICTURE_COPY));
    EXPECT_FALSE(picture_command_enabled(none.state, PICTURE_SAVE));
    EXPECT_TRUE(picture_command_enabled(none.state, PICTURE_FINE));
    for (const PictureMenuItem &item : PICTURE_SCALE_ITEMS) {
        EXPECT_TRUE(picture_command_enabled(none.state, item.command));
    }
    EXPECT_EQ(picture_to_copy(none.state), nullptr);
}

TEST(PictureMenu, CopyingAndSavingAreThereWithAPicture) {
    const PictureFixture one({L"The substrate"});
    EXPECT_TRUE(picture_command_enabled(one.state, PICTURE_COPY));
    EXPECT_TRUE(picture_command_enabled(one.state, PICTURE_SAVE));
    one.state->current_image = -1;
    EXPECT_FALSE(picture_command_enabled(one.state, PICTURE_COPY)) << "none is on show";
    one.state->current_image = 1;
    EXPECT_FALSE(picture_command_enabled(one.state, PICTURE_SAVE)) << "it is not counted yet";
    one.state->current_image = 0;
}

// The commands that are checked, in the order of the menu.
static std::vector<i32> checked(const AppState *state) {
    std::vector<i32> commands;
    for (const PictureMenuItem &item : PICTURE_MENU_ITEMS) {
        if (picture_command_checked(state, item.command)) {
            commands.push_back(item.command);
        }
    }
    for (const PictureMenuItem &item : PICTURE_SCALE_ITEMS) {
        if (picture_command_checked(state, item.command)) {
            commands.push_back(item.command);
        }
    }
    return commands;
}

TEST(PictureMenu, ChecksWhatHoldsFromTheNextRunOn) {
    TestFrontEnd front;
    AppState *state = &front.state;
    EXPECT_EQ(checked(state), (std::vector<i32>{PICTURE_SCALE}));
    const wchar_t *value = nullptr;
    EXPECT_STREQ(picture_command_choose(state, PICTURE_FINE, &value), L"fine");
    EXPECT_STREQ(value, L"1");
    EXPECT_STREQ(picture_command_choose(state, PICTURE_SCALE + 4, &value), L"vertical-scale");
    EXPECT_STREQ(value, L"50");
    EXPECT_EQ(checked(state), (std::vector<i32>{PICTURE_FINE, PICTURE_SCALE + 4}));
    EXPECT_STREQ(picture_command_choose(state, PICTURE_FINE, &value), L"fine");
    EXPECT_STREQ(value, L"0");
    EXPECT_EQ(checked(state), (std::vector<i32>{PICTURE_SCALE + 4}));
    EXPECT_EQ(picture_command_choose(state, PICTURE_COPY, &value), nullptr);
    EXPECT_EQ(picture_command_choose(state, PICTURE_SAVE, &value), nullptr);
    state->picture_wish = {};
    state->picture_style.vertical_scale = 3.0F;  // from the command line
    EXPECT_EQ(checked(state), (std::vector<i32>{})) << "none of the menu's scales holds";
}

// What a label shows, and its letter.
static std::pair<std::string, char> parts_of(const wchar_t *label) {
    std::string text = test_utf8(label);
    const size_t at = text.find('&');
    return {text.substr(0, at) + text.substr(at + 1), static_cast<char>(std::toupper(text[at + 1]))};
}

TEST(PictureMenu, EntriesHaveLetters) {
    std::set<char> letters;
    for (const PictureMenuItem &item : PICTURE_MENU_ITEMS) {
        EXPECT_TRUE(letters.insert(parts_of(item.label).second).second) << item.label;
    }
    EXPECT_TRUE(letters.insert(parts_of(PICTURE_SCALE_LABEL).second).second);
    for (i32 i = 0; i < VERTICAL_SCALE_COUNT; ++i) {
        EXPECT_EQ(PICTURE_SCALE_ITEMS[i].command, PICTURE_SCALE + i);
        EXPECT_EQ(parts_of(PICTURE_SCALE_ITEMS[i].label).first, test_utf8(VERTICAL_SCALES[i].text));
        EXPECT_EQ(static_cast<f32>(std::atof(parts_of(PICTURE_SCALE_ITEMS[i].label).first.c_str())),
                  VERTICAL_SCALES[i].factor);
    }
}

TEST(PictureToCopy, IsThePictureOnShowLaidOnWhite) {
    const PictureFixture pictures({L"The substrate", L"Cross section after A", L"Cross section after B"});
    pictures.state->current_image = 1;
    const Owned<PixelImage> copy(picture_to_copy(pictures.state));
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->width, 2);
    EXPECT_EQ(copy->height, 1);
    // 51 of 255 is a fifth: 204 of white are left beside a fifth of 0, 100 and 200.
    const u8 expected[8] = {10, 20, 31, 255, 204, 224, 244, 255};
    EXPECT_EQ(std::memcmp(copy->pixels, expected, sizeof expected), 0);
    EXPECT_NE(pictures.state->images[1]->packed, nullptr) << "the picture stays as it was";
}

TEST(PictureToCopy, ATransparentPictureKeepsItsAlpha) {
    const PictureFixture pictures({L"The substrate"});
    pictures.state->current_image = 0;
    pictures.state->images[0]->transparent = true;
    const Owned<PixelImage> copy(picture_to_copy(pictures.state));
    const Owned<PixelImage> original(image_unpack(pictures.state->images[0]));
    ASSERT_NE(copy, nullptr);
    EXPECT_TRUE(copy->transparent);
    EXPECT_EQ(std::memcmp(copy->pixels, original->pixels, 8), 0);
    EXPECT_NE(original->pixels[7], 255);
}

TEST(PictureFormatOf, ByTheExtensionWhateverItsCase) {
    EXPECT_EQ(picture_format_of(L"a.png"), IMAGE_PNG);
    EXPECT_EQ(picture_format_of(L"C:\\x.bmp\\000 The substrate.PnG"), IMAGE_PNG);
    EXPECT_EQ(picture_format_of(L"/x.png/b.BMP"), IMAGE_BMP);
    for (const wchar_t *path : {L"", L"png", L"apng", L"a.pn", L"a.png.txt", L"a.bmp/b", L"a.", L"a.jpg"}) {
        EXPECT_EQ(picture_format_of(path), IMAGE_FORMAT_COUNT) << path;
    }
}

// Answers of the person who is asked where to save, one after the other, then cancelled.
struct SaveAnswer {
    std::wstring path;
    ImageFormat format;
};

static std::vector<SaveAnswer> answers;
static std::vector<std::string> proposals;

static WString *answer(AppState *, const wchar_t *name, ImageFormat *format) {
    proposals.push_back(test_utf8(name) + " " + IMAGE_FORMATS[*format].name);
    if (answers.empty()) {
        return nullptr;
    }
    const SaveAnswer first = answers.front();
    answers.erase(answers.begin());
    *format = first.format;
    return wstring_copy(first.path.c_str());
}

static void save_with(AppState *state, const std::vector<SaveAnswer> &given) {
    answers = given;
    proposals.clear();
    picture_save_command(state, answer);
    EXPECT_TRUE(answers.empty()) << "asked too seldom";
}

// The bytes that "Save images" writes for a picture.
static std::string saved_bytes(const PixelImage *picture, const TemporaryFolder &folder, ImageFormat format) {
    const Owned<PixelImage> image(image_unpack(picture));
    const std::wstring path = folder.file(L"expected");
    EXPECT_EQ(image_save(image.get(), path.c_str(), format), 0);
    return test_file_read(path);
}

TEST(PictureSave, WritesThePictureOnShowInTheFormatOfItsName) {
    const PictureFixture pictures({L"The substrate", L"Cross section after A?B/C", L"Cross section after D"});
    pictures.state->current_image = 1;
    const struct {
        const wchar_t *name;
        ImageFormat chosen, written;
    } cases[] = {{L"a.png", IMAGE_BMP, IMAGE_PNG},
                 {L"b.bmp", IMAGE_PNG, IMAGE_BMP},
                 {L"c.BMP", IMAGE_BMP, IMAGE_BMP},
                 {L"d.dat", IMAGE_PNG, IMAGE_PNG},
                 {L"e", IMAGE_BMP, IMAGE_BMP}};
    for (const auto &c : cases) {
        const std::wstring path = pictures.folder.file(c.name);
        save_with(pictures.state, {{path, c.chosen}});
        EXPECT_EQ(test_file_read(path), saved_bytes(pictures.state->images[1], pictures.folder, c.written))
            << c.name;
    }
    const WideText proposed =
        picture_name(1, L"Cross section after A?B/C", L".bmp", picture_name_rules(), nullptr);
    EXPECT_EQ(proposals, (std::vector<std::string>{test_utf8(proposed.get()) + " bmp"}));
    EXPECT_EQ(pictures.front.messages(), "");
    EXPECT_EQ(pictures.front.console(), "");
}

TEST(PictureSave, CancelledWritesNothing) {
    const PictureFixture pictures({L"The substrate"});
    save_with(pictures.state, {});
    EXPECT_EQ(proposals, (std::vector<std::string>{"000 The substrate.bmp bmp"}));
    EXPECT_EQ(test_folder_list(pictures.folder.path).size(), 0U);
    EXPECT_EQ(pictures.front.messages() + pictures.front.console(), "");
}

TEST(PictureSave, NothingIsAskedWithoutAPicture) {
    const PictureFixture pictures({});
    save_with(pictures.state, {});
    EXPECT_TRUE(proposals.empty());
}

TEST(PictureSave, AFailureSaysWhyLosesNothingAndAsksAgain) {
    const PictureFixture pictures({L"The substrate"});
    const std::wstring missing = pictures.folder.file(L"missing/a.png");
    const std::wstring good = pictures.folder.file(L"good.png");
    save_with(pictures.state, {{missing, IMAGE_PNG}, {good, IMAGE_PNG}});
    EXPECT_EQ(proposals.size(), 2U);
    const std::string start = "The picture could not be saved as \"" + test_utf8(missing) + "\": ";
    const std::string message = pictures.front.messages();
    ASSERT_EQ(message.substr(0, start.size()), start);
    EXPECT_GT(message.size(), start.size() + 1) << "the system's reason";
    EXPECT_EQ(pictures.front.console(), message.substr(0, message.size() - 1) + "\r\n\r\n");
    EXPECT_EQ(test_folder_list(pictures.folder.path), (std::vector<std::wstring>{L"good.png"}));
}

TEST(PictureSave, AFileThatCannotBeReplacedStays) {
    const PictureFixture pictures({L"The substrate"});
    const std::wstring path = pictures.folder.file(L"a.png");
    ASSERT_EQ(platform_folder_create(path.c_str()), PLATFORM_FOLDER_CREATED);
    save_with(pictures.state, {{path, IMAGE_PNG}});
    EXPECT_NE(pictures.front.messages(), "");
    EXPECT_EQ(test_folder_list(pictures.folder.path), (std::vector<std::wstring>{L"a.png"}))
        << "no temporary file is left";
}

// While the user is being asked a run goes on, whose pictures are shown; or the window is closed.
static PictureFixture *shared_pictures = nullptr;

static WString *answer_late(AppState *state, const wchar_t *, ImageFormat *) {
    images_free(state);
    return wstring_copy(shared_pictures->folder.file(L"late.bmp").c_str());
}

TEST(PictureSave, SavesWhatWasOnShowWhenItWasAskedFor) {
    PictureFixture pictures({L"The substrate", L"Cross section after A"});
    pictures.state->current_image = 0;
    const std::string expected = saved_bytes(pictures.state->images[0], pictures.folder, IMAGE_BMP);
    shared_pictures = &pictures;
    picture_save_command(pictures.state, answer_late);
    EXPECT_EQ(test_file_read(pictures.folder.file(L"late.bmp")), expected);
}

#include "app/picture_options.h"

#include <gtest/gtest.h>

#include "process/color_table.h"
#include "tests/app/test_frontend.h"
#include "tests/support/test_support.h"

static std::string fault_of(PictureOption option, const char *value, PictureOptions *options) {
    const char *fault = picture_option_read(options, option, value);
    return fault != nullptr ? fault : "";
}

TEST(PictureOptionRead, TakesWhatIsInRange) {
    PictureOptions options = NO_PICTURE_OPTIONS;
    EXPECT_EQ(fault_of(PICTURE_OPTION_WIDTH, "320", &options), "");
    EXPECT_EQ(options.width, 320);
    EXPECT_EQ(fault_of(PICTURE_OPTION_WIDTH, "16384", &options), "");
    EXPECT_EQ(options.width, 16384);
    EXPECT_EQ(fault_of(PICTURE_OPTION_QUALITY, "fine", &options), "");
    EXPECT_TRUE(options.fine);
    EXPECT_EQ(fault_of(PICTURE_OPTION_QUALITY, "plain", &options), "");
    EXPECT_FALSE(options.fine);
    EXPECT_EQ(fault_of(PICTURE_OPTION_Z_SCALE, "0.1", &options), "");
    EXPECT_EQ(options.vertical_scale, 0.1F);
    EXPECT_EQ(fault_of(PICTURE_OPTION_Z_SCALE, "1000", &options), "");
    EXPECT_EQ(options.vertical_scale, 1000.0F);
    EXPECT_EQ(fault_of(PICTURE_OPTION_Z_SCALE, "2.5", &options), "");
    EXPECT_EQ(options.vertical_scale, 2.5F);
    EXPECT_EQ(fault_of(PICTURE_OPTION_TITLE, "a title", &options), "");
    EXPECT_STREQ(options.title, "a title");
    EXPECT_EQ(fault_of(PICTURE_OPTION_BACKGROUND, "none", &options), "");
    EXPECT_STREQ(options.background, "none");
}

TEST(PictureOptionRead, RefusesTheRest) {
    PictureOptions options = NO_PICTURE_OPTIONS;
    for (const char *value :
         {"", "319", "16385", "-800", "+800", "800px", " 800", "1e3", "800.0", "99999999999"}) {
        EXPECT_EQ(fault_of(PICTURE_OPTION_WIDTH, value, &options),
                  "--width takes a number of pixels from 320 to 16384, not")
            << value;
    }
    for (const char *value : {"", "Fine", "best"}) {
        EXPECT_EQ(fault_of(PICTURE_OPTION_QUALITY, value, &options), "--quality takes plain or fine, not");
    }
    for (const char *value :
         {"", ".", "0", "0.09", "1000.1", "-1", "nan", "inf", "1,5", "2x", "1.2.3", "1e2"}) {
        EXPECT_EQ(fault_of(PICTURE_OPTION_Z_SCALE, value, &options),
                  "--z-scale takes a number from 0.1 to 1000, not")
            << value;
    }
}

// A colour table with two names.
struct PictureOptionsApply : public ::testing::Test {
    PictureOptionsApply() {
        test_file_write(folder.file(L"colors.txt"), "navy #000080 0, 0, 128\nsnow #FFFAFA 255, 250, 250\n");
        EXPECT_EQ(color_table_load_file(folder.file(L"colors.txt").c_str()), 0);
    }

    std::string apply(const PictureOptions &options) {
        const Owned<WString> fault(picture_options_apply(&options, &front.state));
        return fault != nullptr ? test_utf8(wstring_text(fault.get())) : "";
    }

    TemporaryFolder folder;
    TestFrontEnd front;
};

TEST_F(PictureOptionsApply, WithoutOptionsPicturesArePlain) {
    EXPECT_EQ(apply(NO_PICTURE_OPTIONS), "");
    const PictureStyle &style = front.state.picture_style;
    EXPECT_EQ(style.width, 1920);
    EXPECT_EQ(style.detail_scale, 1.0F);
    EXPECT_FALSE(style.fine);
    EXPECT_EQ(style.vertical_scale, 1.0F);
    EXPECT_EQ(style.title, nullptr);
    for (const f32 part : style.background) {
        EXPECT_EQ(part, 1.0F);
    }
}

TEST_F(PictureOptionsApply, AllOfThem) {
    const PictureOptions options = {960, true, 10.0F, "\xC5\x81\xC3\xB3", "navy", true, true};
    EXPECT_EQ(apply(options), "");
    const PictureStyle &style = front.state.picture_style;
    EXPECT_EQ(style.width, 960);
    EXPECT_EQ(style.detail_scale, 0.5F);
    EXPECT_TRUE(style.fine);
    EXPECT_EQ(style.vertical_scale, 10.0F);
    ASSERT_NE(style.title, nullptr);
    EXPECT_EQ(std::wstring(style.title), L"\u0141\u00F3");
    EXPECT_EQ(style.background[0], 0.0F);
    EXPECT_EQ(style.background[2], 128.0F / 255.0F);
    EXPECT_EQ(style.background[3], 1.0F);
}

TEST_F(PictureOptionsApply, ColoursByNumberAndNone) {
    PictureOptions options = NO_PICTURE_OPTIONS;
    options.background = "#20fF00";
    EXPECT_EQ(apply(options), "");
    EXPECT_EQ(front.state.picture_style.background[0], 32.0F / 255.0F);
    EXPECT_EQ(front.state.picture_style.background[1], 1.0F);
    EXPECT_EQ(front.state.picture_style.background[2], 0.0F);
    EXPECT_EQ(front.state.picture_style.background[3], 1.0F);
    options.background = "none";
    EXPECT_EQ(apply(options), "");
    EXPECT_EQ(front.state.picture_style.background[3], 0.0F);
}

TEST_F(PictureOptionsApply, ColoursThatAreNotThere) {
    PictureOptions options = NO_PICTURE_OPTIONS;
    options.background = "navi";
    EXPECT_EQ(apply(options), "--background: unknown color \"navi\"; did you mean \"navy\"?");
    for (const char *name : {"", "#12345", "#1234567", "#12345g", "verydarkred"}) {
        options.background = name;
        EXPECT_EQ(apply(options), "--background: unknown color \"" + std::string(name) +
                                      "\"; none, \"#RRGGBB\" and the names of colors.txt can be given");
    }
}

TEST_F(PictureOptionsApply, WhatIsAskedForCountsMoreThanWhatIsRemembered) {
    PictureOptions options = NO_PICTURE_OPTIONS;
    EXPECT_EQ(picture_option_read(&options, PICTURE_OPTION_QUALITY, "plain"), nullptr);
    EXPECT_EQ(picture_option_read(&options, PICTURE_OPTION_Z_SCALE, "1"), nullptr);
    EXPECT_EQ(apply(options), "");
    picture_wish_remember(&front.state, L"1", L"10");
    EXPECT_FALSE(picture_wish_fine(&front.state));
    EXPECT_EQ(picture_wish_scale(&front.state), 1.0F);

    EXPECT_EQ(apply(NO_PICTURE_OPTIONS), "");
    front.state.picture_wish = {};
    picture_wish_remember(&front.state, L"1", L"10");
    EXPECT_TRUE(picture_wish_fine(&front.state)) << "nothing was asked for";
    EXPECT_EQ(picture_wish_scale(&front.state), 10.0F);
}

TEST(PictureWidthFault, TellsWhatTheGraphicsBear) {
    // Without a context there is nothing to ask but the largest width of all.
    EXPECT_EQ(picture_width_fault(16384), nullptr);
    const Owned<WString> fault(picture_width_fault(16385));
    ASSERT_NE(fault, nullptr);
    EXPECT_EQ(test_utf8(wstring_text(fault.get())),
              "pictures can be 16384 pixels wide at most here, not 16385");
}

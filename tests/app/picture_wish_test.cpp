// What the picture's menu chooses for the next run, and what is kept of it between starts.
#include "app/picture_wish.h"

#include <gtest/gtest.h>

#include "app/commands.h"
#include "app/frontend.h"
#include "app/startup.h"
#include "tests/app/app_inputs.h"
#include "tests/app/test_frontend.h"

TEST(PictureWish, IsTheStyleUntilSomethingIsChosen) {
    TestFrontEnd front;
    AppState *state = &front.state;
    EXPECT_FALSE(picture_wish_fine(state));
    EXPECT_EQ(picture_wish_scale(state), 1.0F);
    state->picture_style.fine = true;
    state->picture_style.vertical_scale = 3.0F;
    EXPECT_TRUE(picture_wish_fine(state));
    EXPECT_EQ(picture_wish_scale(state), 3.0F);
    picture_wish_apply(state);
    EXPECT_TRUE(state->picture_style.fine);
    EXPECT_EQ(state->picture_style.vertical_scale, 3.0F) << "a program without the menu keeps its style";
}

TEST(PictureWish, HoldsFromTheNextRunOnAndSaysSo) {
    TestFrontEnd front;
    AppState *state = &front.state;
    picture_wish_choose_fine(state, true);
    EXPECT_EQ(front.status().at(STATUS_PROCESS), "Fine pictures from the next run on");
    picture_wish_choose_scale(state, 3);
    EXPECT_EQ(front.status().at(STATUS_PROCESS), "Vertical scale 10 from the next run on");
    EXPECT_FALSE(state->picture_style.fine) << "no run has started";
    EXPECT_EQ(state->picture_style.vertical_scale, 1.0F);
    EXPECT_TRUE(picture_wish_fine(state));
    EXPECT_EQ(picture_wish_scale(state), 10.0F);
    picture_wish_apply(state);
    EXPECT_TRUE(state->picture_style.fine);
    EXPECT_EQ(state->picture_style.vertical_scale, 10.0F);
    picture_wish_choose_fine(state, false);
    EXPECT_EQ(front.status().at(STATUS_PROCESS), "Plain pictures from the next run on");
    picture_wish_apply(state);
    EXPECT_FALSE(state->picture_style.fine);
    EXPECT_EQ(state->picture_style.vertical_scale, 10.0F);
}

TEST(PictureWish, IsAppliedByTheStartOfARunAndNotDuringOne) {
    const TemporaryFolder folder;
    TestFrontEnd front;
    AppState *state = &front.state;
    front.layout_path = folder.file(L"a.gds");
    test_file_write(front.layout_path, small_layout_bytes());
    load_gds_command(state);
    front.process_path = folder.file(L"p.txt");
    test_file_write(front.process_path, process_text("bad\n"));
    picture_wish_choose_scale(state, 2);
    EXPECT_EQ(front.run(), 1);
    EXPECT_EQ(state->picture_style.vertical_scale, 1.0F) << "the run did not start";

    test_file_write(front.process_path, process_text(deposition_line("A")));
    std::vector<f32> styles;
    front.on_console = [&](const std::string &text) {
        if (text_matches(text, "Executing A*")) {
            styles.push_back(state->picture_style.vertical_scale);
            state->picture_wish.vertical_scale = 50.0F;  // as the window's thread would
            styles.push_back(state->picture_style.vertical_scale);
        }
    };
    EXPECT_EQ(front.run(), 0);
    EXPECT_EQ(styles, (std::vector<f32>{5.0F, 5.0F}));
    front.on_console = nullptr;
    EXPECT_EQ(state->picture_style.vertical_scale, 5.0F);
    EXPECT_EQ(front.run(), 0);
    EXPECT_EQ(state->picture_style.vertical_scale, 50.0F);
    EXPECT_EQ(front.status().at(STATUS_PROCESS), test_utf8(front.process_path))
        << "the run has put its own text into the field";
}

TEST(PictureWish, LeavesTheWordsOfAClosingProgram) {
    TestFrontEnd front;
    front.state.run_active = 1;
    EXPECT_EQ(app_close(&front.state), 0);
    picture_wish_choose_fine(&front.state, true);
    EXPECT_EQ(front.status().at(STATUS_PROCESS), "Closing after this step");
    EXPECT_TRUE(picture_wish_fine(&front.state));
    front.state.run_active = 0;
}

struct KeptCase {
    const wchar_t *fine, *scale;
    bool expected_fine;
    f32 expected_scale;
};

TEST(PictureWishRemember, TakesWhatIsKeptAndNothingElse) {
    const KeptCase cases[] = {
        // clang-format off
        {L"1", L"50", true, 50.0F},
        {L"0", L"1", false, 1.0F},
        {nullptr, nullptr, false, 1.0F},
        {L"", L"", false, 1.0F},
        {L"yes", L"3", false, 1.0F},
        {L"11", L"100", false, 1.0F},
        {L"-1", L"-5", false, 1.0F},
        {L"1 ", L"5.0", false, 1.0F},
        {L"\x2126", L"nan", false, 1.0F},
        {nullptr, L"2", false, 2.0F},
        {L"1", nullptr, true, 1.0F},
        // clang-format on
    };
    for (const KeptCase &c : cases) {
        TestFrontEnd front;
        picture_wish_remember(&front.state, c.fine, c.scale);
        EXPECT_EQ(picture_wish_fine(&front.state), c.expected_fine) << (c.fine != nullptr ? c.fine : L"none");
        EXPECT_EQ(picture_wish_scale(&front.state), c.expected_scale)
            << (c.scale != nullptr ? c.scale : L"none");
        EXPECT_TRUE(front.status().empty()) << "a start says nothing";
    }
}

TEST(PictureWishRemember, LeavesWhatTheCommandLineWants) {
    TestFrontEnd front;
    AppState *state = &front.state;
    state->picture_style.vertical_scale = 3.0F;
    picture_wish_remember(state, L"1", L"10");
    EXPECT_TRUE(picture_wish_fine(state));
    EXPECT_EQ(picture_wish_scale(state), 3.0F);
    EXPECT_EQ(picture_wish_scale_text(state), nullptr) << "the menu does not know it";

    state->picture_wish = {};
    state->picture_style = PLAIN_STYLE;
    state->picture_style.fine = true;
    picture_wish_remember(state, L"0", L"10");
    EXPECT_TRUE(picture_wish_fine(state));
    EXPECT_EQ(picture_wish_scale(state), 10.0F);

    state->picture_wish = {true, false, 2.0F};
    state->picture_style = PLAIN_STYLE;
    picture_wish_remember(state, L"1", L"10");
    EXPECT_FALSE(picture_wish_fine(state)) << "plain pictures were asked for";
    EXPECT_EQ(picture_wish_scale(state), 2.0F);
}

TEST(PictureWishRemember, TakesTheTextsThatAreKept) {
    for (i32 i = 0; i < VERTICAL_SCALE_COUNT; ++i) {
        std::wstring fine;
        std::wstring scale;
        {
            TestFrontEnd front;
            picture_wish_choose_fine(&front.state, i % 2 == 1);
            picture_wish_choose_scale(&front.state, i);
            fine = picture_wish_fine_text(&front.state);
            scale = picture_wish_scale_text(&front.state);
        }
        TestFrontEnd front;
        picture_wish_remember(&front.state, fine.c_str(), scale.c_str());
        EXPECT_EQ(picture_wish_fine(&front.state), i % 2 == 1);
        EXPECT_EQ(picture_wish_scale(&front.state), VERTICAL_SCALES[i].factor);
    }
}

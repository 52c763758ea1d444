#include <gtest/gtest.h>

#include <cstring>

#include "app/commands.h"
#include "gds/gds_read.h"
#include "platform/memory.h"
#include "sim/stack_setup.h"
#include "tests/app/app_inputs.h"
#include "tests/app/test_frontend.h"

// A finished run with pictures of 2 x 1 pixels, one for each title.
struct SaveFixture {
    TemporaryFolder folder;
    TestFrontEnd front;

    explicit SaveFixture(const std::vector<std::wstring> &titles) {
        front.layout_path = folder.file(L"layout.gds");
        test_file_write(front.layout_path, small_layout_bytes());
        load_gds_command(&front.state);
        front.process_path = folder.file(L"cmos.v2.txt");
        test_file_write(front.process_path, process_text(""));
        front.run();
        for (const std::wstring &title : titles) {
            add_picture(title);
        }
    }

    void add_picture(const std::wstring &title) {
        AppState *state = &front.state;
        PixelImage *image = image_create(2, 1, title.c_str());
        std::memset(image->pixels, 0x7F, 8);
        i32 count = state->image_count;
        array_append(&state->images, &count, &state->image_capacity, image);
        state->image_count = count;
    }

    std::string saved_text() {
        const size_t at = front.console().find("--- Handling \"Save images\" command ---");
        return at == std::string::npos ? "" : front.console().substr(at);
    }

    void output_to(const std::wstring &path) {
        wstring_free(front.state.output_folder);
        front.state.output_folder = wstring_copy(path.c_str());
    }
};

TEST(StampedFolderName, CutsTheExtensionAndAddsTheTime) {
    struct Case {
        const wchar_t *path;
        const char *stem;
    };
    const Case cases[] = {
        {L"/jobs/cmos.txt", "/jobs/cmos"},
        {L"cmos.txt", "cmos"},
        {L"cmos.v2.txt", "cmos.v2"},
        {L"cmos", "cmos"},
        {L"/runs.d/cmos", "/runs.d/cmos"},      // the "." of a folder is no extension
        {L"/runs.d/cmos.txt", "/runs.d/cmos"},  //
        {L"../cmos", "../cmos"},                //
        {L"/runs/.txt", "/runs/"},
    };
    for (const Case &c : cases) {
        const Owned<WString> name(stamped_folder_name(c.path));
        const std::string text = test_utf8(wstring_text(name.get()));
        const std::string stem = c.stem;
        EXPECT_EQ(text.substr(0, stem.size()), stem);
        EXPECT_TRUE(text_matches(text.substr(stem.size()), " ####-##-## ##-##-##")) << text;
    }
}

TEST(OutputFolderName, TakesTheFolderThatWasAskedFor) {
    const Owned<WString> process_path(wstring_copy(L"/jobs/cmos.txt"));
    const Owned<WString> output_folder(wstring_copy(L"out/"));
    AppState state = {};
    state.process_path = process_path.get();
    const Owned<WString> stamped(output_folder_name(&state));
    EXPECT_TRUE(text_matches(test_utf8(wstring_text(stamped.get())), "/jobs/cmos ####-##-## ##-##-##"));
    state.output_folder = output_folder.get();
    const Owned<WString> name(output_folder_name(&state));
    EXPECT_STREQ(wstring_text(name.get()), L"out/");
}

TEST(SaveImagesCommand, WritesPicturesAndPolygons) {
    SaveFixture fixture({L"The substrate", L"Cross section after A deposition"});
    const std::wstring out = fixture.folder.file(L"deep/er/out");
    fixture.output_to(out);
    fixture.front.forget_calls();
    save_images_command(&fixture.front.state);

    EXPECT_EQ(fixture.front.state.save_failed, 0);
    const std::vector<std::wstring> expected = {L"000 The substrate.bmp",
                                                L"001 Cross section after A deposition.bmp", L"Polygon.gds"};
    EXPECT_EQ(test_folder_list(out), expected);
    EXPECT_EQ(fixture.saved_text(),
              "--- Handling \"Save images\" command ---\r\nSaving images to folder \"" + test_utf8(out) +
                  "\". Please wait ...\r\nSaving images completed\r\n"
                  "Saved polygons to \"Polygons.gds\" in the image output directory\r\n\r\n");
    EXPECT_EQ(fixture.front.messages(), "");
    EXPECT_EQ(call_index(fixture.front.calls(), "clear"), -1) << "saving keeps what the console shows";
    EXPECT_TRUE(fixture.front.menu()[MENU_SAVE_IMAGES]);

    // The file header of 54 bytes and 2 x 1 pixels of 4 bytes.
    EXPECT_EQ(test_file_read(out + L"/000 The substrate.bmp").size(), 62U);
    const Owned<GdsDatabase> layout(memory_new_zeroed<GdsDatabase>());
    EXPECT_EQ(gds_read(layout.get(), (out + L"/Polygon.gds").c_str()), 0);
    ASSERT_EQ(layout->cell_count, 1);
    EXPECT_EQ(layout->cells[0].polygon_count, 1);
}

TEST(SaveImagesCommand, WritesPng) {
    SaveFixture fixture({L"The substrate"});
    fixture.output_to(fixture.folder.file(L"out"));
    fixture.front.state.image_format = IMAGE_PNG;
    save_images_command(&fixture.front.state);
    const std::string bytes = test_file_read(fixture.folder.file(L"out/000 The substrate.png"));
    EXPECT_EQ(bytes.substr(0, 4), "\x89PNG");
}

TEST(SaveImagesCommand, MakesATimeStampedFolderBesideTheProcessFile) {
    SaveFixture fixture({L"The substrate"});
    save_images_command(&fixture.front.state);
    EXPECT_EQ(fixture.front.state.save_failed, 0);
    i32 found = 0;
    for (const std::wstring &name : test_folder_list(fixture.folder.path)) {
        found += name.compare(0, 8, L"cmos.v2 ") == 0 && name.size() == 27 ? 1 : 0;
    }
    EXPECT_EQ(found, 1);
}

TEST(SaveImagesCommand, SecondSaveWithinASecondFails) {
    SaveFixture fixture({L"The substrate"});
    bool met = false;
    for (i32 attempt = 0; attempt < 10 && !met; ++attempt) {
        save_images_command(&fixture.front.state);
        met = fixture.front.state.save_failed != 0;
    }
    ASSERT_TRUE(met) << "ten saves took ten seconds";
    const std::string message = fixture.front.messages();
    const std::string expected =
        "*cmos.v2 ####-##-## ##-##-##\" already exists. Saving images failed. Try again.\n";
    EXPECT_TRUE(text_matches(message, "Output folder \"" + expected)) << message;
    const std::string console = fixture.front.console();
    const std::string tail = message.substr(0, message.size() - 1) + "\r\n\r\n";
    EXPECT_EQ(console.substr(console.size() - tail.size()), tail);
    EXPECT_TRUE(fixture.front.menu()[MENU_SAVE_IMAGES]);
}

TEST(SaveImagesCommand, TellsThatTheFolderOfTheProcessFileIsGone) {
    SaveFixture fixture({L"The substrate"});
    wstring_free(fixture.front.state.process_path);
    fixture.front.state.process_path = wstring_copy(fixture.folder.file(L"gone/cmos.txt").c_str());
    save_images_command(&fixture.front.state);
    EXPECT_EQ(fixture.front.state.save_failed, 1);
    EXPECT_NE(fixture.front.messages().find(
                  "\" could not be created because the path doesn't exist anymore. Try again."),
              std::string::npos);
}

TEST(SaveImagesCommand, TellsAFolderThatCannotBeMade) {
    SaveFixture fixture({L"The substrate"});
    const std::wstring below_a_file = fixture.folder.file(L"layout.gds/out");
    fixture.output_to(below_a_file);
    save_images_command(&fixture.front.state);
    EXPECT_EQ(fixture.front.state.save_failed, 1);
    const std::string expected = "Unknown error creating output folder \"" + test_utf8(below_a_file) +
                                 "\". Saving images failed. Try again.";
    EXPECT_EQ(fixture.front.messages(), expected + "\n");
    EXPECT_EQ(fixture.saved_text(), "--- Handling \"Save images\" command ---\r\n" + expected + "\r\n\r\n");
    EXPECT_NE(fixture.front.diagnostics(), "") << "the system's reason";
    EXPECT_GE(call_index(fixture.front.calls(), "choose folder instead of " + test_utf8(below_a_file)), 0);
}

static std::string saving_text(const std::wstring &folder) {
    return "Saving images to folder \"" + test_utf8(folder) + "\". Please wait ...\r\n";
}

static const char *const SAVED_TEXT =
    "Saving images completed\r\nSaved polygons to \"Polygons.gds\" in the image output directory\r\n\r\n";

TEST(SaveImagesCommand, APictureThatCannotBeWrittenDoesNotKeepTheRestBack) {
    SaveFixture fixture({L"The substrate", L"Cross section after A", L"Cross section after B"});
    const std::wstring out = fixture.folder.file(L"out");
    fixture.output_to(out);
    ASSERT_TRUE(platform_folder_create_all((out + L"/001 Cross section after A.bmp").c_str()));
    save_images_command(&fixture.front.state);
    EXPECT_EQ(fixture.front.state.save_failed, 1);
    const std::vector<std::wstring> expected = {L"000 The substrate.bmp", L"001 Cross section after A.bmp",
                                                L"002 Cross section after B.bmp", L"Polygon.gds"};
    EXPECT_EQ(test_folder_list(out), expected);
    const std::string message = "Error while saving image(s) to output folder \"" + test_utf8(out) + "\"";
    EXPECT_EQ(message + "\n", fixture.front.messages()) << "told once";
    EXPECT_EQ(fixture.saved_text(),
              "--- Handling \"Save images\" command ---\r\n" + saving_text(out) + message + "\r\n\r\n");
    EXPECT_NE(fixture.front.diagnostics().find("001 Cross section after A.bmp: "), std::string::npos)
        << fixture.front.diagnostics();
}

TEST(SaveImagesCommand, ATitleThatIsTooLongIsShortened) {
    SaveFixture fixture({L"The substrate", std::wstring(400, L'x')});
    const std::wstring out = fixture.folder.file(L"out");
    fixture.output_to(out);
    save_images_command(&fixture.front.state);
    EXPECT_EQ(fixture.front.state.save_failed, 0);
    // 255 less "001 " and ".bmp".
    EXPECT_TRUE(test_file_exists(out + L"/001 " + std::wstring(247, L'x') + L".bmp"));
    EXPECT_EQ(test_folder_list(out).size(), 3U);
}

TEST(SaveImagesCommand, AsksForOtherFoldersUntilOneTakesThePictures) {
    SaveFixture fixture({L"The substrate"});
    const std::wstring below_a_file = fixture.folder.file(L"layout.gds/out");
    const std::wstring also_bad = fixture.folder.file(L"layout.gds");
    const std::wstring good = fixture.folder.file(L"there already");
    ASSERT_EQ(platform_folder_create(good.c_str()), PLATFORM_FOLDER_CREATED);
    fixture.output_to(below_a_file);
    fixture.front.other_folders = {also_bad, good, L"never asked"};
    fixture.front.forget_calls();
    save_images_command(&fixture.front.state);
    EXPECT_EQ(fixture.front.state.save_failed, 0);
    const std::vector<std::wstring> expected = {L"000 The substrate.bmp", L"Polygon.gds"};
    EXPECT_EQ(test_folder_list(good), expected);
    const auto unknown = [](const std::wstring &folder) {
        return "Unknown error creating output folder \"" + test_utf8(folder) +
               "\". Saving images failed. Try again.";
    };
    EXPECT_EQ(fixture.saved_text(), "--- Handling \"Save images\" command ---\r\n" + unknown(below_a_file) +
                                        "\r\n\r\n" + unknown(also_bad) + "\r\n\r\n" + saving_text(good) +
                                        SAVED_TEXT);
    const std::vector<std::string> calls = fixture.front.calls();
    const i32 told = call_index(calls, "message " + unknown(below_a_file));
    const i32 asked = call_index(calls, "choose folder instead of " + test_utf8(below_a_file));
    const i32 told_again = call_index(calls, "message " + unknown(also_bad));
    const i32 asked_again = call_index(calls, "choose folder instead of " + test_utf8(also_bad));
    EXPECT_TRUE(0 <= told && told < asked && asked < told_again && told_again < asked_again);
    EXPECT_EQ(fixture.front.other_folders.size(), 1U) << "nothing is asked once all is saved";
}

TEST(SaveImagesCommand, AsksForAnotherFolderAfterAPictureFailed) {
    SaveFixture fixture({L"The substrate"});
    const std::wstring out = fixture.folder.file(L"out");
    ASSERT_TRUE(platform_folder_create_all((out + L"/000 The substrate.bmp").c_str()));
    fixture.output_to(out);
    fixture.front.other_folders = {fixture.folder.file(L"new/one")};
    save_images_command(&fixture.front.state);
    EXPECT_EQ(fixture.front.state.save_failed, 0);
    EXPECT_EQ(test_folder_list(fixture.folder.file(L"new/one")).size(), 2U);
}

TEST(SaveImagesCommand, PicturesThatTheWorkerHasWrittenAreOnlyToldOf) {
    SaveFixture fixture({L"The substrate"});
    const std::wstring out = fixture.folder.file(L"out");
    ASSERT_EQ(platform_folder_create(out.c_str()), PLATFORM_FOLDER_CREATED);
    fixture.output_to(out);
    AppState *state = &fixture.front.state;
    state->picture_folder = picture_folder_open(out.c_str(), IMAGE_BMP);
    image_drop_pixels(state->images[0]);
    save_images_command(state);
    EXPECT_EQ(state->save_failed, 0);
    EXPECT_EQ(test_folder_list(out), std::vector<std::wstring>{L"Polygon.gds"});
    const std::string head = "--- Handling \"Save images\" command ---\r\n" + saving_text(out);
    EXPECT_EQ(head + SAVED_TEXT, fixture.saved_text());

    state->picture_folder->failed = 1;
    const size_t length = fixture.front.console().size();
    save_images_command(state);
    EXPECT_EQ(state->save_failed, 1);
    EXPECT_EQ(head + "Error while saving image(s) to output folder \"" + test_utf8(out) + "\"\r\n\r\n",
              fixture.front.console().substr(length));
}

TEST(SaveImagesCommand, PolygonsThatCannotBeWrittenAreAFailureWithTheSameText) {
    SaveFixture fixture({L"The substrate"});
    const std::wstring out = fixture.folder.file(L"out");
    fixture.output_to(out);
    ASSERT_TRUE(platform_folder_create_all((out + L"/Polygon.gds").c_str()));
    save_images_command(&fixture.front.state);
    EXPECT_EQ(fixture.front.state.save_failed, 1);
    EXPECT_NE(fixture.saved_text().find("Saved polygons to \"Polygons.gds\" in the image output directory"),
              std::string::npos);
    EXPECT_EQ(fixture.front.messages(), "");
    EXPECT_NE(fixture.front.diagnostics(), "");

    // The next save, into another folder, is judged by itself.
    fixture.output_to(fixture.folder.file(L"other"));
    save_images_command(&fixture.front.state);
    EXPECT_EQ(fixture.front.state.save_failed, 0);
}

TEST(SaveImagesCommand, NumbersHaveAtLeastThreeDigits) {
    SaveFixture fixture({});
    for (i32 i = 0; i < 1001; ++i) {
        fixture.add_picture(L"x");
    }
    const std::wstring out = fixture.folder.file(L"out");
    fixture.output_to(out);
    save_images_command(&fixture.front.state);
    EXPECT_TRUE(test_file_exists(out + L"/000 x.bmp"));
    EXPECT_TRUE(test_file_exists(out + L"/099 x.bmp"));
    EXPECT_TRUE(test_file_exists(out + L"/1000 x.bmp"));
    EXPECT_EQ(test_folder_list(out).size(), 1002U) << "1001 pictures and the polygons";
}

TEST(SaveImagesCommand, ASeparatorInATitleStaysInTheFolder) {
    if (PLATFORM_SEPARATOR[0] != L'/') {
        GTEST_SKIP() << "only where \"/\" separates folders";
    }
    SaveFixture fixture({L"Cross section after Si/SiO2 etching"});
    const std::wstring out = fixture.folder.file(L"out");
    fixture.output_to(out);
    save_images_command(&fixture.front.state);
    EXPECT_TRUE(test_file_exists(out + L"/000 Cross section after Si_SiO2 etching.bmp"));
}

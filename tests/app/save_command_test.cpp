#include <gtest/gtest.h>

#include <cstring>

#include "app/commands.h"
#include "gds/gds_read.h"
#include "platform/memory.h"
#include "sim/stack_setup.h"
#include "tests/app/app_scene.h"
#include "tests/app/test_frontend.h"

// A finished run with pictures of 2 x 1 pixels, one for each title.
struct SaveScene {
    TemporaryFolder folder;
    TestFrontEnd front;

    explicit SaveScene(const std::vector<std::wstring> &titles) {
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

TEST(OutputFolderName, CutsTheExtensionAndAddsTheTime) {
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
        AppState state = {};
        state.process_path = wstring_copy(c.path);
        WString *name = output_folder_name(&state);
        const std::string text = test_utf8(wstring_text(name));
        const std::string stem = c.stem;
        EXPECT_EQ(stem, text.substr(0, stem.size()));
        EXPECT_TRUE(text_matches(text.substr(stem.size()), " ####-##-## ##-##-##")) << text;
        wstring_free(name);
        wstring_free(state.process_path);
    }
}

TEST(OutputFolderName, TakesTheFolderThatWasAskedFor) {
    AppState state = {};
    state.process_path = wstring_copy(L"/jobs/cmos.txt");
    state.output_folder = wstring_copy(L"out/");
    WString *name = output_folder_name(&state);
    EXPECT_STREQ(wstring_text(name), L"out/");
    wstring_free(name);
    wstring_free(state.output_folder);
    wstring_free(state.process_path);
}

TEST(SaveImagesCommand, WritesPicturesAndPolygons) {
    SaveScene scene({L"The substrate", L"Cross section after A deposition"});
    const std::wstring out = scene.folder.file(L"deep/er/out");
    scene.output_to(out);
    scene.front.forget_calls();
    save_images_command(&scene.front.state);

    EXPECT_EQ(scene.front.state.save_failed, 0);
    const std::vector<std::wstring> expected = {L"000 The substrate.bmp",
                                                L"001 Cross section after A deposition.bmp", L"Polygon.gds"};
    EXPECT_EQ(test_folder_list(out), expected);
    EXPECT_EQ(scene.saved_text(),
              "--- Handling \"Save images\" command ---\r\nSaving images to folder \"" + test_utf8(out) +
                  "\". Please wait ...\r\nSaving images completed\r\n"
                  "Saved polygons to \"Polygons.gds\" in the image output directory\r\n\r\n");
    EXPECT_EQ(scene.front.messages(), "");
    EXPECT_EQ(call_index(scene.front.calls(), "clear"), -1) << "saving keeps what the console shows";
    EXPECT_TRUE(scene.front.menu()[MENU_SAVE_IMAGES]);

    // The file header of 54 bytes and 2 x 1 pixels of 4 bytes.
    EXPECT_EQ(test_file_read(out + L"/000 The substrate.bmp").size(), 62U);
    GdsDatabase layout = {};
    EXPECT_EQ(gds_read(&layout, (out + L"/Polygon.gds").c_str()), 0);
    ASSERT_EQ(layout.cell_count, 1);
    EXPECT_EQ(layout.cells[0].polygon_count, 1);
    auto *copy = memory_new_array<GdsDatabase>(1);
    *copy = layout;
    gds_free(copy);
}

TEST(SaveImagesCommand, WritesPng) {
    SaveScene scene({L"The substrate"});
    scene.output_to(scene.folder.file(L"out"));
    scene.front.state.image_format = IMAGE_PNG;
    save_images_command(&scene.front.state);
    const std::string bytes = test_file_read(scene.folder.file(L"out/000 The substrate.png"));
    EXPECT_EQ(bytes.substr(0, 4), "\x89PNG");
}

TEST(SaveImagesCommand, MakesATimeStampedFolderBesideTheProcessFile) {
    SaveScene scene({L"The substrate"});
    save_images_command(&scene.front.state);
    EXPECT_EQ(scene.front.state.save_failed, 0);
    i32 found = 0;
    for (const std::wstring &name : test_folder_list(scene.folder.path)) {
        found += name.compare(0, 8, L"cmos.v2 ") == 0 && name.size() == 27 ? 1 : 0;
    }
    EXPECT_EQ(found, 1);
}

TEST(SaveImagesCommand, SecondSaveWithinASecondFails) {
    SaveScene scene({L"The substrate"});
    bool met = false;
    for (i32 attempt = 0; attempt < 10 && !met; ++attempt) {
        save_images_command(&scene.front.state);
        met = scene.front.state.save_failed != 0;
    }
    ASSERT_TRUE(met) << "ten saves took ten seconds";
    const std::string message = scene.front.messages();
    const std::string expected =
        "*cmos.v2 ####-##-## ##-##-##\" already exists. Saving images failed. Try again.\n";
    EXPECT_TRUE(text_matches(message, "Output folder \"" + expected)) << message;
    const std::string console = scene.front.console();
    const std::string tail = message.substr(0, message.size() - 1) + "\r\n\r\n";
    EXPECT_EQ(tail, console.substr(console.size() - tail.size()));
    EXPECT_TRUE(scene.front.menu()[MENU_SAVE_IMAGES]);
}

TEST(SaveImagesCommand, TellsThatTheFolderOfTheProcessFileIsGone) {
    SaveScene scene({L"The substrate"});
    wstring_free(scene.front.state.process_path);
    scene.front.state.process_path = wstring_copy(scene.folder.file(L"gone/cmos.txt").c_str());
    save_images_command(&scene.front.state);
    EXPECT_EQ(scene.front.state.save_failed, 1);
    EXPECT_NE(std::string::npos,
              scene.front.messages().find(
                  "\" could not be created because the path doesn't exist anymore. Try again."));
}

TEST(SaveImagesCommand, TellsAFolderThatCannotBeMade) {
    SaveScene scene({L"The substrate"});
    const std::wstring below_a_file = scene.folder.file(L"layout.gds/out");
    scene.output_to(below_a_file);
    save_images_command(&scene.front.state);
    EXPECT_EQ(scene.front.state.save_failed, 1);
    const std::string expected = "Unknown error creating output folder \"" + test_utf8(below_a_file) +
                                 "\". Saving images failed. Try again.";
    EXPECT_EQ(scene.front.messages(), expected + "\n");
    EXPECT_EQ(scene.saved_text(), "--- Handling \"Save images\" command ---\r\n" + expected + "\r\n\r\n");
    EXPECT_NE(scene.front.diagnostics(), "") << "the system's reason";
    EXPECT_GE(call_index(scene.front.calls(), "choose folder instead of " + test_utf8(below_a_file)), 0);
}

static std::string saving_text(const std::wstring &folder) {
    return "Saving images to folder \"" + test_utf8(folder) + "\". Please wait ...\r\n";
}

static const char *const SAVED_TEXT =
    "Saving images completed\r\nSaved polygons to \"Polygons.gds\" in the image output directory\r\n\r\n";

TEST(SaveImagesCommand, APictureThatCannotBeWrittenDoesNotKeepTheRestBack) {
    SaveScene scene({L"The substrate", L"Cross section after A", L"Cross section after B"});
    const std::wstring out = scene.folder.file(L"out");
    scene.output_to(out);
    ASSERT_TRUE(platform_folder_create_all((out + L"/001 Cross section after A.bmp").c_str()));
    save_images_command(&scene.front.state);
    EXPECT_EQ(scene.front.state.save_failed, 1);
    const std::vector<std::wstring> expected = {L"000 The substrate.bmp", L"001 Cross section after A.bmp",
                                                L"002 Cross section after B.bmp", L"Polygon.gds"};
    EXPECT_EQ(test_folder_list(out), expected);
    const std::string message = "Error while saving image(s) to output folder \"" + test_utf8(out) + "\"";
    EXPECT_EQ(message + "\n", scene.front.messages()) << "told once";
    EXPECT_EQ(scene.saved_text(),
              "--- Handling \"Save images\" command ---\r\n" + saving_text(out) + message + "\r\n\r\n");
    EXPECT_NE(std::string::npos, scene.front.diagnostics().find("001 Cross section after A.bmp: "))
        << scene.front.diagnostics();
}

TEST(SaveImagesCommand, ATitleThatIsTooLongIsShortened) {
    SaveScene scene({L"The substrate", std::wstring(400, L'x')});
    const std::wstring out = scene.folder.file(L"out");
    scene.output_to(out);
    save_images_command(&scene.front.state);
    EXPECT_EQ(scene.front.state.save_failed, 0);
    // 255 less "001 " and ".bmp".
    EXPECT_TRUE(test_file_exists(out + L"/001 " + std::wstring(247, L'x') + L".bmp"));
    EXPECT_EQ(test_folder_list(out).size(), 3U);
}

TEST(SaveImagesCommand, AsksForOtherFoldersUntilOneTakesThePictures) {
    SaveScene scene({L"The substrate"});
    const std::wstring below_a_file = scene.folder.file(L"layout.gds/out");
    const std::wstring also_bad = scene.folder.file(L"layout.gds");
    const std::wstring good = scene.folder.file(L"there already");
    ASSERT_EQ(platform_folder_create(good.c_str()), PLATFORM_FOLDER_CREATED);
    scene.output_to(below_a_file);
    scene.front.other_folders = {also_bad, good, L"never asked"};
    scene.front.forget_calls();
    save_images_command(&scene.front.state);
    EXPECT_EQ(scene.front.state.save_failed, 0);
    const std::vector<std::wstring> expected = {L"000 The substrate.bmp", L"Polygon.gds"};
    EXPECT_EQ(test_folder_list(good), expected);
    const auto unknown = [](const std::wstring &folder) {
        return "Unknown error creating output folder \"" + test_utf8(folder) +
               "\". Saving images failed. Try again.";
    };
    EXPECT_EQ(scene.saved_text(), "--- Handling \"Save images\" command ---\r\n" + unknown(below_a_file) +
                                      "\r\n\r\n" + unknown(also_bad) + "\r\n\r\n" + saving_text(good) +
                                      SAVED_TEXT);
    const std::vector<std::string> calls = scene.front.calls();
    const i32 told = call_index(calls, "message " + unknown(below_a_file));
    const i32 asked = call_index(calls, "choose folder instead of " + test_utf8(below_a_file));
    const i32 told_again = call_index(calls, "message " + unknown(also_bad));
    const i32 asked_again = call_index(calls, "choose folder instead of " + test_utf8(also_bad));
    EXPECT_TRUE(0 <= told && told < asked && asked < told_again && told_again < asked_again);
    EXPECT_EQ(scene.front.other_folders.size(), 1U) << "nothing is asked once all is saved";
}

TEST(SaveImagesCommand, AsksForAnotherFolderAfterAPictureFailed) {
    SaveScene scene({L"The substrate"});
    const std::wstring out = scene.folder.file(L"out");
    ASSERT_TRUE(platform_folder_create_all((out + L"/000 The substrate.bmp").c_str()));
    scene.output_to(out);
    scene.front.other_folders = {scene.folder.file(L"new/one")};
    save_images_command(&scene.front.state);
    EXPECT_EQ(scene.front.state.save_failed, 0);
    EXPECT_EQ(test_folder_list(scene.folder.file(L"new/one")).size(), 2U);
}

TEST(SaveImagesCommand, PicturesThatTheWorkerHasWrittenAreOnlyToldOf) {
    SaveScene scene({L"The substrate"});
    const std::wstring out = scene.folder.file(L"out");
    ASSERT_EQ(platform_folder_create(out.c_str()), PLATFORM_FOLDER_CREATED);
    scene.output_to(out);
    AppState *state = &scene.front.state;
    state->picture_folder = picture_folder_open(out.c_str(), IMAGE_BMP);
    image_drop_pixels(state->images[0]);
    save_images_command(state);
    EXPECT_EQ(state->save_failed, 0);
    EXPECT_EQ(std::vector<std::wstring>{L"Polygon.gds"}, test_folder_list(out));
    const std::string head = "--- Handling \"Save images\" command ---\r\n" + saving_text(out);
    EXPECT_EQ(head + SAVED_TEXT, scene.saved_text());

    state->picture_folder->failed = 1;
    const size_t length = scene.front.console().size();
    save_images_command(state);
    EXPECT_EQ(state->save_failed, 1);
    EXPECT_EQ(head + "Error while saving image(s) to output folder \"" + test_utf8(out) + "\"\r\n\r\n",
              scene.front.console().substr(length));
}

TEST(SaveImagesCommand, PolygonsThatCannotBeWrittenAreAFailureWithTheSameText) {
    SaveScene scene({L"The substrate"});
    const std::wstring out = scene.folder.file(L"out");
    scene.output_to(out);
    ASSERT_TRUE(platform_folder_create_all((out + L"/Polygon.gds").c_str()));
    save_images_command(&scene.front.state);
    EXPECT_EQ(scene.front.state.save_failed, 1);
    EXPECT_NE(std::string::npos,
              scene.saved_text().find("Saved polygons to \"Polygons.gds\" in the image output directory"));
    EXPECT_EQ(scene.front.messages(), "");
    EXPECT_NE(scene.front.diagnostics(), "");

    // The next save, into another folder, is judged by itself.
    scene.output_to(scene.folder.file(L"other"));
    save_images_command(&scene.front.state);
    EXPECT_EQ(scene.front.state.save_failed, 0);
}

TEST(SaveImagesCommand, NumbersHaveAtLeastThreeDigits) {
    SaveScene scene({});
    for (i32 i = 0; i < 1001; ++i) {
        scene.add_picture(L"x");
    }
    const std::wstring out = scene.folder.file(L"out");
    scene.output_to(out);
    save_images_command(&scene.front.state);
    EXPECT_TRUE(test_file_exists(out + L"/000 x.bmp"));
    EXPECT_TRUE(test_file_exists(out + L"/099 x.bmp"));
    EXPECT_TRUE(test_file_exists(out + L"/1000 x.bmp"));
    EXPECT_EQ(test_folder_list(out).size(), 1002U) << "1001 pictures and the polygons";
}

TEST(SaveImagesCommand, ASeparatorInATitleStaysInTheFolder) {
    if (PLATFORM_SEPARATOR[0] != L'/') {
        GTEST_SKIP() << "only where \"/\" separates folders";
    }
    SaveScene scene({L"Cross section after Si/SiO2 etching"});
    const std::wstring out = scene.folder.file(L"out");
    scene.output_to(out);
    save_images_command(&scene.front.state);
    EXPECT_TRUE(test_file_exists(out + L"/000 Cross section after Si_SiO2 etching.bmp"));
}

// "Load GDS" in the window: what it shows when it succeeds, is cancelled or fails.
#include <filesystem>

#include "tests/gds/gds_bytes.h"
#include "tests/gtk/window_driver.h"

using Texts = std::vector<std::string>;

static const char *const LOAD_BANNER = "--- Handling \"Load GDS\" command ---\n\n";

static std::string loading(const std::string &path) {
    return LOAD_BANNER + ("Loading GDS database " + path) +
           " and calculating cell sizes. Please wait ...\n\n";
}

TEST(LoadGds, TellsWhatItHasLoaded) {
    NEEDS_WINDOW();
    WindowProgram window;
    ASSERT_TRUE(program_open(&window));
    const std::string path = window.files.path("a.gds");
    window_load(window, path);
    EXPECT_SOON(loading(path) +
                    "CELLS IN DATABASE:\n"
                    "--> \"TOP\" with size dx = 12100 by dy = 2500 (database units)\n\n"
                    "GDS database finished loading in # s\n\n",
                mask_seconds(window_console(window)));
    EXPECT_SOON(MENU_LOADED, window_menu(window));
    EXPECT_SOON("", window_title(window));
    EXPECT_EQ((Texts{"GDS file:", path, "Process file:", "Not loaded"}), window_status(window));
    program_close(&window);
}

TEST(LoadGds, CancelKeepsWhatIsLoaded) {
    NEEDS_WINDOW();
    WindowProgram window;
    ASSERT_TRUE(program_open(&window));
    for (const char *menu : {MENU_IDLE, MENU_LOADED}) {
        const Texts status = window_status(window);
        window_command(window, "Load GDS");
        ASSERT_TRUE(accessible_exists(window_dialog(window, "Open GDS file"))) << program_report(window);
        EXPECT_EQ(window_menu(window), MENU_STOPPING) << "only About while the dialog is open";
        window_cancel(window, "Open GDS file");
        EXPECT_SOON(LOAD_BANNER + std::string("Handling \"Load GDS\" command canceled\n\n"),
                    window_console(window));
        EXPECT_SOON(menu, window_menu(window));
        EXPECT_SOON("Quarn", window_title(window));
        EXPECT_EQ(status, window_status(window));
        if (menu == MENU_IDLE) {
            window_load(window, window.files.path("a.gds"));
        }
    }
    program_close(&window);
}

TEST(LoadGds, TellsThatThePictureIsOfThePreviousLayout) {
    NEEDS_WINDOW();
    WindowProgram window;
    window.files.write("p.txt", process_text(""));
    ASSERT_TRUE(program_open(&window, {{"a.gds", "p.txt"}}));
    ASSERT_TRUE(window_run_done(window)) << program_report(window);
    EXPECT_EQ(window_drop(window, {window.files.path("a.gds")}), DROP_DONE);
    auto end_of_load = [&] {
        const std::string console = mask_seconds(window_console(window));
        const size_t at = console.find("GDS database finished");
        return at == std::string::npos ? "" : console.substr(at);
    };
    EXPECT_SOON(
        "GDS database finished loading in # s\n\n"
        "Note: the picture on show belongs to the layout that was loaded before\n",
        end_of_load());
    EXPECT_EQ(window_picture(window), "The substrate");
    program_close(&window);
}

TEST(LoadGds, TheDialogOffersLayoutsInTheFolderOfTheLastOne) {
    NEEDS_WINDOW();
    WindowProgram window;
    std::filesystem::create_directory(window.files.path("layouts"));
    window.files.write("layouts/b.gds", small_layout_bytes());
    window.files.write("layouts/b.txt", "");
    ASSERT_TRUE(program_open(&window));
    window_load(window, window.files.path("layouts/b.gds"));
    window_command(window, "Load GDS");
    Accessible dialog = window_dialog(window, "Open GDS file");
    EXPECT_SOON(true, accessible_exists(accessible_find(dialog, "table cell", "b.gds")))
        << accessible_tree(dialog);
    EXPECT_FALSE(accessible_exists(accessible_find(dialog, "table cell", "b.txt")));
    EXPECT_TRUE(accessible_exists(accessible_find(dialog, "combo box", "GDS Files (*.gds)")));
    window_cancel(window, "Open GDS file");
    program_close(&window);
}

struct BadLayout {
    i32 code;
    std::string bytes;
};

static GdsBytes cell() {
    return GdsBytes().head().begin("BAD");
}

// One stream for each code with which a layout is refused; 1 is a file that cannot be opened.
static std::vector<BadLayout> bad_layouts() {
    const u32 elements[] = {GDS_RECORD_BOUNDARY, GDS_RECORD_PATH, GDS_RECORD_SREF, GDS_RECORD_AREF,
                            GDS_RECORD_TEXT,     GDS_RECORD_NODE, GDS_RECORD_BOX};
    std::vector<BadLayout> layouts = {
        {2, cell().path(1, 0, 10, {{0, 0}, {10, 0}, {20, 0}}).bytes},
        {3, ""},
        {4, cell().raw(std::string(4, '\0')).bytes},
        {5, cell().record(GDS_RECORD_BGNSTR).bytes},
        {6, GdsBytes().head().end().bytes},
        {14, cell().record(GDS_RECORD_ENDEL).bytes},
        {15, cell().record(GDS_RECORD_SNAME, "AB").bytes},
        {16, cell().record(GDS_RECORD_COLROW, "\1\1\1\1").bytes},
        {17, cell().record(GDS_RECORD_PATHTYPE, bytes_u16(0)).bytes},
        {18, cell().record(GDS_RECORD_STRANS, bytes_u16(0)).bytes},
        {19, cell().record(GDS_RECORD_ANGLE, bytes_real8(1.0)).bytes},
        {20, cell().record(GDS_RECORD_MAG, bytes_real8(1.0)).bytes},
        {21, cell().xy({{1, 2}}).bytes},
        {22, cell().record(GDS_RECORD_SREF).xy({{0, 0}, {1, 1}}).bytes},
        {23, cell().record(GDS_RECORD_AREF).xy({{0, 0}, {1, 1}, {2, 2}, {3, 3}}).bytes},
        {24, cell().record(GDS_RECORD_LAYER, bytes_u16(1)).bytes},
        {25, cell().record(GDS_RECORD_WIDTH, bytes_i32(1)).bytes},
        {26, GdsBytes().head().name(GDS_RECORD_STRNAME, "X").bytes},
        {27, cell().sref("MISSING", {0, 0}).end().close().bytes},
        {28, cell().record(GDS_RECORD_BOUNDARY).xy({{0, 0}}).record(GDS_RECORD_ENDEL).bytes},
    };
    for (i32 i = 0; i < 7; ++i) {
        layouts.push_back({7 + i, GdsBytes().head().record(elements[i]).bytes});
    }
    return layouts;
}

// By dropping the files, which is quicker than a dialog for each.
TEST(LoadGds, EveryFailureTellsItsNumberAndKeepsThePreviousLayout) {
    NEEDS_WINDOW();
    WindowProgram window;
    ASSERT_TRUE(program_open(&window, {{"a.gds"}}));
    ASSERT_SOON(MENU_LOADED, window_menu(window));
    const Texts status = window_status(window);
    const std::string title = window_title(window);
    for (const BadLayout &bad : bad_layouts()) {
        window.files.write("bad.gds", bad.bytes);
        EXPECT_EQ(window_drop(window, {window.files.path("bad.gds")}), DROP_DONE);
        std::string failure = "Loading GDS database failed with error: " + std::to_string(bad.code) + "\n\n";
        EXPECT_SOON(true, window_console_has(window, failure)) << bad.code << window_console(window);
        EXPECT_SOON(MENU_LOADED, window_menu(window));
        EXPECT_EQ(status, window_status(window));
        EXPECT_EQ(title, window_title(window));
    }
    window.files.write("p.txt", process_text(""));
    window_run(window, window.files.path("p.txt"));
    EXPECT_TRUE(window_run_done(window)) << "the layout from before is still there";
    program_close(&window);
}

TEST(LoadGds, AFailureInTheDialogTellsItsNumber) {
    NEEDS_WINDOW();
    WindowProgram window;
    ASSERT_TRUE(program_open(&window));
    const std::string path = window.files.path("bad.gds");
    window.files.write("bad.gds", "");
    window_load(window, path);
    EXPECT_SOON(true, window_console_has(window, "Loading GDS database failed with error: 3\n\n"));
    EXPECT_SOON(MENU_IDLE, window_menu(window));
    EXPECT_EQ(window_title(window), "Quarn");
    program_close(&window);
}

// Blanks, letters of several scripts, one beyond the first 65536, and bytes that are not UTF-8 at all.
TEST(LoadGds, AnyNameWillDo) {
    NEEDS_WINDOW();
    for (const char *name : {"two words.gds",
                             "gr\xC3\xB6\xC3\x9F"
                             "e \xE6\xBA\x96.gds",
                             "\xF0\x9F\x94\xAC.gds"}) {
        WindowProgram window;
        window.files.write(name, small_layout_bytes());
        std::string path = window.files.path(name);
        ASSERT_TRUE(program_open(&window));
        window_load(window, path);
        EXPECT_SOON(true, window_console_has(window, "Loading GDS database " + path + " and calculating"));
        EXPECT_SOON(MENU_LOADED, window_menu(window));
        EXPECT_EQ(path, window_status(window)[1]);
        program_close(&window);
    }
    WindowProgram window;
    window.files.write("caf\xE9.gds", small_layout_bytes());
    ASSERT_TRUE(program_open(&window, {{"caf\xE9.gds"}}));
    EXPECT_SOON(true, window_console_has(window, "GDS database finished loading in "));
    EXPECT_SOON(MENU_LOADED, window_menu(window));
    program_close(&window);
}

// "Export..." and "Open as page" without a window: the step on show, the files, failures, stopping, closing.
#include "app/export_commands.h"

#include <gtest/gtest.h>

#include <cstring>

#include "app/commands.h"
#include "app/export_job.h"
#include "app/picture_commands.h"
#include "app/startup.h"
#include "app/worker_start.h"
#include "tests/app/app_inputs.h"
#include "tests/app/test_frontend.h"

// A run that has ended: the substrate, 100 nm of A, a dump, 100 nm of B, each step but the dump with a
// picture of 2 x 1 pixels, the last one on show.
struct ExportFixture {
    TemporaryFolder folder;
    CurrentFolder current{folder.path};
    TestFrontEnd front;
    AppState *state = &front.state;

    ExportFixture() {
        front.layout_path = folder.file(L"layout.gds");
        test_file_write(front.layout_path, small_layout_bytes());
        load_gds_command(state);
        front.process_path = folder.file(L"two.films.txt");
        test_file_write(front.process_path,
                        process_text(deposition_line("A") + "dump\n" + deposition_line("B")));
        front.run();
        for (const wchar_t *title : {L"The substrate", L"After A", L"After B"}) {
            PixelImage *image = image_create(2, 1, title);
            std::memset(image->pixels, 0x7F, 8);
            state->images[state->image_count] = image;
            state->image_count = state->image_count + 1;
        }
        state->current_image = 2;
        front.forget_calls();
    }
};

// What the person answers, and what was proposed.
static std::wstring answer_path;
static i32 answer_kind = EXPORT_SVG;
static std::string proposal;

static WString *answer(AppState *, const SaveForm *form, const wchar_t *name, i32 *kind) {
    proposal =
        test_utf8(form->title) + ": " + test_utf8(name) + " " + test_utf8(form->kinds[*kind].extension);
    *kind = answer_kind;
    return answer_path.empty() ? nullptr : wstring_copy(answer_path.c_str());
}

static void export_to(ExportFixture *fixture, const std::wstring &path, i32 kind) {
    answer_path = path;
    answer_kind = kind;
    export_command(fixture->state, answer);
    if (fixture->state->run_active != 0) {
        fixture->front.await_worker();
    }
}

static std::string first_line(const std::wstring &path) {
    const std::string text = test_file_read(path);
    return text.substr(0, text.find('\n'));
}

TEST(ExportCommand, WritesTheStepOnShowAsItWas) {
    ExportFixture fixture;
    const std::string told = fixture.front.console();
    fixture.state->current_image = 1;
    const std::wstring path = fixture.folder.file(L"a.csv");
    export_to(&fixture, path, EXPORT_SVG);  // the name tells more than the kind
    EXPECT_EQ(proposal.substr(0, 22), "Export this step: 001 ");
    EXPECT_EQ(proposal.substr(proposal.size() - 9), ".svg .svg");
    const std::string header = first_line(path);
    EXPECT_NE(header.find(",A top_nm"), std::string::npos) << header;
    EXPECT_EQ(header.find("B "), std::string::npos) << "B came a step later: " << header;
    EXPECT_EQ(fixture.front.console(), told) << "the steps are not told again";
    EXPECT_EQ(fixture.front.messages(), "");
    EXPECT_EQ(fixture.front.status()[STATUS_PROCESS], "Exported " + test_utf8(path));
    EXPECT_EQ(fixture.state->export_job, nullptr);
    EXPECT_EQ(fixture.state->run_active, 0);
    EXPECT_TRUE(fixture.front.menu()[MENU_RUN]);
}

TEST(ExportCommand, TheStepAfterADumpIsTheOneOnShow) {
    ExportFixture fixture;
    const std::wstring path = fixture.folder.file(L"b");
    export_to(&fixture, path, EXPORT_CSV);
    EXPECT_NE(first_line(path).find(",B top_nm"), std::string::npos);
    EXPECT_EQ(proposal.substr(0, 22), "Export this step: 002 ") << "a dump has no number";
}

TEST(ExportCommand, CancelledDoesNothing) {
    ExportFixture fixture;
    const size_t files = test_folder_list(fixture.folder.path).size();
    export_to(&fixture, L"", EXPORT_CSV);
    EXPECT_EQ(fixture.front.calls(), (std::vector<std::string>{}));
    EXPECT_EQ(test_folder_list(fixture.folder.path).size(), files);
}

TEST(ExportCommand, AFailureSaysWhy) {
    ExportFixture fixture;
    const std::wstring path = fixture.folder.file(L"missing/a.csv");
    export_to(&fixture, path, EXPORT_CSV);
    const std::string start = "The step could not be written as \"" + test_utf8(path) + "\": ";
    const std::string message = fixture.front.messages();
    ASSERT_EQ(message.substr(0, start.size()), start);
    EXPECT_GT(message.size(), start.size() + 1) << "the system's reason";
    EXPECT_EQ(fixture.front.status()[STATUS_PROCESS], "The export failed");
    EXPECT_EQ(fixture.state->export_job, nullptr);
}

TEST(ExportCommand, NeedsAPictureOfARunThatHasEnded) {
    ExportFixture fixture;
    EXPECT_TRUE(picture_command_enabled(fixture.state, PICTURE_EXPORT));
    EXPECT_TRUE(picture_command_enabled(fixture.state, PICTURE_PAGE));
    fixture.state->run_active = 1;
    EXPECT_FALSE(picture_command_enabled(fixture.state, PICTURE_EXPORT));
    EXPECT_FALSE(picture_command_enabled(fixture.state, PICTURE_PAGE));
    fixture.state->run_active = 0;
    fixture.state->current_image = -1;
    EXPECT_FALSE(picture_command_enabled(fixture.state, PICTURE_EXPORT)) << "none is on show";
    proposal = "";
    export_to(&fixture, L"a.csv", EXPORT_CSV);
    EXPECT_EQ(proposal, "") << "nothing is asked";
}

TEST(ExportCommand, WhileItWorksOnlyStopIsThere) {
    ExportFixture fixture;
    answer_path = fixture.folder.file(L"a.csv");
    answer_kind = EXPORT_CSV;
    export_command(fixture.state, answer);
    EXPECT_EQ(fixture.state->run_active, 1);
    EXPECT_FALSE(fixture.front.menu()[MENU_RUN]);
    EXPECT_FALSE(fixture.front.menu()[MENU_LOAD_GDS]);
    EXPECT_FALSE(export_possible(fixture.state));
    EXPECT_EQ(run_command(fixture.state), 1) << "no run starts beside it";
    fixture.front.await_worker();
    EXPECT_TRUE(fixture.front.menu()[MENU_RUN]);
    EXPECT_EQ(fixture.front.run_done_result, 0);
}

// A job that the worker finds stopped before its first step.
static void start_stopped(ExportFixture *fixture, const std::wstring &path) {
    AppState *state = fixture->state;
    state->export_job = memory_new_zeroed<ExportJob>();
    state->export_job->last_step = 1;
    state->export_job->format = EXPORT_CSV;
    state->export_job->path = wstring_copy(path.c_str());
    state->stop_requested = 1;
    ASSERT_TRUE(worker_start(state, export_thread));
}

TEST(ExportCommand, StoppedLeavesWhatWasThere) {
    ExportFixture fixture;
    const std::wstring path = fixture.folder.file(L"a.csv");
    test_file_write(path, "older");
    start_stopped(&fixture, path);
    fixture.front.await_worker();
    EXPECT_EQ(test_file_read(path), "older");
    EXPECT_EQ(fixture.front.status()[STATUS_PROCESS], "The export was stopped");
    EXPECT_EQ(fixture.front.messages(), "");
}

TEST(ExportCommand, TheWindowThatIsClosedMeanwhileEndsAfterIt) {
    ExportFixture fixture;
    start_stopped(&fixture, fixture.folder.file(L"a.csv"));
    EXPECT_EQ(app_close(fixture.state), 0) << "the worker is at it";
    fixture.front.await_worker();
    EXPECT_EQ(fixture.front.run_done_result, 1) << "the program ends";
}

static void open_page(ExportFixture *fixture) {
    page_command(fixture->state);
    if (fixture->state->run_active != 0) {
        fixture->front.await_worker();
    }
}

TEST(PageCommand, WritesThePageBesideThePicturesAndOpensIt) {
    ExportFixture fixture;
    const std::wstring folder = fixture.folder.file(L"pictures");
    fixture.state->saved_folder = wstring_copy(folder.c_str());
    open_page(&fixture);
    const std::wstring path = folder + PLATFORM_SEPARATOR + L"two.films.html";
    EXPECT_NE(test_file_read(path).find("</html>"), std::string::npos);
    EXPECT_GE(call_index(fixture.front.calls(), "open " + test_utf8(path)), 0);
    EXPECT_EQ(fixture.front.messages(), "");
}

TEST(PageCommand, MakesAFolderWhereNothingWasSavedAndKeepsToIt) {
    ExportFixture fixture;
    open_page(&fixture);
    const std::wstring first = wstring_text(fixture.state->saved_folder);
    EXPECT_EQ(first.substr(0, first.size() - 20), fixture.folder.file(L"two.films")) << "and the time";
    open_page(&fixture);
    EXPECT_EQ(std::wstring(wstring_text(fixture.state->saved_folder)), first);
    EXPECT_EQ(test_folder_list(first), (std::vector<std::wstring>{L"two.films.html"}));
    fixture.front.run();
    EXPECT_EQ(fixture.state->saved_folder, nullptr) << "the next run has files of its own";
}

TEST(PageCommand, AFolderThatCannotBeMadeIsAskedForAnew) {
    ExportFixture fixture;
    test_file_write(fixture.folder.file(L"taken"), "a file");
    fixture.state->saved_folder = wstring_copy(fixture.folder.file(L"taken").c_str());
    fixture.front.other_folders = {fixture.folder.file(L"other")};
    open_page(&fixture);
    EXPECT_EQ(fixture.front.messages().find("The page could not be written into folder \""), 0U);
    EXPECT_EQ(test_folder_list(fixture.folder.file(L"other")).size(), 1U);
}

TEST(PageCommand, WithoutAProgramForPagesItIsToldWhereItIs) {
    ExportFixture fixture;
    fixture.front.opens_files = false;
    open_page(&fixture);
    EXPECT_NE(fixture.front.messages().find("two.films.html\", but the system has no program to open it"),
              std::string::npos)
        << fixture.front.messages();
}

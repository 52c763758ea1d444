// Tests of export/page_writer.h: the page as a file. What a browser makes of it is tested in tests/page.
#include "export/page_writer.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "export/page_files.h"
#include "platform/platform.h"
#include "process/process_text.h"
#include "tests/support/test_stack.h"
#include "tests/support/test_support.h"

static constexpr ExportFacts FACTS = {"Quarn 1.2.3", L"/home/somebody/cell.gds",
                                      L"C:\\Users\\somebody\\run.txt", "east", "2024-05-31 17:05"};

static Owned<Stack> run_stack(i32 grid_n, i32 grid_m) {
    Owned<Stack> stack = test_stack(grid_n, grid_m, 0.5F);
    stack->steps = step_list_create();
    step_list_append(stack->steps, memory_new_zeroed<ProcessStep>());
    test_layer(stack.get(), SUBSTRATE_MATERIAL, 0, 1);
    return stack;
}

static void add(PageWriter *page, const Stack *stack, const wchar_t *title,
                const wchar_t *heading = nullptr) {
    const ExportStep step = {stack, 0, 0, title, heading, 1, &FACTS};
    EXPECT_TRUE(page_writer_add(page, &step));
}

static std::string written(const PageWriter *page) {
    const TemporaryFolder folder;
    const std::wstring path = folder.file(L"page.html");
    wchar_t reason[EXPORT_REASON_SIZE];
    std::FILE *file = platform_file_open(path.c_str(), "wb");
    EXPECT_TRUE(page_writer_write(page, file, reason));
    std::fclose(file);
    return test_file_read(path);
}

// The page of a stack as it is.
static std::string page_of(const Stack *stack, const char *process_text = "") {
    const Owned<PageWriter> page(page_writer_create(stack, &FACTS, process_text));
    add(page.get(), stack, L"The substrate");
    return written(page.get());
}

static size_t count_of(const std::string &text, const std::string &part) {
    size_t count = 0;
    for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size())) {
        ++count;
    }
    return count;
}

// What lies between two texts, the first time.
static std::string between(const std::string &text, const std::string &start, const std::string &end) {
    const size_t from = text.find(start);
    const size_t to = from == std::string::npos ? from : text.find(end, from + start.size());
    EXPECT_NE(to, std::string::npos) << start;
    return to == std::string::npos ? "" : text.substr(from + start.size(), to - from - start.size());
}

static std::string facts_of(const std::string &page) {
    return between(page, "id=\"quarn-facts\">", "</script>");
}

static std::string text_of(const PageFile *file) {
    return std::string(reinterpret_cast<const char *>(file->bytes), static_cast<size_t>(*file->size));
}

TEST(PageFiles, CanStandInAPageAsTheyAre) {
    ASSERT_GT(PAGE_SCRIPT_COUNT, 1);
    for (i32 i = 0; i < PAGE_SCRIPT_COUNT; ++i) {
        const std::string text = text_of(&PAGE_SCRIPTS[i]);
        EXPECT_GT(text.size(), 0U) << PAGE_SCRIPTS[i].name;
        EXPECT_EQ(text.find("</script"), std::string::npos) << PAGE_SCRIPTS[i].name;
        EXPECT_EQ(text.find("<!--"), std::string::npos) << PAGE_SCRIPTS[i].name;
        EXPECT_EQ(text.find('\r'), std::string::npos)
            << PAGE_SCRIPTS[i].name << ": its hash is that of the file";
    }
    EXPECT_EQ(text_of(&PAGE_STYLE).find("</style"), std::string::npos);
    EXPECT_EQ(text_of(&PAGE_LICENSE).find('<'), std::string::npos);
    for (const char *mark : {"policy", "title", "style", "data", "scripts"}) {
        EXPECT_EQ(count_of(text_of(&PAGE_SKELETON), "<!--quarn:" + std::string(mark) + "-->"), 1U) << mark;
    }
}

TEST(PageWriterWrite, PutsEveryPartInItsPlace) {
    const std::string page = page_of(run_stack(4, 3).get());
    EXPECT_EQ(page.rfind("<!DOCTYPE html>", 0), 0U);
    EXPECT_EQ(page.find("<!--quarn:"), std::string::npos);
    EXPECT_NE(page.find("<title>Quarn</title>"), std::string::npos);
    EXPECT_NE(page.find(text_of(&PAGE_STYLE)), std::string::npos);
    EXPECT_NE(page.find(text_of(&PAGE_LICENSE)), std::string::npos);
    size_t place = 0;
    for (i32 i = 0; i < PAGE_SCRIPT_COUNT; ++i) {
        place = page.find("<script>" + text_of(&PAGE_SCRIPTS[i]) + "</script>", place);
        EXPECT_NE(place, std::string::npos) << PAGE_SCRIPTS[i].name;
    }
    EXPECT_EQ(page.substr(page.size() - 8), "</html>\n");
}

TEST(PageWriterWrite, LetsNoScriptRunButItsOwn) {
    const std::string page = page_of(run_stack(4, 3).get());
    const size_t policy = page.find("<meta http-equiv=\"Content-Security-Policy\"");
    ASSERT_NE(policy, std::string::npos);
    EXPECT_LT(policy, page.find("<script"));
    EXPECT_LT(policy, page.find("<style"));
    const std::string rules = between(page, "content=\"default-src 'none'", "\">");
    EXPECT_EQ(count_of(rules, "'sha256-"), static_cast<size_t>(PAGE_SCRIPT_COUNT));
    EXPECT_EQ(rules.find("unsafe-inline", rules.find("script-src")), std::string::npos);
    EXPECT_EQ(rules.find("unsafe-eval"), std::string::npos);
    EXPECT_EQ(rules.find("http"), std::string::npos);
}

TEST(PageWriterWrite, TellsTheRunAndNoFolder) {
    const Owned<Stack> stack = run_stack(4, 3);
    stack->cell_name = process_text_copy("TOP").release();
    stack->origin_x = 0.1F;
    stack->lengths_in_nm = 1;
    const std::string page = page_of(stack.get(), "settings\r\n# \xB5m\n");
    EXPECT_NE(page.find("<title>TOP</title>"), std::string::npos);
    EXPECT_EQ(page.find("somebody"), std::string::npos);
    EXPECT_EQ(
        facts_of(page),
        "{\"facts\":{\"program\":\"Quarn\",\"version\":\"1.2.3\",\"layout\":\"cell.gds\",\"cell\":\"TOP\","
        "\"section\":{\"x\":0.1,\"y\":0,\"width\":2,\"depth\":1.5,\"unit\":\"nm\"},\"cut\":\"east\","
        "\"heading\":\"\",\"processFile\":{\"name\":\"run.txt\",\"text\":\"settings\\u000d\\n# "
        "\xC2\xB5m\\n\"},"
        "\"date\":\"2024-05-31 17:05\"},\"columns\":4,\"rows\":3,\"spacing\":0.5,\"quantum\":0.000001,"
        "\"films\":[{\"name\":\"_SUB_\",\"material\":\"_SUB_\",\"color\":[0,0,0],\"opacity\":0}],"
        "\"steps\":[{\"number\":0,\"title\":\"The substrate\",\"kind\":\"substrate\",\"line\":0,"
        "\"changes\":[[0,0,1]],\"removed\":[],\"planes\":[[-1,0],[-1,3]]}]}");
}

TEST(PageWriterWrite, TheUsersHeadingIsTheTitle) {
    const Owned<Stack> stack = run_stack(4, 3);
    const Owned<PageWriter> page(page_writer_create(stack.get(), &FACTS, ""));
    add(page.get(), stack.get(), L"The substrate", L"Lot 7 <b> & more");
    EXPECT_NE(written(page.get()).find("<title>Lot 7 &lt;b&gt; &amp; more</title>"), std::string::npos);
}

TEST(PageWriterWrite, NamesNeverEndTheElementTheyStandIn) {
    static constexpr char HOSTILE[] = "</script></title><img src=x onerror='x'>\"\\\xE2\x80\xA8\xFF<!--";
    const Owned<Stack> stack = run_stack(4, 3);
    const std::string harmless = page_of(stack.get());
    stack->cell_name = process_text_copy(HOSTILE).release();
    test_layer(stack.get(), HOSTILE, 1, 2);
    const Owned<PageWriter> page(page_writer_create(stack.get(), &FACTS, HOSTILE));
    add(page.get(), stack.get(), L"</script><script>");
    const std::string text = written(page.get());
    // The skeleton and the scripts have some of these themselves.
    for (const char *part : {"</script", "</title", "<img", "<!--"}) {
        EXPECT_EQ(count_of(text, part), count_of(harmless, part)) << part;
    }
    EXPECT_EQ(facts_of(text).find('<'), std::string::npos);
    EXPECT_EQ(facts_of(text).find("\xE2\x80\xA8"), std::string::npos);
    EXPECT_EQ(count_of(facts_of(text), "\\u003c/script\\u003e"), 5U);
}

TEST(PageWriterWrite, FiguresThatAreNoNumbersDoNotSpoilThePage) {
    const f32 infinity = std::numeric_limits<f32>::infinity();
    const f32 nan = std::numeric_limits<f32>::quiet_NaN();
    const Owned<Stack> stack = run_stack(4, 1);
    stack->width = infinity;
    stack->origin_x = nan;
    stack->steps->items[0]->thickness = infinity;
    Layer *layer = test_layer(stack.get(), "A", -infinity, infinity);
    layer->top[1] = nan;
    layer->color[0] = nan;
    layer->color[3] = infinity;
    const std::string facts = facts_of(page_of(stack.get()));
    EXPECT_EQ(facts.find("nan"), std::string::npos) << facts;
    EXPECT_EQ(facts.find("inf"), std::string::npos) << facts;
}

TEST(PageWriterWrite, HighStacksAreCountedInCoarserQuanta) {
    const Owned<Stack> stack = run_stack(4, 3);
    stack->steps->items[0]->thickness = 600;
    stack->steps->items[0]->depth = -600;
    EXPECT_NE(facts_of(page_of(stack.get())).find("\"quantum\":0.00001,"), std::string::npos);
}

// Each film and each step takes some bytes, whatever the others are.
TEST(PageWriterWrite, ManyFilmsAndStepsTakeNoMoreThanWhatChanged) {
    const Owned<Stack> stack = run_stack(20, 10);
    for (i32 i = 0; i < 499; ++i) {
        test_layer(stack.get(), "FILM", 1 + static_cast<f32>(i) * 0.01F, 1 + static_cast<f32>(i + 1) * 0.01F);
    }
    const Owned<PageWriter> page(page_writer_create(stack.get(), &FACTS, ""));
    add(page.get(), stack.get(), L"");
    const size_t first = written(page.get()).size();
    for (i32 i = 1; i < 1000; ++i) {
        stack->layers[i % 500]->top[i % 200] += 0.001F;
        add(page.get(), stack.get(), L"");
    }
    EXPECT_LT(written(page.get()).size() - first, 999U * 400U);
}

TEST(PageWriterWrite, AFileThatCannotBeWrittenIsLeftToItsOwner) {
    const Owned<Stack> stack = run_stack(4, 3);
    const Owned<PageWriter> page(page_writer_create(stack.get(), &FACTS, ""));
    add(page.get(), stack.get(), L"");
    const TemporaryFolder folder;
    const std::wstring path = folder.file(L"page.html");
    test_file_write(path, "");
    std::FILE *file = platform_file_open(path.c_str(), "rb");
    wchar_t reason[EXPORT_REASON_SIZE];
    page_writer_write(page.get(), file, reason);
    EXPECT_NE(std::ferror(file), 0);
    std::fclose(file);
}

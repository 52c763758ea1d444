// The process files that stand in the documentation, run as they stand on the layouts that it names.
#include <gtest/gtest.h>

#include <sstream>

#include "tests/examples/example_run.h"
#include "tests/support/test_support.h"

// The blocks of a page whose fence is "```" and the mark, without their fences, in order.
static std::vector<std::string> blocks(const std::string &page, const std::string &mark) {
    std::istringstream text(test_text_read(test_wide(QUARN_SOURCE_DIR "/" + page)));
    std::vector<std::string> found;
    std::string fence;  // of the open block
    for (std::string line; std::getline(text, line);) {
        const bool is_fence = line.compare(0, 3, "```") == 0;
        if (is_fence && fence.empty() && line == "```" + mark) {
            found.emplace_back();
        } else if (!is_fence && fence == "```" + mark) {
            found.back() += line + "\n";
        }
        fence = !is_fence ? fence : fence.empty() ? line : "";
    }
    return found;
}

struct DocumentedFile {
    const char *page;
    size_t block;  // among those of process files
    const char *layout;
    int steps;  // that tell their time
};

TEST(Documentation, ItsProcessFilesRunAsTheyStand) {
    const DocumentedFile files[] = {
        {"README.md", 0, "cmos-inverter/cmos_inverter.gds", 7},
        {"docs/process-file.md", 0, "cmos-inverter/cmos_inverter.gds", 7},
        {"docs/first-process-file.md", 0, "damascene/damascene.gds", 6},
        {"docs/first-process-file.md", 1, "damascene/damascene.gds", 4},
    };
    for (const DocumentedFile &file : files) {
        const std::vector<std::string> found = blocks(file.page, "process");
        ASSERT_GT(found.size(), file.block) << file.page;
        const BatchRun run = batch_run(found[file.block], file.layout);
        EXPECT_EQ(run.exit_status, 0) << file.page << "\n" << run.console;
        EXPECT_EQ(run.console.find("WARNING"), std::string::npos) << file.page << "\n" << run.console;
        EXPECT_EQ(run.console.find("Found 0 polygons"), std::string::npos) << file.page;
        int steps = 0;
        for (size_t at = 0; (at = run.console.find("\nCompleted in ", at)) != std::string::npos; ++at) {
            ++steps;
        }
        EXPECT_EQ(steps, file.steps) << file.page << "\n" << run.console;
    }
}

TEST(Documentation, TheFirstProcessFileShowsWhatThePageShows) {
    const std::string page = "docs/first-process-file.md";
    const BatchRun run = batch_run(blocks(page, "process")[1], "damascene/damascene.gds");
    size_t shown = 0;
    for (const std::string &block : blocks(page, "")) {
        if (block.find("CELLS IN DATABASE:") == 0 || block.find("Extracting polygons") == 0) {
            EXPECT_NE(run.console.find(block), std::string::npos) << block << "is not in\n" << run.console;
            ++shown;
        }
    }
    EXPECT_EQ(shown, 2U);
    const BatchRun cells = batch_cells("damascene/damascene.gds");
    EXPECT_EQ(cells.exit_status, 0);
    for (const std::string &block : blocks(page, "")) {
        if (block.find("quarn-batch: ") == 0) {
            EXPECT_NE(cells.console.find(block), std::string::npos) << block << "is not in\n"
                                                                    << cells.console;
            ++shown;
        }
    }
    EXPECT_EQ(shown, 3U);
}

TEST(Documentation, TheFirstProcessFileShowsTheLayersAndTheStarter) {
    const BatchRun layers = batch_layout("--layers --cell INTERCONNECT", "damascene/damascene.gds");
    const BatchRun starter = batch_layout("--starter", "damascene/damascene.gds");
    EXPECT_EQ(layers.exit_status, 0);
    EXPECT_EQ(starter.exit_status, 0);
    size_t shown = 0;
    for (const std::string &block : blocks("docs/first-process-file.md", "")) {
        const bool listed = block.find("cell \"INTERCONNECT\", top cell") == 0;
        if (listed || block.find("settings ") == 0 || block.find("# Layer 10,") == 0) {
            const std::string &text = listed ? layers.console : starter.console;
            EXPECT_NE(text.find(block), std::string::npos) << block << "is not in\n" << text;
            ++shown;
        }
    }
    EXPECT_EQ(shown, 3U);
    const BatchRun run = batch_run(starter.console, "damascene/damascene.gds");
    EXPECT_EQ(run.exit_status, 0) << run.console;
    EXPECT_EQ(run.console.find("quarn-batch: "), std::string::npos) << "no hint: " << run.console;
}

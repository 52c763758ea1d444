#include "app/batch/batch_options.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

// Parses a command line; what is printed is dropped.
static BatchParse parse(std::vector<std::string> words, BatchOptions *options,
                        std::vector<std::string> *kept) {
    *kept = std::move(words);
    kept->insert(kept->begin(), "program");
    std::vector<char *> argv;
    for (std::string &word : *kept) {
        argv.push_back(word.data());
    }
    argv.push_back(nullptr);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const BatchParse result = batch_options_parse(static_cast<int>(kept->size()), argv.data(), options);
    testing::internal::GetCapturedStdout();
    testing::internal::GetCapturedStderr();
    return result;
}

TEST(BatchOptionsParse, DefaultsAreARunWithBmpPictures) {
    BatchOptions options;
    std::vector<std::string> words;
    ASSERT_EQ(parse({"a.gds", "b.txt"}, &options, &words), BATCH_PARSE_OK);
    EXPECT_EQ(options.mode, BATCH_RUN);
    EXPECT_FALSE(options.no_images);
    EXPECT_EQ(options.format, IMAGE_BMP);
    EXPECT_STREQ(options.layout_path, "a.gds");
    EXPECT_STREQ(options.process_path, "b.txt");
    EXPECT_EQ(options.output_folder, nullptr);
    EXPECT_EQ(options.data_folder, nullptr);
}

TEST(BatchOptionsParse, OutputFolderJoinedOrApartInAnyOrder) {
    const std::vector<std::vector<std::string>> lines = {
        {"-o", "out", "a", "b"},    {"-oout", "a", "b"},           {"a", "-o", "out", "b"},
        {"a", "b", "-oout"},        {"--output=out", "a", "b"},    {"a", "--output", "out", "b"},
        {"--out", "out", "a", "b"}, {"-o", "out", "--", "a", "b"}, {"-o", "first", "-o", "out", "a", "b"},
    };
    for (const auto &line : lines) {
        BatchOptions options;
        std::vector<std::string> words;
        ASSERT_EQ(parse(line, &options, &words), BATCH_PARSE_OK) << testing::PrintToString(line);
        EXPECT_STREQ(options.output_folder, "out");
        EXPECT_STREQ(options.layout_path, "a");
        EXPECT_STREQ(options.process_path, "b");
    }
}

TEST(BatchOptionsParse, FilesAfterTwoDashesMayLookLikeOptions) {
    BatchOptions options;
    std::vector<std::string> words;
    ASSERT_EQ(parse({"--no-images", "--", "-o", "--check"}, &options, &words), BATCH_PARSE_OK);
    EXPECT_STREQ(options.layout_path, "-o");
    EXPECT_STREQ(options.process_path, "--check");
    EXPECT_TRUE(options.no_images);
    EXPECT_EQ(options.mode, BATCH_RUN);
}

// Which formats are asked for, by name.
static std::string formats_of(const BatchOptions &options) {
    std::string names;
    for (i32 i = 0; i < EXPORT_FORMAT_COUNT; ++i) {
        names += options.formats[i] ? std::string(EXPORT_FORMATS[i].name) + " " : "";
    }
    return names;
}

TEST(BatchOptionsParse, Exports) {
    BatchOptions options;
    std::vector<std::string> words;
    ASSERT_EQ(parse({"a", "b"}, &options, &words), BATCH_PARSE_OK);
    EXPECT_EQ(formats_of(options), "");
    EXPECT_EQ(options.page_path, nullptr);
    ASSERT_EQ(parse({"--profile", "csv,svg", "--mesh=stl", "--report", "r.html", "a", "b"}, &options, &words),
              BATCH_PARSE_OK);
    EXPECT_EQ(formats_of(options), "svg csv stl ");
    EXPECT_STREQ(options.page_path, "r.html");
    ASSERT_EQ(parse({"--profile", "svg", "--profile", "svg,gds", "--check", "a", "b"}, &options, &words),
              BATCH_PARSE_OK);
    EXPECT_EQ(formats_of(options), "svg gds ");
    ASSERT_EQ(parse({"--report", "r.html", "--cut", "c=0,0,1,1", "a", "b"}, &options, &words),
              BATCH_PARSE_OK);
    batch_options_free(&options);
    ASSERT_EQ(parse({"--report", "out/r.html", "a", "b"}, &options, &words), BATCH_PARSE_OK);
}

TEST(BatchOptionsParse, ExportsThatCannotBe) {
    const std::vector<std::vector<std::string>> lines = {
        {"--profile", "png"},
        {"--profile", ""},
        {"--profile", "svg,"},
        {"--profile", ",svg"},
        {"--profile", "SVG"},
        {"--profile", "svg csv"},
        {"--profile", "glb"},  // a solid
        {"--mesh", "svg"},
        {"--mesh", "glb,obj"},
        {"--report", ""},
        {"--report", "x/r.html", "--cut", "c=0,0,1,1"},
        {"--report", "x/r.html", "--cuts", "c.csv"},
        {"--report", "..", "--cuts", "c.csv"},
        {"--cells", "--profile", "svg"},
        {"--layers", "--mesh", "stl"},
        {"--starter", "--report", "r.html"},
        {"--profile"},
        {"--mesh"},
        {"--report"},
    };
    for (std::vector<std::string> line : lines) {
        if (line.size() > 1) {
            line.insert(line.end(), {"a", "b"});
        } else {
            line.insert(line.begin(), {"a", "b"});
        }
        BatchOptions options;
        std::vector<std::string> words;
        EXPECT_EQ(parse(line, &options, &words), BATCH_PARSE_WRONG) << testing::PrintToString(line);
        batch_options_free(&options);
    }
}

TEST(BatchOptionsParse, ModesAndFormats) {
    BatchOptions options;
    std::vector<std::string> words;
    ASSERT_EQ(parse({"--check", "--format", "png", "--data", "d", "a", "b"}, &options, &words),
              BATCH_PARSE_OK);
    EXPECT_EQ(options.mode, BATCH_CHECK);
    EXPECT_EQ(options.format, IMAGE_PNG);
    EXPECT_STREQ(options.data_folder, "d");
    ASSERT_EQ(parse({"--cells", "a"}, &options, &words), BATCH_PARSE_OK);
    EXPECT_EQ(options.mode, BATCH_CELLS);
    EXPECT_EQ(options.process_path, nullptr);
    EXPECT_EQ(parse({"--cells", "a", "b", "--format=bmp"}, &options, &words), BATCH_PARSE_OK);
    ASSERT_EQ(parse({"--layers", "a", "--cell", "TOP"}, &options, &words), BATCH_PARSE_OK);
    EXPECT_EQ(options.mode, BATCH_LAYERS);
    EXPECT_STREQ(options.cell_name, "TOP");
    ASSERT_EQ(parse({"--starter", "a"}, &options, &words), BATCH_PARSE_OK);
    EXPECT_EQ(options.mode, BATCH_STARTER);
    EXPECT_EQ(options.cell_name, nullptr);
    ASSERT_EQ(parse({"--starter", "a", "TOP"}, &options, &words), BATCH_PARSE_OK);
    EXPECT_STREQ(options.cell_name, "TOP");
    EXPECT_EQ(options.process_path, nullptr);
}

TEST(BatchOptionsParse, HelpAndVersionEnd) {
    BatchOptions options;
    std::vector<std::string> words;
    EXPECT_EQ(parse({"--help"}, &options, &words), BATCH_PARSE_END);
    EXPECT_EQ(parse({"a", "-h"}, &options, &words), BATCH_PARSE_END);
    EXPECT_EQ(parse({"a", "b", "--version"}, &options, &words), BATCH_PARSE_END);
}

TEST(BatchOptionsParse, WrongUsageIsRefused) {
    const std::vector<std::vector<std::string>> lines = {
        {},
        {"a"},
        {"a", "b", "c"},
        {"--cells"},
        {"--cells", "a", "b", "c"},
        {"--cells", "--check", "a", "b"},
        {"--check", "a"},
        {"--nonsense", "a", "b"},
        {"-x", "a", "b"},
        {"-x"},
        {"--format", "gif", "a", "b"},
        {"--format", "", "a", "b"},
        {"--format=PNG", "a", "b"},
        {"--output=", "a", "b"},
        {"--data", "", "a", "b"},
        {"a", "b", "-o"},
        {"a", "b", "--data"},
        {"--no-images=1", "a", "b"},
        {"--c", "a", "b"},  // --check or --cells
        {"--jobs", "0", "a", "b"},
        {"--jobs", "257", "a", "b"},
        {"--jobs", "2x", "a", "b"},
        {"--cuts", "", "a", "b"},
        {"--cells", "--cut", "w=0,0,1,1", "a"},
        {"--cell", "TOP", "a", "b"},
        {"--check", "--cell", "TOP", "a", "b"},
        {"--layers"},
        {"--layers", "--cell=", "a"},
        {"--layers", "--starter", "a"},
        {"--starter", "a", "TOP", "x"},
        {"--starter", "--cell", "TOP", "a", "TOP"},
    };
    for (const auto &line : lines) {
        BatchOptions options;
        std::vector<std::string> words;
        EXPECT_EQ(parse(line, &options, &words), BATCH_PARSE_WRONG) << testing::PrintToString(line);
        batch_options_free(&options);  // what stood before the fault
    }
}

TEST(BatchOptionsParse, CutsStepsAndJobs) {
    BatchOptions options;
    std::vector<std::string> words;
    ASSERT_EQ(parse({"a", "b"}, &options, &words), BATCH_PARSE_OK);
    EXPECT_EQ(options.cut_count, 0);
    EXPECT_EQ(options.cuts_file, nullptr);
    EXPECT_EQ(options.step_list, nullptr);
    EXPECT_GE(options.jobs, 1);
    ASSERT_EQ(parse({"--cut", "w=1", "a", "--cut=e=2", "--cuts", "c.csv", "--jobs", "256", "--steps",
                     "1,last", "b"},
                    &options, &words),
              BATCH_PARSE_OK);
    ASSERT_EQ(options.cut_count, 2);
    EXPECT_STREQ(options.cuts[0], "w=1");
    EXPECT_STREQ(options.cuts[1], "e=2");
    EXPECT_STREQ(options.cuts_file, "c.csv");
    EXPECT_STREQ(options.step_list, "1,last");
    EXPECT_EQ(options.jobs, 256);
    batch_options_free(&options);
    EXPECT_EQ(options.cut_count, 0);
}

TEST(BatchOptionsParse, HowPicturesLook) {
    BatchOptions options;
    std::vector<std::string> words;
    ASSERT_EQ(parse({"a", "b"}, &options, &words), BATCH_PARSE_OK);
    EXPECT_EQ(options.pictures.width, 1920);
    EXPECT_EQ(options.pictures.title, nullptr);
    ASSERT_EQ(parse({"--width", "800", "--quality=fine", "a", "--z-scale=2.5", "--title", "--text", "b",
                     "--background", "none"},
                    &options, &words),
              BATCH_PARSE_OK);
    EXPECT_EQ(options.pictures.width, 800);
    EXPECT_TRUE(options.pictures.fine);
    EXPECT_EQ(options.pictures.vertical_scale, 2.5F);
    EXPECT_STREQ(options.pictures.title, "--text");
    EXPECT_STREQ(options.pictures.background, "none");
    for (const char *wrong : {"--width=319", "--quality=good", "--z-scale=0"}) {
        EXPECT_EQ(parse({wrong, "a", "b"}, &options, &words), BATCH_PARSE_WRONG) << wrong;
    }
}

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
    BatchParse result = batch_options_parse(static_cast<int>(kept->size()), argv.data(), options);
    testing::internal::GetCapturedStdout();
    testing::internal::GetCapturedStderr();
    return result;
}

TEST(BatchOptionsParse, DefaultsAreARunWithBmpPictures) {
    BatchOptions options;
    std::vector<std::string> words;
    ASSERT_EQ(BATCH_PARSE_OK, parse({"a.gds", "b.txt"}, &options, &words));
    EXPECT_EQ(BATCH_RUN, options.mode);
    EXPECT_FALSE(options.no_images);
    EXPECT_EQ(IMAGE_BMP, options.format);
    EXPECT_STREQ("a.gds", options.layout_path);
    EXPECT_STREQ("b.txt", options.process_path);
    EXPECT_EQ(nullptr, options.output_folder);
    EXPECT_EQ(nullptr, options.data_folder);
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
        ASSERT_EQ(BATCH_PARSE_OK, parse(line, &options, &words)) << testing::PrintToString(line);
        EXPECT_STREQ("out", options.output_folder);
        EXPECT_STREQ("a", options.layout_path);
        EXPECT_STREQ("b", options.process_path);
    }
}

TEST(BatchOptionsParse, FilesAfterTwoDashesMayLookLikeOptions) {
    BatchOptions options;
    std::vector<std::string> words;
    ASSERT_EQ(BATCH_PARSE_OK, parse({"--no-images", "--", "-o", "--check"}, &options, &words));
    EXPECT_STREQ("-o", options.layout_path);
    EXPECT_STREQ("--check", options.process_path);
    EXPECT_TRUE(options.no_images);
    EXPECT_EQ(BATCH_RUN, options.mode);
}

TEST(BatchOptionsParse, ModesAndFormats) {
    BatchOptions options;
    std::vector<std::string> words;
    ASSERT_EQ(BATCH_PARSE_OK,
              parse({"--check", "--format", "png", "--data", "d", "a", "b"}, &options, &words));
    EXPECT_EQ(BATCH_CHECK, options.mode);
    EXPECT_EQ(IMAGE_PNG, options.format);
    EXPECT_STREQ("d", options.data_folder);
    ASSERT_EQ(BATCH_PARSE_OK, parse({"--cells", "a"}, &options, &words));
    EXPECT_EQ(BATCH_CELLS, options.mode);
    EXPECT_EQ(nullptr, options.process_path);
    EXPECT_EQ(BATCH_PARSE_OK, parse({"--cells", "a", "b", "--format=bmp"}, &options, &words));
}

TEST(BatchOptionsParse, HelpAndVersionEnd) {
    BatchOptions options;
    std::vector<std::string> words;
    EXPECT_EQ(BATCH_PARSE_END, parse({"--help"}, &options, &words));
    EXPECT_EQ(BATCH_PARSE_END, parse({"a", "-h"}, &options, &words));
    EXPECT_EQ(BATCH_PARSE_END, parse({"a", "b", "--version"}, &options, &words));
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
    };
    for (const auto &line : lines) {
        BatchOptions options;
        std::vector<std::string> words;
        EXPECT_EQ(BATCH_PARSE_WRONG, parse(line, &options, &words)) << testing::PrintToString(line);
    }
}

#include "app/gtk/desktop_options.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

// A command line of the program, with what reading it gave and printed.
struct Line {
    std::vector<std::string> words;
    std::vector<char *> arguments;
    DesktopParse result;
    DesktopOptions options;
    std::string output;
    std::string errors;

    explicit Line(std::vector<std::string> given) : words(std::move(given)), result(), options() {
        words.insert(words.begin(), "quarn");
        for (std::string &word : words) {
            arguments.push_back(word.data());
        }
        arguments.push_back(nullptr);
    }

    i32 count() const { return static_cast<i32>(words.size()); }
};

static Line answered(std::vector<std::string> words) {
    Line line(std::move(words));
    testing::internal::CaptureStdout();
    line.result = desktop_options_answer(line.count(), line.arguments.data());
    line.output = testing::internal::GetCapturedStdout();
    return line;
}

static Line parsed(std::vector<std::string> words) {
    Line line(std::move(words));
    testing::internal::CaptureStderr();
    line.result = desktop_options_parse(line.count(), line.arguments.data(), &line.options);
    line.errors = testing::internal::GetCapturedStderr();
    return line;
}

TEST(DesktopOptionsAnswer, HelpAndVersionWhereverTheyStand) {
    for (const auto &words : std::vector<std::vector<std::string>>{
             {"--version"}, {"a.gds", "b.txt", "--version"}, {"--nonsense", "--version", "--help"}}) {
        Line line = answered(words);
        EXPECT_EQ(DESKTOP_PARSE_END, line.result) << words[0];
        EXPECT_EQ("Quarn 3.0.0\n", line.output) << words[0];
    }
    Line help = answered({"a.gds", "--help"});
    EXPECT_EQ(DESKTOP_PARSE_END, help.result);
    EXPECT_EQ(0U, help.output.find("Usage: quarn [LAYOUT.gds [PROCESS.txt]]\n")) << help.output;
}

TEST(DesktopOptionsAnswer, NothingIsAnsweredWithoutOrBehindTwoDashes) {
    for (const auto &words :
         std::vector<std::vector<std::string>>{{}, {"a.gds", "b.txt"}, {"--", "--help"}, {"-version"}}) {
        Line line = answered(words);
        EXPECT_EQ(DESKTOP_PARSE_OK, line.result);
        EXPECT_EQ("", line.output);
    }
}

TEST(DesktopOptionsParse, TheFirstFileIsTheLayoutTheSecondTheProcessFile) {
    Line none = parsed({});
    EXPECT_EQ(DESKTOP_PARSE_OK, none.result);
    EXPECT_EQ(nullptr, none.options.layout_path);
    EXPECT_EQ(nullptr, none.options.process_path);

    Line layout = parsed({"a.gds"});
    EXPECT_EQ(DESKTOP_PARSE_OK, layout.result);
    EXPECT_STREQ("a.gds", layout.options.layout_path);
    EXPECT_EQ(nullptr, layout.options.process_path);

    Line both = parsed({"b.txt", "a.gds"});
    EXPECT_EQ(DESKTOP_PARSE_OK, both.result);
    EXPECT_STREQ("b.txt", both.options.layout_path);
    EXPECT_STREQ("a.gds", both.options.process_path);
    EXPECT_EQ("", both.errors);
}

TEST(DesktopOptionsParse, FilesBehindTwoDashesMayBeginWithADash) {
    Line line = parsed({"-", "--", "-b.txt"});
    EXPECT_EQ(DESKTOP_PARSE_OK, line.result);
    EXPECT_STREQ("-", line.options.layout_path);
    EXPECT_STREQ("-b.txt", line.options.process_path);
    EXPECT_STREQ("--", parsed({"--", "--"}).options.layout_path);
}

TEST(DesktopOptionsParse, WrongUsageIsToldWithTheWordAtFault) {
    Line option = parsed({"a.gds", "-N"});
    EXPECT_EQ(DESKTOP_PARSE_WRONG, option.result);
    EXPECT_EQ("quarn: unknown option '-N'\nTry 'quarn --help' for more information.\n", option.errors);

    Line files = parsed({"a.gds", "b.txt", "c.txt"});
    EXPECT_EQ(DESKTOP_PARSE_WRONG, files.result);
    EXPECT_EQ("quarn: too many files: 'c.txt'\nTry 'quarn --help' for more information.\n", files.errors);
}

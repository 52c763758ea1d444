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
        const Line line = answered(words);
        EXPECT_EQ(line.result, DESKTOP_PARSE_END) << words[0];
        EXPECT_EQ(line.output, "Quarn 3.0.0\n") << words[0];
    }
    const Line help = answered({"a.gds", "--help"});
    EXPECT_EQ(help.result, DESKTOP_PARSE_END);
    EXPECT_EQ(help.output.find("Usage: quarn [options] [LAYOUT.gds [PROCESS.txt]]\n"), 0U) << help.output;
}

TEST(DesktopOptionsAnswer, NothingIsAnsweredWithoutOrBehindTwoDashes) {
    for (const auto &words :
         std::vector<std::vector<std::string>>{{}, {"a.gds", "b.txt"}, {"--", "--help"}, {"-version"}}) {
        const Line line = answered(words);
        EXPECT_EQ(line.result, DESKTOP_PARSE_OK);
        EXPECT_EQ(line.output, "");
    }
}

TEST(DesktopOptionsParse, TheFirstFileIsTheLayoutTheSecondTheProcessFile) {
    const Line none = parsed({});
    EXPECT_EQ(none.result, DESKTOP_PARSE_OK);
    EXPECT_EQ(none.options.layout_path, nullptr);
    EXPECT_EQ(none.options.process_path, nullptr);

    const Line layout = parsed({"a.gds"});
    EXPECT_EQ(layout.result, DESKTOP_PARSE_OK);
    EXPECT_STREQ(layout.options.layout_path, "a.gds");
    EXPECT_EQ(layout.options.process_path, nullptr);

    const Line both = parsed({"b.txt", "a.gds"});
    EXPECT_EQ(both.result, DESKTOP_PARSE_OK);
    EXPECT_STREQ(both.options.layout_path, "b.txt");
    EXPECT_STREQ(both.options.process_path, "a.gds");
    EXPECT_EQ(both.errors, "");
}

TEST(DesktopOptionsParse, FilesBehindTwoDashesMayBeginWithADash) {
    const Line line = parsed({"-", "--", "-b.txt"});
    EXPECT_EQ(line.result, DESKTOP_PARSE_OK);
    EXPECT_STREQ(line.options.layout_path, "-");
    EXPECT_STREQ(line.options.process_path, "-b.txt");
    EXPECT_STREQ(parsed({"--", "--"}).options.layout_path, "--");
}

TEST(DesktopOptionsParse, WrongUsageIsToldWithTheWordAtFault) {
    const Line option = parsed({"a.gds", "-N"});
    EXPECT_EQ(option.result, DESKTOP_PARSE_WRONG);
    EXPECT_EQ(option.errors, "quarn: unknown option '-N'\nTry 'quarn --help' for more information.\n");

    const Line files = parsed({"a.gds", "b.txt", "c.txt"});
    EXPECT_EQ(files.result, DESKTOP_PARSE_WRONG);
    EXPECT_EQ(files.errors, "quarn: too many files: 'c.txt'\nTry 'quarn --help' for more information.\n");
}

TEST(DesktopOptionsParse, HowPicturesLook) {
    const Line none = parsed({"a.gds"});
    EXPECT_EQ(none.options.pictures.width, 1920);
    EXPECT_FALSE(none.options.pictures.fine);
    const Line line = parsed({"--width=800", "a.gds", "--quality", "fine", "--title", "--text", "b.txt",
                              "--z-scale=2", "--background", "#102030"});
    EXPECT_EQ(line.result, DESKTOP_PARSE_OK) << line.errors;
    EXPECT_STREQ(line.options.layout_path, "a.gds");
    EXPECT_STREQ(line.options.process_path, "b.txt");
    EXPECT_EQ(line.options.pictures.width, 800);
    EXPECT_TRUE(line.options.pictures.fine);
    EXPECT_EQ(line.options.pictures.vertical_scale, 2.0F);
    EXPECT_STREQ(line.options.pictures.title, "--text");
    EXPECT_STREQ(line.options.pictures.background, "#102030");
}

TEST(DesktopOptionsParse, WrongValuesAreTold) {
    const std::string hint = "\nTry 'quarn --help' for more information.\n";
    const struct {
        std::vector<std::string> words;
        const char *error;
    } cases[] = {
        {{"--width", "5"}, "quarn: --width takes a number of pixels from 320 to 16384, not '5'"},
        {{"--quality=best"}, "quarn: --quality takes plain or fine, not 'best'"},
        {{"a.gds", "--title"}, "quarn: a value is missing behind '--title'"},
        {{"--widths=5"}, "quarn: unknown option '--widths=5'"},
    };
    for (const auto &c : cases) {
        const Line line = parsed(c.words);
        EXPECT_EQ(line.result, DESKTOP_PARSE_WRONG);
        EXPECT_EQ(line.errors, c.error + hint);
    }
}

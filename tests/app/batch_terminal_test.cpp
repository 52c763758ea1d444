// quarn-batch on a terminal: names with escape sequences are shown, not obeyed.
#include <gtest/gtest.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>

#include "tests/app/batch_fixture.h"

// What a terminal gets from the program, standard output and standard error.
//   kind   of the terminal, as TERM has it
static std::string run_on_terminal(const BatchFixture &fixture, const std::vector<std::string> &arguments,
                                   const char *kind = "xterm", unsigned short columns = 80) {
    const std::string program = QUARN_BATCH_PROGRAM;
    std::vector<char *> argv = {const_cast<char *>(program.c_str())};
    for (const std::string &argument : arguments) {
        argv.push_back(const_cast<char *>(argument.c_str()));
    }
    argv.push_back(nullptr);
    const std::string folder = fixture.path("");
    int reader = -1;
    const winsize size = {24, columns, 0, 0};
    const pid_t process = forkpty(&reader, nullptr, nullptr, &size);
    if (process == 0) {
        alarm(60);
        setenv("TERM", kind, 1);
        if (chdir(folder.c_str()) == 0) {
            execv(program.c_str(), argv.data());
        }
        _exit(127);
    }
    std::string text;
    char bytes[4096];
    for (ssize_t count = 0; (count = read(reader, bytes, sizeof(bytes))) > 0;) {
        text.append(bytes, static_cast<size_t>(count));
    }
    waitpid(process, nullptr, 0);
    close(reader);
    return text;
}

static const std::string NAME =
    "a\x1B[31m\x07\xC2\x9B"
    "b";
static const std::string SHOWN =
    "a\\x1b[31m\\x07\\x9b"
    "b";

TEST(QuarnBatchTerminal, ShowsControlCharactersOfNames) {
    const BatchFixture fixture;
    fixture.write(NAME + ".gds", small_layout_bytes());
    fixture.write("p.txt", process_text("deposition -name " + NAME + "\n"));
    std::string named = small_layout_bytes();
    const size_t top = named.find(std::string("TOP\0", 4));
    const std::string padded = NAME + (NAME.size() % 2 == 0 ? "" : std::string(1, '\0'));
    named.replace(top - 4, 8, {0, static_cast<char>(padded.size() + 4), 6, 6});
    named.insert(top, padded);
    fixture.write("named.gds", named);
    const std::vector<std::vector<std::string>> lines = {
        {"--cells", NAME + ".gds"},  // a path on standard output
        {"--layers", "named.gds"},
        {"--starter", "named.gds"},
        {"--layers", "--cell", NAME + "x", "named.gds"},
        {"--cells", NAME},  // a file that is not there, on standard error
        {"--" + NAME},      // the command line's own messages
        {"--output=x", "--check=" + NAME},
        {"-\x1B"},
        {"--format", NAME},
        {"a", "b", NAME},
        {"--check", "a.gds", "p.txt"},
    };
    for (const std::vector<std::string> &line : lines) {
        const std::string text = run_on_terminal(fixture, line);
        EXPECT_NE(text, "") << line[0];
        EXPECT_EQ(text.find_first_of("\x1B\x07\x9B"), std::string::npos) << text;
    }
    EXPECT_NE(run_on_terminal(fixture, {"--cells", NAME + ".gds"}).find(SHOWN + ".gds"), std::string::npos);
    EXPECT_NE(run_on_terminal(fixture, {"--" + NAME}).find("option '--" + SHOWN + "'"), std::string::npos);
}

TEST(QuarnBatchTerminal, PipesGetTheNamesAsTheyAre) {
    const BatchFixture fixture;
    fixture.write(NAME + ".gds", small_layout_bytes());
    EXPECT_NE(fixture.run({"--cells", NAME + ".gds"}).output.find(NAME + ".gds"), std::string::npos);
    EXPECT_NE(fixture.run({"--" + NAME}).error.find("option '--" + NAME + "'"), std::string::npos);
}

TEST(QuarnBatchTerminal, ShowsHowFarTheCutsAre) {
    const BatchFixture fixture;
    fixture.write("p.txt", process_text(""));
    const std::string text =
        run_on_terminal(fixture, {"--no-images", "--jobs", "1", "-o", "out", "--cut", "a=0,0,10,2.5", "--cut",
                                  "b=1,0,10,2.5", "a.gds", "p.txt"});
    EXPECT_NE(text.find("\r0 of 2 cuts done"), std::string::npos) << text;
    EXPECT_NE(text.find(" \ra: done in"), std::string::npos) << "it is taken away before a line: " << text;
    EXPECT_EQ(text.find("\\x0d"), std::string::npos) << text;
    EXPECT_EQ(text.find("2 of 2 cuts done"), std::string::npos) << "the table says the rest: " << text;
}

// What stands on the screen at the end, a line each, when each line is as long as it may be.
static std::vector<std::string> screen_of(const std::string &text) {
    std::vector<std::string> lines(1);
    size_t column = 0;
    for (const char character : text) {
        if (character == '\n') {
            lines.emplace_back();
            column = 0;
        } else if (character == '\r') {
            column = 0;
        } else {
            std::string &line = lines.back();
            line.resize(std::max(line.size(), column + 1), ' ');
            line[column++] = character;
        }
    }
    for (std::string &line : lines) {
        line.erase(line.find_last_not_of(' ') + 1);
    }
    return lines;
}

static const std::vector<std::string> RUN_WITH_TABLES = {"--no-images", "--profile", "csv",  "-o",
                                                         "out",         "a.gds",     "p.txt"};

TEST(QuarnBatchTerminal, ShowsWhatARunIsAt) {
    const BatchFixture fixture;
    fixture.write("p.txt", process_text(deposition_line("A") + deposition_line("B")));
    const std::string text = run_on_terminal(fixture, RUN_WITH_TABLES);
    for (const char *line :
         {"\rreading the layout", "\rsetting up the section", "\rstep 0 of 2: the substrate",
          "\rstep 1 of 2: A deposition", "\rstep 2 of 2: B deposition, csv"}) {
        EXPECT_NE(text.find(line), std::string::npos) << line << " in " << text;
    }
    EXPECT_NE(text.find("Executing B deposition ... \r\n\rstep 2 of 2: B deposition"), std::string::npos)
        << "it is shown again below a text: " << text;
    EXPECT_EQ(text.find("\\x0d"), std::string::npos) << text;
    for (const std::string &line : screen_of(text)) {
        EXPECT_EQ(line.find(" of 2: "), std::string::npos) << "nothing of it stays: " << line;
    }
}

TEST(QuarnBatchTerminal, ADumbOneGetsTheTextsOnly) {
    const BatchFixture fixture;
    fixture.write("p.txt", process_text(deposition_line("A")));
    for (const char *kind : {"dumb", ""}) {
        const std::string text = run_on_terminal(fixture, RUN_WITH_TABLES, kind);
        EXPECT_NE(text.find("Executing A deposition"), std::string::npos);
        EXPECT_EQ(text.find(" of 1: "), std::string::npos) << text;
    }
}

TEST(QuarnBatchTerminal, TheLineFitsANarrowOne) {
    const BatchFixture fixture;
    fixture.write("p.txt", process_text(deposition_line("A_RATHER_LONG_NAME_OF_A_FILM")));
    const std::string text = run_on_terminal(fixture, RUN_WITH_TABLES, "xterm", 30);
    EXPECT_NE(text.find("\rstep 1 of 1: A_RATHER_LONG_NA\r"), std::string::npos)
        << "29 columns, so that the cursor stays on the line: " << text;
}

TEST(QuarnBatchTerminal, NamesInTheLineDoNotMoveTheCursor) {
    const BatchFixture fixture;
    fixture.write("p.txt", process_text(deposition_line("A\x1B[31m\x07")));
    const std::string text = run_on_terminal(fixture, RUN_WITH_TABLES);
    EXPECT_NE(text.find("step 1 of 1: A\\x1b[31m\\x07 deposition"), std::string::npos) << text;
    EXPECT_EQ(text.find_first_of("\x1B\x07"), std::string::npos) << text;
}

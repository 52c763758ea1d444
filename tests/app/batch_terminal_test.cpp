// quarn-batch on a terminal: names with escape sequences are shown, not obeyed.
#include <gtest/gtest.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/app/batch_scene.h"

// What a terminal gets from the program, standard output and standard error.
static std::string run_on_terminal(const BatchScene &scene, const std::vector<std::string> &arguments) {
    const std::string program = QUARN_BATCH_PROGRAM;
    std::vector<char *> argv = {const_cast<char *>(program.c_str())};
    for (const std::string &argument : arguments) {
        argv.push_back(const_cast<char *>(argument.c_str()));
    }
    argv.push_back(nullptr);
    const std::string folder = scene.path("");
    int reader = -1;
    const pid_t process = forkpty(&reader, nullptr, nullptr, nullptr);
    if (process == 0) {
        alarm(60);
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
    const BatchScene scene;
    scene.write(NAME + ".gds", small_layout_bytes());
    scene.write("p.txt", process_text("deposition -name " + NAME + "\n"));
    const std::vector<std::vector<std::string>> lines = {
        {"--cells", NAME + ".gds"},  // a path on standard output
        {"--cells", NAME},           // a file that is not there, on standard error
        {"--" + NAME},               // the command line's own messages
        {"--output=x", "--check=" + NAME},
        {"-\x1B"},
        {"--format", NAME},
        {"a", "b", NAME},
        {"--check", "a.gds", "p.txt"},
    };
    for (const std::vector<std::string> &line : lines) {
        const std::string text = run_on_terminal(scene, line);
        EXPECT_NE(text, "") << line[0];
        EXPECT_EQ(std::string::npos, text.find_first_of("\x1B\x07\x9B")) << text;
    }
    EXPECT_NE(std::string::npos, run_on_terminal(scene, {"--cells", NAME + ".gds"}).find(SHOWN + ".gds"));
    EXPECT_NE(std::string::npos, run_on_terminal(scene, {"--" + NAME}).find("option '--" + SHOWN + "'"));
}

TEST(QuarnBatchTerminal, PipesGetTheNamesAsTheyAre) {
    const BatchScene scene;
    scene.write(NAME + ".gds", small_layout_bytes());
    EXPECT_NE(std::string::npos, scene.run({"--cells", NAME + ".gds"}).output.find(NAME + ".gds"));
    EXPECT_NE(std::string::npos, scene.run({"--" + NAME}).error.find("option '--" + NAME + "'"));
}

#include "platform/terminal.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

#include <string>

#include "platform/owned_file.h"

// A pseudo-terminal whose other end tells what arrives, without the changes that a terminal line makes.
struct Terminal {
    Terminal() {
        EXPECT_EQ(openpty(&reader, &writer, nullptr, nullptr, nullptr), 0);
        termios settings = {};
        tcgetattr(writer, &settings);
        cfmakeraw(&settings);
        tcsetattr(writer, TCSANOW, &settings);
        stream = fdopen(writer, "w");
        owned.reset(stream);
    }
    ~Terminal() {
        owned.reset();
        close(reader);
    }
    Terminal(const Terminal &) = delete;
    Terminal &operator=(const Terminal &) = delete;

    // What was written since the last call; ends with a mark of its own, so that nothing is waited for.
    std::string arrived() const {
        std::fputs("\004", stream);
        std::fflush(stream);
        std::string text;
        char byte = 0;
        while (read(reader, &byte, 1) == 1 && byte != 4) {
            text += byte;
        }
        return text;
    }

    int reader = -1;
    int writer = -1;
    std::FILE *stream = nullptr;
    OwnedFile owned;
};

TEST(TerminalWrite, ShowsControlCharactersOnATerminal) {
    const struct {
        const char *text, *shown;
    } cases[] = {
        {"plain text, 100% \\ \xC3\xA9 \xE6\x96\xAD \xF0\x9F\x94\xAC", nullptr},
        {"line\nand\ttab\r\n", nullptr},
        {"red \x1B[31m", "red \\x1b[31m"},
        {"back\rto the start", "back\\x0dto the start"},
        {"\x01\x07\x08\x0B\x0C\x1F\x7F", "\\x01\\x07\\x08\\x0b\\x0c\\x1f\\x7f"},
        {"\xC2\x80\xC2\x9B\xC2\x9F\xC2\xA0", "\\x80\\x9b\\x9f\xC2\xA0"},  // U+00A0 is a blank
        {"\x9B"
         "31m \x80\x9F\xA0\xFF",
         "\\x9b"
         "31m \\x80\\x9f\xA0\xFF"},                  // bytes that are no UTF-8
        {"\xE6\x96\x1B[31m", "\xE6\\x96\\x1b[31m"},  // a character cut short
        {"", nullptr},
    };
    const Terminal terminal;
    ASSERT_TRUE(platform_is_terminal(terminal.stream));
    for (const auto &c : cases) {
        EXPECT_TRUE(terminal_write(terminal.stream, "<", c.text, ">"));
        EXPECT_EQ(terminal.arrived(), "<" + std::string(c.shown != nullptr ? c.shown : c.text) + ">");
    }
    EXPECT_TRUE(terminal_printf(terminal.stream, "%s %d\n", "\x1B", 7));
    EXPECT_EQ(terminal.arrived(), "\\x1b 7\n");
}

TEST(TerminalWrite, LongTextsArriveWhole) {
    const Terminal terminal;
    std::string text;
    std::string shown;
    for (int i = 0; i < 400; ++i) {
        text += "ab\x1B\xC3\xA9";
        shown += "ab\\x1b\xC3\xA9";
    }
    EXPECT_TRUE(terminal_write(terminal.stream, "", text.c_str(), ""));
    EXPECT_EQ(terminal.arrived(), shown);
}

TEST(TerminalWrite, OtherStreamsGetEveryByte) {
    const OwnedFile owned(std::tmpfile());
    std::FILE *file = owned.get();
    ASSERT_NE(file, nullptr);
    EXPECT_FALSE(platform_is_terminal(file));
    const std::string text = "\x1B[31m\x7F\xC2\x9B\x9B\r.\n";
    EXPECT_TRUE(terminal_write(file, "a", text.c_str(), "b"));
    EXPECT_TRUE(terminal_printf(file, "%s", "\x1B"));
    std::rewind(file);
    char bytes[64] = {};
    EXPECT_EQ(std::fread(bytes, 1, sizeof(bytes), file), text.size() + 3);
    EXPECT_EQ(bytes, "a" + text + "b\x1B");
}

TEST(TerminalWrite, TellsAFailure) {
    const OwnedFile full(std::fopen("/dev/full", "w"));
    ASSERT_NE(full, nullptr);
    EXPECT_FALSE(terminal_write(full.get(), "a", "b", "c"));
}

// Tests of process/kept_text.h: what is kept of a process file is what lies in it.
#include "process/kept_text.h"

#include <gtest/gtest.h>

#include "tests/process/process_read.h"

static std::string kept_of(const std::string &text) {
    const ProcessRead read(text);
    return text_of(read.stack.process_text);
}

TEST(KeptText, IsTheWholeFile) {
    const std::string text = HEAD + "# a comment\n\n\tdeposition\n" + std::string(3000, 'x') + "\nlast";
    EXPECT_EQ(kept_of(text), text);
    EXPECT_EQ(kept_of(""), "");
    EXPECT_EQ(kept_of("\n"), "\n");
}

TEST(KeptText, HasWhatFollowsTheStop) {
    const std::string text = HEAD + "stop\n" + std::string(10000, 'y') + "\nafter\n";
    EXPECT_EQ(kept_of(text), text);
}

TEST(KeptText, BytesOfValueZeroAreBlanks) {
    const std::string text = HEAD + std::string("a\0b\n", 4) + "stop\n" + std::string("c\0d", 3);
    EXPECT_EQ(kept_of(text), HEAD + "a b\nstop\nc d");
}

TEST(KeptText, AnEndlessFileIsCut) {
    std::string text = HEAD + "stop\n";
    while (text.size() < 2 * KEPT_TEXT_MOST) {
        text += "a line of a file that somebody has taken for a process file\n";
    }
    EXPECT_EQ(kept_of(text), text.substr(0, KEPT_TEXT_MOST));
}

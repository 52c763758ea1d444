#include "log/log.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/memory.h"
#include "platform/platform.h"
#include "tests/support/test_support.h"

// Text mode makes the system's own line ends of "\n".
#ifdef _WIN32
#define LINE_END "\r\n"
#else
#define LINE_END "\n"
#endif
#define HEADER "--- QUARN LOG FILE ---" LINE_END

// A log file in a folder of its own; ends the log with the test.
struct LogFile {
    LogFile() : path(folder.file(L"log.txt")) { log_start(path.c_str()); }
    ~LogFile() { log_end(); }
    LogFile(const LogFile &) = delete;
    LogFile &operator=(const LogFile &) = delete;

    TemporaryFolder folder;
    std::wstring path;
};

TEST(LogStart, WritesTheHeader) {
    const LogFile log;
    EXPECT_EQ(test_file_read(log.path), HEADER);
}

TEST(LogStart, TruncatesAnEarlierLog) {
    const LogFile log;
    log_write(L"first run");
    EXPECT_EQ(test_file_read(log.path), HEADER "first run" LINE_END);
    log_start(log.path.c_str());
    log_write(L"second run");
    EXPECT_EQ(test_file_read(log.path), HEADER "second run" LINE_END);
}

TEST(LogStart, AFileThatCannotBeOpenedIsPassedOver) {
    const TemporaryFolder folder;
    const ConsoleCapture capture;
    log_start(folder.file(L"missing/log.txt").c_str());
    log_write(L"lost %d", 1);
    log_start(folder.path.c_str());  // a folder
    log_write(L"lost %d", 2);
    log_end();
    EXPECT_EQ(capture.history() + capture.messages() + capture.diagnostics(), "");
    EXPECT_TRUE(test_folder_list(folder.path).empty());
}

TEST(LogWrite, EveryLineIsOnDiskAtOnce) {
    const LogFile log;
    std::string expected = HEADER;
    for (i32 i = 0; i < 3; ++i) {
        log_write(L"line %d", i);
        expected += "line " + std::to_string(i) + LINE_END;
        EXPECT_EQ(test_file_read(log.path), expected);
    }
}

TEST(LogWrite, AddsOneLineEndWhateverTheMessageEndsWith) {
    const LogFile log;
    log_write(L"plain");
    log_write(L"with end\r\n");
    log_write(L"");
#ifdef _WIN32
    EXPECT_EQ(test_file_read(log.path), HEADER "plain\r\nwith end\r\r\n\r\n\r\n");
#else
    EXPECT_EQ(test_file_read(log.path), HEADER "plain\nwith end\r\n\n\n");
#endif
}

TEST(LogWrite, FormatsLikePrintf) {
    const LogFile log;
    log_write(L"100%% of %ls, %d", L"50%d", 3);
    EXPECT_EQ(test_file_read(log.path), HEADER "100% of 50%d, 3" LINE_END);
}

TEST(LogWrite, WritesLongLinesAndTextOutsideAscii) {
    const LogFile log;
    const std::wstring longer(20000, L'w');
    log_write(L"%ls", longer.c_str());
    log_write(L"caf\u00E9");
    EXPECT_EQ(test_file_read(log.path), HEADER + std::string(20000, 'w') + LINE_END "caf\xC3\xA9" LINE_END);
}

TEST(LogWrite, WithoutAPathThereIsNoFile) {
    const LogFile log;
    log_end();
    log_write(L"nowhere");
    EXPECT_EQ(test_file_read(log.path), HEADER);
    log_start(nullptr);
    log_write(L"nowhere");
    EXPECT_EQ(test_file_read(log.path), HEADER);
    log_end();
}

TEST(LogWrite, GoesOnWhenTheFileComesBack) {
    const LogFile log;
    ASSERT_TRUE(platform_file_delete(log.path.c_str()));
    log_write(L"again");
    EXPECT_EQ(test_file_read(log.path), "again" LINE_END);
}

TEST(LogWrite, FreesWhatItTook) {
    const i64 before = memory_live_blocks();
    {
        const LogFile log;
        log_write(L"%ls", std::wstring(3000, L'x').c_str());
    }
    EXPECT_EQ(memory_live_blocks(), before);
}

// Enough for two threads to meet at the end of the file many times.
static constexpr u32 LINES_OF_A_THREAD = 5000;

static i32 write_many_lines(void *argument) {
    const wchar_t *name = static_cast<const wchar_t *>(argument);
    for (u32 i = 0; i < LINES_OF_A_THREAD; ++i) {
        log_write(L"%ls", name);
    }
    return 0;
}

TEST(LogWrite, TwoThreadsShareAndLoseNoLine) {
    const LogFile log;
    wchar_t other_name[] = L"worker worker worker";
    wchar_t own_name[] = L"window";
    PlatformThread *thread = platform_thread_start(write_many_lines, other_name);
    ASSERT_NE(thread, nullptr);
    write_many_lines(own_name);
    platform_thread_join(thread);
    const std::string text = test_file_read(log.path);
    size_t worker_lines = 0;
    size_t window_lines = 0;
    for (size_t start = 0; start < text.size();) {
        const size_t end = text.find('\n', start);
        ASSERT_NE(end, std::string::npos);
        const std::string line = text.substr(start, end - start);
        worker_lines += line.compare(0, 20, "worker worker worker") == 0 ? 1U : 0U;
        window_lines += line.compare(0, 6, "window") == 0 ? 1U : 0U;
        start = end + 1;
    }
    EXPECT_EQ(worker_lines, LINES_OF_A_THREAD);
    EXPECT_EQ(window_lines, LINES_OF_A_THREAD);
}

TEST(ConsoleAppend, ShowsPercentSignsLiterally) {
    const ConsoleCapture capture;
    console_append(L"50% %d %ls %n\r\n");
    console_append_narrow("100% %s\r\n");
    EXPECT_EQ(capture.wide(), L"50% %d %ls %n\r\n100% %s\r\n");
}

TEST(ConsolePrintf, InterpretsTheFormat) {
    const ConsoleCapture capture;
    console_printf_w(L"50%% %d %ls|", 7, L"wide");
    console_printf("%s in %.3f s", "narrow", 1.5);
    EXPECT_EQ(capture.wide(), L"50% 7 wide|narrow in 1.500 s") << "and adds no line end";
}

TEST(ConsolePrintf, BytesAbove7FAreWidenedBySignExtension) {
    const ConsoleCapture capture;
    console_printf("<%s>", "\x80\xE9\xFF");
    console_append_narrow("\xB5m");
    EXPECT_EQ(capture.wide(), (std::wstring{L'<', wchar_t(0xFF80), wchar_t(0xFFE9), wchar_t(0xFFFF), L'>',
                                            wchar_t(0xFFB5), L'm'}));
}

TEST(ConsolePrintf, TakesLongTexts) {
    const ConsoleCapture capture;
    console_printf("%s", std::string(10000, 'n').c_str());
    console_printf_w(L"%ls", std::wstring(10000, L'w').c_str());
    EXPECT_EQ(capture.wide(), std::wstring(10000, L'n') + std::wstring(10000, L'w'));
}

TEST(ConsoleClear, EmptiesTheConsole) {
    const ConsoleCapture capture;
    console_append(L"before");
    console_clear();
    console_append(L"after");
    EXPECT_EQ(capture.wide(), L"after");
    EXPECT_EQ(capture.history(), "beforeafter");
    EXPECT_EQ(capture.clear_count(), 1);
}

TEST(ConsoleSetSink, WithoutASinkTextIsDropped) {
    console_set_sink(nullptr, nullptr);
    console_append(L"lost");
    console_append_narrow("lost");
    console_printf("%d", 1);
    console_printf_w(L"%d", 1);
    console_clear();
    const ConsoleCapture capture;
    EXPECT_EQ(capture.history(), "");
}

TEST(MessageShow, GoesToItsSink) {
    const ConsoleCapture capture;
    message_show(L"Could not load it: 100%");
    EXPECT_EQ(capture.messages(), "Could not load it: 100%\n");
    EXPECT_EQ(capture.history(), "");
}

TEST(MessageShow, WithoutASinkItGoesToStandardError) {
    message_set_sink(nullptr);
    testing::internal::CaptureStderr();
    message_show(L"100% caf\u00E9");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Quarn: 100% caf\xC3\xA9\n");
}

TEST(DiagnosticWrite, GoesToItsSink) {
    const ConsoleCapture capture;
    diagnostic_write(L"byte %d of %ls", 12, L"a%d.gds");
    EXPECT_EQ(capture.diagnostics(), "byte 12 of a%d.gds\n");
    EXPECT_EQ(capture.history() + capture.messages(), "");
}

TEST(DiagnosticsShow, LinesWithoutASinkComeToTheConsoleWhenTheyAreAskedFor) {
    const ConsoleCapture capture;
    diagnostic_set_sink(nullptr);
    diagnostic_write(L"byte %d of %ls", 12, L"a%d.gds");
    diagnostic_write(L"second");
    EXPECT_EQ(capture.history(), "");
    diagnostics_show();
    EXPECT_EQ(capture.history(), "Note: byte 12 of a%d.gds\r\nNote: second\r\n");
    diagnostics_show();
    EXPECT_EQ(capture.history(), "Note: byte 12 of a%d.gds\r\nNote: second\r\n") << "shown once";
}

TEST(DiagnosticsShow, LinesThatASinkHasHadAreNotShownAgain) {
    const ConsoleCapture capture;
    diagnostic_write(L"told");
    diagnostics_show();
    EXPECT_EQ(capture.history(), "");
}

TEST(DiagnosticsShow, AfterManyLinesItTellsHowManyMoreTheLogHas) {
    const ConsoleCapture capture;
    diagnostic_set_sink(nullptr);
    for (i32 i = 0; i < 300; ++i) {
        diagnostic_write(L"line %d", i);
    }
    diagnostics_show();
    EXPECT_NE(capture.history().find("Note: line 255\r\nNote: and 44 more, which the log file has\r\n"),
              std::string::npos);
    EXPECT_EQ(capture.history().find("line 256"), std::string::npos);
}

TEST(DiagnosticsShow, TheEndOfTheLogDropsWhatNobodyAskedFor) {
    const ConsoleCapture capture;
    const i64 blocks = memory_live_blocks();
    diagnostic_set_sink(nullptr);
    diagnostic_write(L"unseen");
    log_end();
    EXPECT_EQ(memory_live_blocks(), blocks);
    diagnostics_show();
    EXPECT_EQ(capture.history(), "");
}

TEST(DiagnosticWrite, WithoutASinkItIsALineOfTheLog) {
    const LogFile log;
    diagnostic_set_sink(nullptr);
    diagnostic_write(L"%d%% lost", 5);
    EXPECT_EQ(test_file_read(log.path), HEADER "5% lost" LINE_END);
}

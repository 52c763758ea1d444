// Tests of the window program. It has one window, one message loop and one set of globals, so every case
// runs in a process of its own: without --alone this program starts itself once for each case that the
// usual options choose, and gathers the results.
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <string>
#include <vector>

#include "tests/app/app_scene.h"
#include "tests/win32/second_program.h"

static constexpr u32 CASE_DEADLINE_S = 90;  // QUARN_TEST_DEADLINE names another

// Reads options of the test framework that it keeps to itself.
static u32 environment_number(const wchar_t *name, u32 otherwise) {
    wchar_t value[16] = {};
    const DWORD length = GetEnvironmentVariableW(name, value, 16);
    return length > 0 && length < 16 ? static_cast<u32>(std::wcstoul(value, nullptr, 10)) : otherwise;
}

static u32 case_deadline_s() {
    return environment_number(L"QUARN_TEST_DEADLINE", CASE_DEADLINE_S);
}

// Whether a name is as one of the patterns says, which ":" separates; "*" stands for anything.
static bool filter_matches(const std::string &filter, const std::string &name) {
    for (size_t at = 0; at <= filter.size();) {
        const size_t end = std::min(filter.find(':', at), filter.size());
        if (text_matches(name, filter.substr(at, end - at))) {
            return true;
        }
        at = end + 1;
    }
    return false;
}

// The cases that the filter and this share of the work choose, "Suite.Case".
static std::vector<std::string> chosen_cases() {
    std::vector<std::string> names;
    const u32 share_count = environment_number(L"QUARN_TEST_SHARES", 1);
    const u32 share = environment_number(L"QUARN_TEST_SHARE", 0);
    u32 index = 0;
    const testing::UnitTest *tests = testing::UnitTest::GetInstance();
    for (i32 s = 0; s < tests->total_test_suite_count(); ++s) {
        const testing::TestSuite *suite = tests->GetTestSuite(s);
        for (i32 c = 0; c < suite->total_test_count(); ++c) {
            const std::string name = std::string(suite->name()) + "." + suite->GetTestInfo(c)->name();
            if (filter_matches(testing::GTEST_FLAG(filter), name) && index++ % share_count == share) {
                names.push_back(name);
            }
        }
    }
    return names;
}

// Runs one case. Returns its exit status; 1000 when its time is up.
static DWORD run_case(const std::wstring &program, const std::string &name) {
    std::wstring command = L"\"" + program + L"\" --alone --gtest_brief=1 --gtest_filter=" +
                           std::wstring(name.begin(), name.end());
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process = {};
    if (!CreateProcessW(program.c_str(), command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                        &startup, &process)) {
        return GetLastError();
    }
    DWORD status = 1000;
    if (WaitForSingleObject(process.hProcess, case_deadline_s() * 1000) == WAIT_OBJECT_0) {
        GetExitCodeProcess(process.hProcess, &status);
    } else {
        TerminateProcess(process.hProcess, status);
    }
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return status;
}

static int run_each_alone() {
    wchar_t program[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    std::vector<std::string> failed;
    const std::vector<std::string> names = chosen_cases();
    for (const std::string &name : names) {
        const ULONGLONG start = GetTickCount64();
        const DWORD status = run_case(program, name);
        std::printf("[ %s ] %s (%u ms)\n", status == 0 ? "passed" : "FAILED", name.c_str(),
                    static_cast<u32>(GetTickCount64() - start));
        if (status == 1000) {
            std::printf("  took longer than %u s\n", case_deadline_s());
        }
        std::fflush(stdout);
        if (status != 0) {
            failed.push_back(name);
        }
    }
    std::printf("%d cases, %d failed\n", static_cast<i32>(names.size()), static_cast<i32>(failed.size()));
    return names.empty() || !failed.empty() ? 1 : 0;
}

int main(int argc, char **argv) {
    if (argc > 1 && std::strcmp(argv[1], SECOND_PROGRAM_OPTION) == 0) {
        return second_program_main();
    }
    bool alone = false;
    for (i32 i = 1; i < argc; ++i) {
        const bool listing = std::strncmp(argv[i], "--gtest_list_tests", 18) == 0;
        alone = alone || listing || std::strcmp(argv[i], "--alone") == 0;
    }
    testing::InitGoogleTest(&argc, argv);
    return alone ? RUN_ALL_TESTS() : run_each_alone();
}

#include "tests/support/test_support.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <mutex>
#include <random>

#include "log/log.h"
#include "platform/memory.h"
#include "platform/platform.h"

namespace fs = std::filesystem;

// The conversion to the system's form goes over UTF-8, since that of std::filesystem depends on the
// locale.
static fs::path to_path(const std::wstring &path) {
    return fs::u8path(test_utf8(path));
}

// Texts.

static void append_utf8(std::string *out, u32 code) {
    if (code < 0x80) {
        out->push_back(static_cast<char>(code));
        return;
    }
    const i32 tail_count = code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
    const u32 lead[4] = {0, 0xC0, 0xE0, 0xF0};
    out->push_back(static_cast<char>(lead[tail_count] | (code >> (6 * tail_count))));
    for (i32 i = tail_count - 1; i >= 0; --i) {
        out->push_back(static_cast<char>(0x80 | ((code >> (6 * i)) & 0x3F)));
    }
}

std::string test_utf8(const std::wstring &text) {
    std::string out;
    for (size_t i = 0; i < text.size(); ++i) {
        u32 code = std::char_traits<wchar_t>::to_int_type(text[i]);
        const bool high = code >= 0xD800 && code <= 0xDBFF;
        const u32 next = i + 1 < text.size() ? std::char_traits<wchar_t>::to_int_type(text[i + 1]) : 0;
        if (high && next >= 0xDC00 && next <= 0xDFFF) {
            code = 0x10000 + ((code - 0xD800) << 10) + (next - 0xDC00);
            ++i;
        } else if ((code >= 0xD800 && code <= 0xDFFF) || code > 0x10FFFF) {
            code = '?';
        }
        append_utf8(&out, code);
    }
    return out;
}

std::wstring test_wide(const std::string &text) {
    std::wstring out;
    for (size_t i = 0; i < text.size();) {
        const u32 byte = static_cast<u8>(text[i++]);
        i32 tail_count = byte < 0xC0 ? 0 : byte < 0xE0 ? 1 : byte < 0xF0 ? 2 : 3;
        u32 code = tail_count == 0 ? byte : byte & (0x3FU >> tail_count);
        for (; tail_count > 0 && i < text.size(); --tail_count) {
            code = (code << 6) | (static_cast<u8>(text[i++]) & 0x3FU);
        }
        if (sizeof(wchar_t) == 2 && code >= 0x10000) {
            out.push_back(static_cast<wchar_t>(0xD800 + ((code - 0x10000) >> 10)));
            out.push_back(static_cast<wchar_t>(0xDC00 + ((code - 0x10000) & 0x3FF)));
        } else {
            out.push_back(static_cast<wchar_t>(code));
        }
    }
    return out;
}

// Folders.

TemporaryFolder::TemporaryFolder() {
    static std::atomic<u32> counter{0};
    std::random_device entropy;
    std::error_code error;
    const fs::path root = fs::temp_directory_path(error);
    for (i32 attempt = 0; attempt < 100 && !error; ++attempt) {
        const std::string name = "quarn-test-" + std::to_string(entropy()) + "-" + std::to_string(counter++);
        const fs::path candidate = root / name;
        if (fs::create_directory(candidate, error)) {
            path = test_wide(candidate.u8string());
            return;
        }
    }
    ADD_FAILURE() << "no temporary folder can be created: " << error.message();
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code error;
    if (path.empty()) {
        return;
    }
    fs::remove_all(to_path(path), error);
    if (error) {
        ADD_FAILURE() << "the temporary folder " << test_utf8(path)
                      << " cannot be deleted: " << error.message();
    }
}

std::wstring TemporaryFolder::file(const std::wstring &name) const {
    return test_wide((to_path(path) / to_path(name)).u8string());
}

CurrentFolder::CurrentFolder(const std::wstring &path) {
    std::error_code error;
    previous = fs::current_path(error).u8string();
    if (!error) {
        fs::current_path(to_path(path), error);
    }
    if (error) {
        ADD_FAILURE() << "cannot change to the folder " << test_utf8(path) << ": " << error.message();
    }
}

CurrentFolder::~CurrentFolder() {
    std::error_code error;
    fs::current_path(fs::u8path(previous), error);
    if (error) {
        ADD_FAILURE() << "cannot change back to the folder " << previous << ": " << error.message();
    }
}

// Console.

struct Captured {
    std::wstring shown;
    std::wstring history;
    std::wstring messages;
    std::wstring diagnostics;
    i32 clear_count;
};

static std::mutex captured_mutex;
static Captured captured;

static void append_console(const wchar_t *text) {
    const std::lock_guard<std::mutex> lock(captured_mutex);
    captured.shown += text;
    captured.history += text;
}

static void clear_console() {
    const std::lock_guard<std::mutex> lock(captured_mutex);
    captured.shown.clear();
    ++captured.clear_count;
}

static void append_message(const wchar_t *text) {
    const std::lock_guard<std::mutex> lock(captured_mutex);
    captured.messages.append(text).append(L"\n");
}

static void append_diagnostic(const wchar_t *line) {
    const std::lock_guard<std::mutex> lock(captured_mutex);
    captured.diagnostics.append(line).append(L"\n");
}

ConsoleCapture::ConsoleCapture() {
    reset();
    console_set_sink(append_console, clear_console);
    message_set_sink(append_message);
    diagnostic_set_sink(append_diagnostic);
}

ConsoleCapture::~ConsoleCapture() {
    console_set_sink(nullptr, nullptr);
    message_set_sink(nullptr);
    diagnostic_set_sink(nullptr);
    reset();
}

std::wstring ConsoleCapture::wide() const {
    const std::lock_guard<std::mutex> lock(captured_mutex);
    return captured.shown;
}

std::string ConsoleCapture::narrow() const {
    return test_utf8(wide());
}

std::string ConsoleCapture::history() const {
    const std::lock_guard<std::mutex> lock(captured_mutex);
    return test_utf8(captured.history);
}

i32 ConsoleCapture::clear_count() const {
    const std::lock_guard<std::mutex> lock(captured_mutex);
    return captured.clear_count;
}

std::string ConsoleCapture::messages() const {
    const std::lock_guard<std::mutex> lock(captured_mutex);
    return test_utf8(captured.messages);
}

std::string ConsoleCapture::diagnostics() const {
    const std::lock_guard<std::mutex> lock(captured_mutex);
    return test_utf8(captured.diagnostics);
}

void ConsoleCapture::reset() {
    const std::lock_guard<std::mutex> lock(captured_mutex);
    captured = Captured{};
}

// Files.

void test_file_write(const std::wstring &path, const std::string &bytes) {
    std::ofstream stream(to_path(path), std::ios::binary | std::ios::trunc);
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    stream.close();
    if (!stream) {
        ADD_FAILURE() << "cannot write the file " << test_utf8(path);
    }
}

std::string test_file_read(const std::wstring &path) {
    std::ifstream stream(to_path(path), std::ios::binary);
    if (!stream) {
        ADD_FAILURE() << "cannot read the file " << test_utf8(path);
        return {};
    }
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

std::string test_text_read(const std::wstring &path) {
    std::string text = test_file_read(path);
    text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
    return text;
}

bool test_file_exists(const std::wstring &path) {
    std::error_code error;
    return fs::is_regular_file(to_path(path), error);
}

std::vector<std::wstring> test_folder_list(const std::wstring &path) {
    std::vector<std::wstring> names;
    std::error_code error;
    for (const fs::directory_entry &entry : fs::directory_iterator(to_path(path), error)) {
        names.push_back(test_wide(entry.path().filename().u8string()));
    }
    if (error) {
        ADD_FAILURE() << "cannot list the folder " << test_utf8(path) << ": " << error.message();
    }
    std::sort(names.begin(), names.end());
    return names;
}

u32 test_f32_bits(f32 value) {
    u32 bits = 0;
    std::memcpy(&bits, &value, sizeof(bits));
    return bits;
}

// Random numbers: the splitmix64 sequence (Steele, Lea and Flood, "Fast splittable pseudorandom
// number generators", 2014).

TestRandom test_random_start(u64 seed) {
    return TestRandom{seed};
}

static u64 next_u64(TestRandom *random) {
    random->state += 0x9E3779B97F4A7C15U;
    u64 z = random->state;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9U;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBU;
    return z ^ (z >> 31);
}

u32 test_random_u32(TestRandom *random) {
    return static_cast<u32>(next_u64(random) >> 32);
}

i32 test_random_i32(TestRandom *random, i32 low, i32 high) {
    const u64 span = static_cast<u64>(static_cast<i64>(high) - low) + 1;
    return static_cast<i32>(low + static_cast<i64>(next_u64(random) % span));
}

f32 test_random_f32(TestRandom *random, f32 low, f32 high) {
    const f32 unit = static_cast<f32>(test_random_u32(random) >> 8) * (1.0F / 16777216.0F);
    return low + unit * (high - low);
}

bool test_random_bool(TestRandom *random, f64 probability) {
    return static_cast<f64>(test_random_u32(random)) < probability * 4294967296.0;
}

std::wstring test_wide_from_system(const std::string &bytes) {
    return platform_wide_from_system(bytes.c_str()).get();
}

std::string test_system_from_wide(const std::wstring &text) {
    return platform_system_from_wide(text.c_str()).get();
}

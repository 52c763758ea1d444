// gzip_fuzz.cpp: random bytes through the unpacking of compressed layouts, record by record. A folder of
// inputs given as the first argument is filled with seeds before the run.
#include <zlib.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "gds/gds_stream.h"
#include "log/log.h"
#include "platform/memory.h"
#include "tests/gds/gds_bytes.h"

static constexpr size_t SIZE_MOST = 4096;  // bytes of a file, which unpack to a few megabytes at most

static std::string member(const std::string &bytes, int level) {
    z_stream zlib = {};
    deflateInit2(&zlib, level, Z_DEFLATED, 15 + 16, 8, Z_DEFAULT_STRATEGY);
    std::string out(deflateBound(&zlib, static_cast<uLong>(bytes.size())), 0);
    zlib.next_in = reinterpret_cast<Bytef *>(const_cast<char *>(bytes.data()));
    zlib.avail_in = static_cast<uInt>(bytes.size());
    zlib.next_out = reinterpret_cast<Bytef *>(out.data());
    zlib.avail_out = static_cast<uInt>(out.size());
    deflate(&zlib, Z_FINISH);
    out.resize(out.size() - zlib.avail_out);
    deflateEnd(&zlib);
    return out;
}

static void write_seed(const std::filesystem::path &path, const std::string &bytes) {
    std::ofstream stream(path, std::ios::binary);
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

// NOLINTNEXTLINE(readability-identifier-naming): the name that libFuzzer calls
extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv) {
    diagnostic_set_sink([](const wchar_t *) {});
    const std::string layout = GdsBytes().head().begin("TOP").box(5, 0, 0, 40, 30).end().close().bytes;
    for (i32 i = 1; i < *argc; ++i) {
        const char *argument = (*argv)[i];
        if (argument[0] == '-' || !std::filesystem::is_directory(argument)) {
            continue;
        }
        const std::filesystem::path folder = argument;
        write_seed(folder / "seed-packed", member(layout, 9));
        write_seed(folder / "seed-stored", member(layout, 0));
        write_seed(folder / "seed-two", member(layout.substr(0, 90), 9) + member(layout.substr(90), 1));
        write_seed(folder / "seed-padded", member(layout, 9) + std::string(100, 0));
        write_seed(folder / "seed-zeros", member(std::string(1000000, 0), 9));
        break;
    }
    return 0;
}

static void expect(bool condition, const char *what) {
    if (!condition) {
        std::fprintf(stderr, "broken promise: %s\n", what);
        std::abort();
    }
}

// NOLINTNEXTLINE(readability-identifier-naming): the name that libFuzzer calls
extern "C" int LLVMFuzzerTestOneInput(const u8 *bytes, size_t size) {
    if (size < 2 || size > SIZE_MOST || !gds_gzip_is(bytes, size)) {
        return 0;
    }
    std::FILE *file = fmemopen(const_cast<u8 *>(bytes), size, "rb");
    expect(file != nullptr, "the bytes can be opened");
    const i64 blocks = memory_live_blocks();
    GdsStream stream;
    gds_stream_start(&stream, file);
    expect(stream.gzip != nullptr, "the file is taken for a compressed one");
    GdsRecord record = {};
    i64 told = 0;
    u32 sum = 0;
    while (gds_stream_next(&stream, &record) == GDS_STREAM_RECORD) {
        expect(stream.offset == told && record.size == record.length - 4, "offsets add up");
        told += record.length;
        for (i32 i = 0; i < record.size; ++i) {
            sum += record.data[i];  // for the address sanitizer to see
        }
    }
    const GdsGzipCheck check = gds_gzip_check(stream.gzip, &stream.file);
    expect(check.offset >= 0 && check.offset <= static_cast<i64>(size), "the place lies in the file");
    expect((check.state == GDS_GZIP_DAMAGED) == (check.reason[0] != 0), "damage has a reason");
    gds_stream_end(&stream);
    std::fclose(file);
    expect(memory_live_blocks() == blocks, "every block is freed");
    return sum == 1 && told < 0 ? 1 : 0;
}

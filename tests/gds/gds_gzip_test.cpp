// Layouts compressed with gzip: read as they are, damaged, cut off, in several members, and without end.
#include <gtest/gtest.h>
#include <zlib.h>

#include <atomic>
#include <chrono>
#include <thread>

#ifndef _WIN32
#include <sys/stat.h>
#endif

#include "gds/gds_read.h"
#include "platform/platform.h"
#include "tests/gds/gds_bytes.h"
#include "tests/gds/gds_load.h"
#include "tests/support/test_support.h"

static constexpr size_t MEGABYTE = size_t{1} << 20;

static z_stream packer_start(int window_bits) {
    z_stream zlib = {};
    EXPECT_EQ(deflateInit2(&zlib, 6, Z_DEFLATED, window_bits, 8, Z_DEFAULT_STRATEGY), Z_OK);
    return zlib;
}

static std::string packed(z_stream *zlib, const std::string &bytes, int flush) {
    std::string out(deflateBound(zlib, static_cast<uLong>(bytes.size())) + 64, 0);
    zlib->next_in = reinterpret_cast<Bytef *>(const_cast<char *>(bytes.data()));
    zlib->avail_in = static_cast<uInt>(bytes.size());
    zlib->next_out = reinterpret_cast<Bytef *>(out.data());
    zlib->avail_out = static_cast<uInt>(out.size());
    deflate(zlib, flush);
    EXPECT_EQ(zlib->avail_in, 0U);
    out.resize(out.size() - zlib->avail_out);
    return out;
}

// One member that holds the bytes.
static std::string gzip(const std::string &bytes) {
    z_stream zlib = packer_start(15 + 16);
    std::string out = packed(&zlib, bytes, Z_FINISH);
    deflateEnd(&zlib);
    return out;
}

// A member that begins with the bytes and goes on with so many megabytes that repeat a text. It has no end.
static std::string gzip_bomb(const std::string &bytes, const std::string &text, i32 megabytes) {
    z_stream zlib = packer_start(15 + 16);
    std::string out = packed(&zlib, bytes, Z_FULL_FLUSH);
    std::string piece;
    while (piece.size() < MEGABYTE) {
        piece += text;
    }
    // After a full flush the same bytes are packed in the same way, whatever stood before.
    static_cast<void>(packed(&zlib, piece, Z_FULL_FLUSH));
    const std::string again = packed(&zlib, piece, Z_FULL_FLUSH);
    deflateEnd(&zlib);
    for (i32 i = 0; i < megabytes; ++i) {
        out += again;
    }
    return out;
}

static std::string small_layout() {
    GdsBytes bytes;
    bytes.head().begin("TOP").box(5, -10, -10, 20, 30).path(6, 2, 8, {{0, 0}, {50, 0}, {50, 50}});
    bytes.sref("LEAF", {7, 7}, 0x8000, 1.5, 30.0).aref("LEAF", 3, 2, {0, 0}, {30, 0}, {0, 20}).end();
    return bytes.begin("LEAF").box(7, 0, 0, 4, 4).end().close().bytes;
}

// What a load tells and keeps, as a text.
static std::string load_told(const std::string &bytes) {
    const ConsoleCapture console;
    const GdsLoaded loaded = gds_load_bytes(bytes);
    std::string told = std::to_string(loaded.result) + "\n" + console.narrow() + console.diagnostics();
    const GdsDatabase *database = loaded.database.get();
    for (i32 i = 0; i < database->cell_count; ++i) {
        const GdsCell *cell = &database->cells[i];
        told += "\n" + std::to_string(cell->sref_count) + " " + std::to_string(cell->aref_count);
        for (i32 k = 0; k < cell->polygon_count; ++k) {
            const GdsPolygon *polygon = &cell->polygons[k];
            told += "\n" + std::to_string(polygon->layer) + ":";
            for (i32 point = 0; point < polygon->point_count; ++point) {
                told += " " + std::to_string(polygon->points[point].x) + " " +
                        std::to_string(polygon->points[point].y);
            }
        }
    }
    return told;
}

static std::string diagnostics_of(const std::string &bytes, i32 result) {
    const ConsoleCapture console;
    EXPECT_EQ(gds_load_bytes(bytes).result, result);
    return console.diagnostics();
}

static void expect_told(const std::string &bytes, i32 result, const std::string &part) {
    const std::string told = diagnostics_of(bytes, result);
    EXPECT_NE(told.find(part), std::string::npos) << told;
}

TEST(GdsGzip, TheExamplesAreReadAsTheyAre) {
    const std::string folder = QUARN_EXAMPLES_FOLDER "/";
    for (const char *name : {"cmos-inverter/cmos_inverter.gds", "damascene/damascene.gds",
                             "mems-cantilever/mems_cantilever.gds", "waveguide-lens/waveguide_lens.gds"}) {
        const std::string plain = test_file_read(test_wide(folder + name));
        ASSERT_GT(plain.size(), 100U) << name;
        const std::string expected = load_told(plain);
        EXPECT_EQ(expected[0], '0') << expected;
        EXPECT_EQ(load_told(gzip(plain)), expected) << name;
    }
}

TEST(GdsGzip, RecordsThatLieAcrossPieces) {
    // 2 MB, eight pieces of the unpacked bytes.
    GdsBytes bytes;
    bytes.head().begin("MANY");
    for (i32 i = 0; bytes.bytes.size() < 2 * MEGABYTE; ++i) {
        bytes.box(static_cast<u16>(i), i, 2 * i, 3 * i + 1, 5 * i + 7);
    }
    bytes.end().close();
    EXPECT_EQ(load_told(gzip(bytes.bytes)), load_told(bytes.bytes));
}

TEST(GdsGzip, CutAtEveryByte) {
    const std::string whole = gzip(small_layout());
    for (size_t size = 2; size < whole.size(); ++size) {
        expect_told(whole.substr(0, size), 2,
                    "error 2: the file is compressed with gzip and cut off: it ends at byte offset " +
                        std::to_string(size) + "\n");
    }
    EXPECT_EQ(gds_load_bytes(whole.substr(0, 1)).result, 3) << "one byte tells nothing";
}

// Bytes 3 to 9 say what is of no matter here (time, system, kind of text), and a few bits of what is packed
// mean nothing, such as those that fill its last byte up: then the layout is the same.
TEST(GdsGzip, DamageOfAnyByteIsFound) {
    const std::string layout = small_layout();
    const std::string whole = gzip(layout);
    const std::string expected = load_told(layout);
    i32 without_meaning = 0;
    for (size_t at = 2; at < whole.size(); ++at) {
        for (i32 bit = 0; bit < 8; ++bit) {
            SCOPED_TRACE(testing::Message() << "byte " << at << " bit " << bit);
            std::string bytes = whole;
            bytes[at] = static_cast<char>(bytes[at] ^ (1 << bit));
            const std::string told = load_told(bytes);
            if (at == 2) {
                EXPECT_EQ(told.substr(0, 2), "3\n")
                    << "any other third byte makes a record of an unknown type";
            } else if (told[0] == '0') {
                EXPECT_EQ(told, expected);
                without_meaning += at > 9 ? 1 : 0;
            } else {
                EXPECT_EQ(told.substr(0, 2), "2\n");
                EXPECT_NE(told.find("compressed with gzip and "), std::string::npos) << told;
            }
        }
    }
    EXPECT_LT(without_meaning, 30) << "of some 1700 bits";
}

TEST(GdsGzip, DamageIsToldWithItsReasonAndPlace) {
    std::string bytes = gzip(small_layout());
    bytes[bytes.size() - 8] ^= 1;  // of the checksum, whose fourth byte tells the difference
    expect_told(bytes, 2,
                "compressed with gzip and damaged: incorrect data check, found at byte offset " +
                    std::to_string(bytes.size() - 4) + "\n");
}

// Random damage of a file that is stored rather than packed comes into the records as it is.
TEST(GdsGzip, DamageIsToldRatherThanTheErrorThatItMakes) {
    z_stream zlib = {};
    ASSERT_EQ(deflateInit2(&zlib, 0, Z_DEFLATED, 15 + 16, 8, Z_DEFAULT_STRATEGY), Z_OK);
    std::string bytes = packed(&zlib, small_layout(), Z_FINISH);
    deflateEnd(&zlib);
    const size_t at = bytes.find("TOP");
    ASSERT_NE(at, std::string::npos);
    bytes[at - 3] = 1;  // the length of the name's record, which is then 1
    expect_told(bytes, 2, "damaged: incorrect data check");
}

TEST(GdsGzip, ErrorsOfARecordKeepTheirOffset) {
    GdsBytes bytes;
    bytes.head().begin("TOP");
    const std::string offset = std::to_string(bytes.bytes.size());
    bytes.record(GDS_RECORD_ENDEL).end().close();
    const std::string told = diagnostics_of(gzip(bytes.bytes), 14);
    EXPECT_NE(told.find("byte offset " + offset + ", record 7 (ENDEL)"), std::string::npos) << told;
    EXPECT_NE(told.find("compressed with gzip: byte offsets are those of what it holds"), std::string::npos);
}

TEST(GdsGzip, AMissingEndIsToldOfWhatIsUnpacked) {
    const std::string layout = small_layout();
    const std::string part = layout.substr(0, layout.size() - 4);
    expect_told(gzip(part), 0, "the file ends at byte offset " + std::to_string(part.size()));
}

TEST(GdsGzip, MembersFollowOneAnother) {
    const std::string layout = small_layout();
    const std::string expected = load_told(layout);
    for (size_t at = 0; at <= layout.size(); at += 7) {
        const std::string first = gzip(layout.substr(0, at));
        const std::string second = gzip(layout.substr(at));
        std::string padded = first;
        padded.append(gzip("")).append(second).append(512, 0);
        EXPECT_EQ(load_told(first + second), expected) << at;
        EXPECT_EQ(load_told(padded), expected) << at;
        if (at + 4 < layout.size()) {
            expect_told(first + second.substr(0, second.size() - 1), 2, "cut off");
            std::string parted = first;
            parted.append(9, 0).append(second);
            expect_told(parted, 2, "other bytes behind zeros");
            expect_told(first + "more", 2, "damaged: incorrect header check");
        }
    }
}

TEST(GdsGzip, WhatFollowsTheMemberOfTheEndIsNotLookedAt) {
    const std::string layout = small_layout();
    EXPECT_EQ(load_told(gzip(layout) + "anything"), load_told(layout));
}

TEST(GdsGzip, PaddingWithoutEndAfterTheEndOfTheLayout) {
    const std::string bytes = gzip_bomb(small_layout(), std::string(4096, 0), 520);
    ASSERT_LT(bytes.size(), 3 * MEGABYTE);
    expect_told(bytes, 0, "not looked at to its end");
}

static std::atomic<i32> interrupted{0};

TEST(GdsGzip, RecordsWithoutEndCanBeInterrupted) {
    const std::string bytes = gzip_bomb(GdsBytes().head().bytes, std::string("\0\x04\0\0", 4), 8000);
    interrupted = 0;
    platform_interrupt_watch(&interrupted, nullptr);
    std::thread user([] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        interrupted = 1;
    });
    EXPECT_EQ(gds_load_bytes(bytes).result, GDS_INTERRUPTED);
    user.join();
    platform_interrupt_watch(nullptr, nullptr);
}

TEST(GdsGzip, NothingLeaksAfterAnyResult) {
    const ConsoleCapture console;
    const std::string whole = gzip(small_layout());
    const i64 before = memory_live_blocks();
    for (size_t size = 0; size <= whole.size(); size += 5) {
        gds_load_bytes(whole.substr(0, size));
        ASSERT_EQ(memory_live_blocks(), before) << "blocks left after a cut at " << size;
    }
}

#ifndef _WIN32
TEST(GdsGzip, ThroughAPipe) {
    const TemporaryFolder folder;
    const std::wstring path = folder.file(L"pipe.gds");
    const NarrowText name = platform_system_from_wide(path.c_str());
    ASSERT_EQ(mkfifo(name.get(), 0600), 0);
    const std::string bytes = gzip(small_layout());
    std::thread writer([&path, &bytes] { test_file_write(path, bytes); });
    const GdsLoaded loaded = gds_load_path(path);
    writer.join();
    EXPECT_EQ(loaded.result, 0);
    EXPECT_EQ(loaded.database->cell_count, 2);
}
#endif

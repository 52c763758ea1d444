// Tests of export/page_deflate.h, unpacked by the library's own function.
#include "export/page_deflate.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <string>

#include "tests/support/test_support.h"

static std::string pack(const std::string &bytes, size_t piece) {
    const Owned<PageDeflate> deflate(page_deflate_try_create());
    for (size_t start = 0; start < bytes.size(); start += piece) {
        const std::string part = bytes.substr(start, piece);
        EXPECT_TRUE(page_deflate_put(deflate.get(), reinterpret_cast<const u8 *>(part.data()),
                                     static_cast<i64>(part.size())));
    }
    i64 size = 0;
    const Owned<u8[]> block = page_deflate_finish(deflate.get(), &size);
    EXPECT_NE(block, nullptr);
    return std::string(reinterpret_cast<const char *>(block.get()), static_cast<size_t>(size));
}

static std::string unpack(const std::string &block, size_t size) {
    std::string bytes(size + 1, 'x');
    auto length = static_cast<uLongf>(bytes.size());
    EXPECT_EQ(uncompress(reinterpret_cast<Bytef *>(bytes.data()), &length,
                         reinterpret_cast<const Bytef *>(block.data()), static_cast<uLong>(block.size())),
              Z_OK);
    bytes.resize(length);
    return bytes;
}

TEST(PageDeflate, GivesBackWhatWasPackedInPieces) {
    TestRandom random = test_random_start(1);
    std::string bytes(100000, 'a');
    for (size_t i = 40000; i < 60000; ++i) {
        bytes[i] = static_cast<char>(test_random_u32(&random));
    }
    for (const size_t piece : {size_t{1000}, size_t{33333}, bytes.size()}) {
        const std::string block = pack(bytes, piece);
        EXPECT_LT(block.size(), 21000U);
        EXPECT_EQ(unpack(block, bytes.size()), bytes);
    }
}

TEST(PageDeflate, NothingIsABlockToo) {
    EXPECT_EQ(unpack(pack("", 1), 0), "");
}

TEST(PageDeflate, LackOfMemoryIsToldAndLeavesNothing) {
    std::string bytes(200000, 'a');
    TestRandom random = test_random_start(2);
    for (char &byte : bytes) {
        byte = static_cast<char>(test_random_u32(&random));
    }
    const i64 blocks = memory_live_blocks();
    bool complete = false;
    i32 failures = 0;
    while (!complete) {
        ASSERT_LT(failures, 100);
        memory_trip_after(failures);
        const Owned<PageDeflate> deflate(page_deflate_try_create());
        i64 size = 0;
        complete = deflate != nullptr &&
                   page_deflate_put(deflate.get(), reinterpret_cast<const u8 *>(bytes.data()),
                                    static_cast<i64>(bytes.size())) &&
                   page_deflate_finish(deflate.get(), &size) != nullptr;
        memory_trip_after(-1);
        failures += complete ? 0 : 1;
    }
    EXPECT_GT(failures, 3);
    EXPECT_EQ(memory_live_blocks(), blocks);
}

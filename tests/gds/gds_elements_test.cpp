// Tests of gds/gds_elements.h: bytes as a person would check them.
#include "gds/gds_elements.h"

#include <gtest/gtest.h>

#include "gds/gds_record.h"
#include "tests/gds/gds_bytes.h"
#include "tests/support/test_support.h"

using ElementsFunction = void (*)(std::FILE *file);

static std::string written(ElementsFunction write) {
    const TemporaryFolder folder;
    const std::wstring path = folder.file(L"elements");
    std::FILE *file = std::fopen(test_system_from_wide(path).c_str(), "wb");
    EXPECT_NE(file, nullptr);
    write(file);
    std::fclose(file);
    return test_file_read(path);
}

TEST(GdsElements, ALibraryOfOneStructure) {
    const std::string bytes = written([](std::FILE *file) {
        u8 units[16];
        gds_units_raw(1e-6, 1e-12, units);
        gds_elements_begin(file, "ODD", units, "EVEN");
        gds_elements_end(file);
    });
    GdsBytes expected;
    expected.record_u16(GDS_RECORD_HEADER, {600}).record(GDS_RECORD_BGNLIB, std::string(24, '\0'));
    expected.record(GDS_RECORD_LIBNAME, std::string("ODD\0", 4));
    expected.record(GDS_RECORD_UNITS, bytes_real8(1e-6) + bytes_real8(1e-12));
    expected.record(GDS_RECORD_BGNSTR, std::string(24, '\0')).record(GDS_RECORD_STRNAME, "EVEN");
    EXPECT_EQ(bytes, expected.end().close().bytes);
}

TEST(GdsElements, PolygonsAndTexts) {
    const std::string bytes = written([](std::FILE *file) {
        const Point places[] = {{0, 0}, {-1, 256}, {65536, 2}, {0, 0}};
        gds_write_polygon(file, places, 4, 258);
        gds_write_text(file, {1, -2}, 5, "ABC");
    });
    const std::string boundary(
        "\0\x04\x08\0\0\x06\x0D\x02\x01\x02\0\x06\x0E\x02\0\0\0\x24\x10\x03"
        "\0\0\0\0\0\0\0\0\xFF\xFF\xFF\xFF\0\0\x01\0\0\x01\0\0\0\0\0\x02\0\0\0\0\0\0\0\0"
        "\0\x04\x11\0",
        56);
    const std::string text(
        "\0\x04\x0C\0\0\x06\x0D\x02\0\x05\0\x06\x16\x02\0\0\0\x0C\x10\x03"
        "\0\0\0\x01\xFF\xFF\xFF\xFE\0\x08\x19\x06"
        "ABC\0\0\x04\x11\0",
        40);
    EXPECT_EQ(bytes, boundary + text);
}

// Tests of export/export_text.h: clean and escaped texts, and numbers.
#include "export/export_text.h"

#include <gtest/gtest.h>

#include <charconv>
#include <cmath>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "platform/platform.h"
#include "platform/utf8.h"
#include "tests/support/test_support.h"

// What is appended to an empty text.
static std::string written(const std::function<void(ExportText *)> &put) {
    ExportText text = {};
    const Owned<ExportText> owner(&text);
    put(&text);
    EXPECT_TRUE(export_text_finish(&text));
    return text.size > 0 ? std::string(text.bytes, static_cast<size_t>(text.size)) : "";
}

static std::string clean(const char *value) {
    return written([value](ExportText *text) { export_text_put_clean(text, value); });
}

static std::string xml(const char *value) {
    return written([value](ExportText *text) { export_text_put_xml(text, value); });
}

static std::string json(const char *value) {
    return written([value](ExportText *text) { export_text_put_json(text, value); });
}

static std::string csv(const char *value) {
    return written([value](ExportText *text) { export_text_put_csv(text, value); });
}

static std::string number(f64 value) {
    return written([value](ExportText *text) { export_text_put_f64(text, value); });
}

static std::string number32(f32 value) {
    return written([value](ExportText *text) { export_text_put_f32(text, value); });
}

static std::string fixed(f64 value, i32 decimals) {
    return written([value, decimals](ExportText *text) { export_text_put_fixed(text, value, decimals); });
}

static std::string nanometres(f32 height_um) {
    return written([height_um](ExportText *text) { export_text_put_nm(text, height_um); });
}

TEST(ExportTextClean, BytesThatAreNoUtf8AreLatin1AndControlCharactersBlanks) {
    EXPECT_EQ(clean(""), "");
    EXPECT_EQ(clean("SiO\xe2\x82\x82"), "SiO\xe2\x82\x82");  // a subscript two
    EXPECT_EQ(clean("gr\xfcn"), "gr\xc3\xbcn");
    EXPECT_EQ(clean("a\tb\nc\x1b[1m\x7f"), "a b c [1m ");
    EXPECT_EQ(clean("\xc2\x85|"), " |");                       // a C1 control, which some take for a line end
    EXPECT_EQ(clean("\xed\xa0\x80"), "\xc3\xad\xc2\xa0 ");     // half a pair: its three bytes, the last a C1
    EXPECT_EQ(clean("\xf0\x9f\x94\xac"), "\xf0\x9f\x94\xac");  // beyond the first plane
}

TEST(ExportTextXml, WhatIsMarkupBecomesReferences) {
    EXPECT_EQ(xml("</text><script a='1' b=\"2\">&"),
              "&lt;/text&gt;&lt;script a=&#39;1&#39; b=&quot;2&quot;&gt;&amp;");
    EXPECT_EQ(xml("a\tb\r\nc"), "a&#9;b&#13;&#10;c");
    EXPECT_EQ(xml("\x01\x1f|"), "  |");
    EXPECT_EQ(xml("\xef\xbf\xbf"), "\xef\xbf\xbd");  // U+FFFF, which XML cannot hold
    EXPECT_EQ(xml("\xb5m"), "\xc2\xb5m");            // a micro sign in Latin-1
}

TEST(ExportTextJson, NothingInItCanEndTheScriptThatItStandsIn) {
    EXPECT_EQ(json(""), "\"\"");
    EXPECT_EQ(json("</script><!--"), "\"\\u003c/script\\u003e\\u003c!--\"");
    EXPECT_EQ(json("a\"b\\c&"), "\"a\\\"b\\\\c\\u0026\"");
    EXPECT_EQ(json("one\r\ntwo\t\x1b"), "\"one\\u000d\\ntwo\\u0009\\u001b\"");
    EXPECT_EQ(json("\xe2\x80\xa8\xe2\x80\xa9"), "\"\\u2028\\u2029\"");
    EXPECT_EQ(json("gr\xfcn"), "\"gr\xc3\xbcn\"");
}

TEST(ExportTextCsv, AFieldIsQuotedWhereItMustBe) {
    EXPECT_EQ(csv("OXIDE"), "OXIDE");
    EXPECT_EQ(csv("two words"), "two words");
    EXPECT_EQ(csv(""), "");
    EXPECT_EQ(csv("a,b"), "\"a,b\"");
    EXPECT_EQ(csv("a;b"), "\"a;b\"");
    EXPECT_EQ(csv("5\" wafer"), "\"5\"\" wafer\"");
    EXPECT_EQ(csv(" a"), "\" a\"");
    EXPECT_EQ(csv("a\n"), "\"a \"");  // one line, whatever is in it
    EXPECT_EQ(csv("a\r\nb"), "a  b");
}

TEST(ExportTextCsv, NoFieldIsAFormula) {
    EXPECT_EQ(csv("=1+1"), "'=1+1");
    EXPECT_EQ(csv("+a"), "'+a");
    EXPECT_EQ(csv("-a"), "'-a");
    EXPECT_EQ(csv("@a"), "'@a");
    EXPECT_EQ(csv("=A1,B2"), "\"'=A1,B2\"");
    EXPECT_EQ(csv("\t=1"), "\"' =1\"");
    EXPECT_EQ(csv("N-well"), "N-well");
    EXPECT_EQ(csv("   "), "\"   \"");
}

TEST(ExportTextCsv, TwoTextsAreOneField) {
    const auto both = [](const char *value, const char *more) {
        return written([value, more](ExportText *text) { export_text_put_csv(text, value, more); });
    };
    EXPECT_EQ(both("OXIDE", " top_nm"), "OXIDE top_nm");
    EXPECT_EQ(both("a\"b", " top_nm"), "\"a\"\"b top_nm\"");
    EXPECT_EQ(both("=a", " top_nm"), "'=a top_nm");
    EXPECT_EQ(both("", " top_nm"), "\" top_nm\"");
}

TEST(ExportTextNumbers, AreTheShortestThatReadBack) {
    EXPECT_EQ(number(0.1), "0.1");
    EXPECT_EQ(number(-2.5), "-2.5");
    EXPECT_EQ(number(1.0 / 3.0), "0.3333333333333333");
    EXPECT_EQ(number(123456789.0), "123456789");
    EXPECT_EQ(number(100000.0), "100000");
    EXPECT_EQ(number(1e14), "100000000000000");
    EXPECT_EQ(number(1e15), "1e+15");
    EXPECT_EQ(number(-1.5e-7), "-0.00000015");
    EXPECT_EQ(number(1.5e-8), "1.5e-8");
    EXPECT_EQ(number(1e300), "1e+300");
    EXPECT_EQ(number32(0.1F), "0.1");  // as f64 it would be 0.10000000149011612
    EXPECT_EQ(number32(16777216.0F), "16777216");
    EXPECT_EQ(number32(-10.25F), "-10.25");
}

TEST(ExportTextNumbers, ZerosHaveNoSignAndWhatIsNoNumberHasItsWord) {
    EXPECT_EQ(number(0.0), "0");
    EXPECT_EQ(number(-0.0), "0");
    EXPECT_EQ(number(std::nan("")), "nan");
    EXPECT_EQ(number(INFINITY), "inf");
    EXPECT_EQ(number32(-INFINITY), "-inf");
    EXPECT_EQ(nanometres(NAN), "nan");
    EXPECT_EQ(nanometres(-0.0F), "0");
    EXPECT_EQ(fixed(INFINITY, 2), "inf");
}

TEST(ExportTextNumbers, FixedOnesAreRounded) {
    EXPECT_EQ(fixed(1.25, 1), "1.2");  // both neighbours are as far: to even
    EXPECT_EQ(fixed(1.35, 1), "1.4");  // 1.350000000000000088...
    EXPECT_EQ(fixed(2.0, 3), "2.000");
    EXPECT_EQ(fixed(12.5, 0), "12");
    EXPECT_EQ(fixed(-0.001, 2), "0.00");
    EXPECT_EQ(fixed(-0.006, 2), "-0.01");
    EXPECT_EQ(fixed(-0.4, 0), "0");
    EXPECT_EQ(fixed(1e15, 1), "1.0e+15");
    EXPECT_EQ(fixed(123456789012345.0, 20), "123456789012345.00000000000000000000");
}

TEST(ExportTextNumbers, HeightsInNanometresLookAsTheyWereMeant) {
    EXPECT_EQ(nanometres(0.1F), "100");
    EXPECT_EQ(nanometres(0.0123F), "12.3");
    EXPECT_EQ(nanometres(-1.5F), "-1500");
    EXPECT_EQ(nanometres(1e-6F), "0.001");
    EXPECT_EQ(nanometres(2.5e-9F), "0.0000025");
    EXPECT_EQ(nanometres(1e20F), "1e+23");
    EXPECT_EQ(nanometres(0.333333343F), "333.33334");  // a third, to the eight digits that tell it apart
}

// As numpy.float32(figure / 1000) does.
TEST(ExportTextNumbers, NanometresReadBackAsTheSameHeight) {
    TestRandom random = test_random_start(12);
    for (i32 i = 0; i < 200000; ++i) {
        const u32 bits = test_random_u32(&random);
        f32 height = 0.0F;
        std::memcpy(&height, &bits, sizeof(height));
        if (i % 2 == 0) {
            height = test_random_f32(&random, -20.0F, 20.0F);  // what heights usually are
        }
        if (!std::isfinite(height)) {
            continue;
        }
        const std::string figure = nanometres(height);
        f64 value = 0.0;
        std::from_chars(figure.data(), figure.data() + figure.size(), value);
        ASSERT_EQ(static_cast<f32>(value / 1000.0), height) << figure;
    }
}

TEST(ExportTextFile, PiecesArriveInOrder) {
    const TemporaryFolder folder;
    const std::wstring path = folder.file(L"text");
    std::string expected;
    std::FILE *file = platform_file_open(path.c_str(), "wb");
    ASSERT_NE(file, nullptr);
    {
        ExportText text = {};
        const Owned<ExportText> owner(&text);
        text.file = file;
        const std::string large(200000, 'x');  // larger than a piece
        for (i32 i = 0; i < 30000; ++i) {
            export_text_put_integer(&text, i);
            expected += std::to_string(i);
            if (i % 10000 == 0) {
                export_text_put_bytes(&text, large.data(), static_cast<i64>(large.size()));
                expected += large;
            }
        }
        EXPECT_TRUE(export_text_finish(&text));
    }
    std::fclose(file);
    EXPECT_TRUE(test_file_read(path) == expected);
}

TEST(ExportTextMemory, LackOfMemoryIsTheCallersToTell) {
    ExportText text = {};
    const Owned<ExportText> owner(&text);
    export_text_put(&text, "before");
    const std::string large(1000, 'x');
    memory_trip_after(0);
    export_text_put(&text, large.c_str());
    memory_trip_after(-1);
    export_text_put(&text, "after");
    EXPECT_FALSE(export_text_finish(&text));
    EXPECT_EQ(std::string(text.bytes, static_cast<size_t>(text.size)), "before");
}

TEST(ExportTextWide, IsCleanUtf8) {
    EXPECT_STREQ(export_text_from_wide(L"").get(), "");
    EXPECT_STREQ(export_text_from_wide(L"gr\u00fcn \u2082\n").get(), "gr\xc3\xbcn \xe2\x82\x82 ");
    EXPECT_STREQ(export_text_from_wide(L"\U0001F52C").get(), "\xf0\x9f\x94\xac");
}

#include "log/near_name.h"

#include <gtest/gtest.h>

#include <string>

static std::string nearest(const char *wanted, std::initializer_list<const char *> names) {
    NearName near = {wanted, nullptr, 0};
    for (const char *name : names) {
        near_name_try(&near, name);
    }
    return near.best != nullptr ? near.best : "(none)";
}

TEST(NearName, LetterCaseIsNearestOfAll) {
    EXPECT_EQ(nearest("Top", {"TOPS", "TOP", "top"}), "top");  // one letter of the other case against two
    EXPECT_EQ(nearest("top", {"tip", "TOP"}), "TOP");
    EXPECT_EQ(nearest("a", {"A"}), "A");
}

TEST(NearName, OneLetterInThree) {
    EXPECT_EQ(nearest("ab", {"ac", "abc"}), "(none)");
    EXPECT_EQ(nearest("abc", {"abd"}), "abd");     // another letter
    EXPECT_EQ(nearest("abc", {"abcd"}), "abcd");   // one missing
    EXPECT_EQ(nearest("abcd", {"abc"}), "abc");    // one too much
    EXPECT_EQ(nearest("abc", {"acb"}), "acb");     // two that changed places
    EXPECT_EQ(nearest("abc", {"xbd"}), "(none)");  // two of three
    EXPECT_EQ(nearest("abcdef", {"xbcdxf"}), "xbcdxf");
    EXPECT_EQ(nearest("abcdef", {"xbxdxf"}), "(none)");
    EXPECT_EQ(nearest("abcdefghijkl", {"xbxdxfghijkl"}), "xbxdxfghijkl");
    EXPECT_EQ(nearest("abcdefghijkl", {"xbxdxfxhijkl"}), "(none)");  // four
    EXPECT_EQ(nearest("abcdefghijkl", {"abcdefghijklmnop"}), "(none)");
}

TEST(NearName, TheNearestAndThenTheFirst) {
    EXPECT_EQ(nearest("firebrik", {"firebricks", "firebrick", "firebrics"}), "firebrick");
    EXPECT_EQ(nearest("cell3", {"cell1", "cell2"}), "cell1");
    EXPECT_EQ(nearest("gold", {}), "(none)");
    EXPECT_EQ(nearest("", {"", "a"}), "");
}

TEST(NearName, NamesOfAnyLength) {
    std::string a(1000, 'a');
    std::string upper(1000, 'A');
    std::string other = a;
    other[500] = 'b';
    EXPECT_EQ(nearest(a.c_str(), {upper.c_str()}), upper);
    EXPECT_EQ(nearest(a.c_str(), {other.c_str()}), "(none)");
    std::string b(64, 'b');
    std::string c = b.substr(1) + "c";
    EXPECT_EQ(nearest(b.c_str(), {c.c_str()}), c);
}

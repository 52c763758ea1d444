#include "log/near_name.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/support/test_support.h"

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
    const std::string a(1000, 'a');
    const std::string upper(1000, 'A');
    std::string other = a;
    other[500] = 'b';
    EXPECT_EQ(nearest(a.c_str(), {upper.c_str()}), upper);
    EXPECT_EQ(nearest(a.c_str(), {other.c_str()}), "(none)");
    const std::string b(64, 'b');
    const std::string c = b.substr(1) + "c";
    EXPECT_EQ(nearest(b.c_str(), {c.c_str()}), c);
}

// The plain twin: the whole table, letter case ignored.
static i32 plain_edits(const std::string &a, const std::string &b) {
    std::vector<std::vector<i32>> table(a.size() + 1, std::vector<i32>(b.size() + 1));
    for (size_t i = 0; i <= a.size(); ++i) {
        for (size_t k = 0; k <= b.size(); ++k) {
            if (i == 0 || k == 0) {
                table[i][k] = static_cast<i32>(i + k);
                continue;
            }
            const i32 letter = a[i - 1] == b[k - 1] ? 0 : 1;
            i32 best = std::min({table[i - 1][k] + 1, table[i][k - 1] + 1, table[i - 1][k - 1] + letter});
            if (i > 1 && k > 1 && a[i - 1] == b[k - 2] && a[i - 2] == b[k - 1] && letter == 1) {
                best = std::min(best, table[i - 2][k - 2] + 1);
            }
            table[i][k] = best;
        }
    }
    return table[a.size()][b.size()];
}

TEST(NearName, RandomNamesAsByThePlainCount) {
    TestRandom random = test_random_start(7);
    for (i32 round = 0; round < 20000; ++round) {
        std::string a;
        std::string b;
        for (i32 i = test_random_i32(&random, 0, 14); i > 0; --i) {
            a += static_cast<char>('a' + test_random_i32(&random, 0, 2));
        }
        b = a;
        for (i32 i = test_random_i32(&random, 0, 5); i > 0 && !b.empty(); --i) {
            auto at = static_cast<size_t>(test_random_i32(&random, 0, static_cast<i32>(b.size()) - 1));
            switch (test_random_i32(&random, 0, 2)) {
                case 0: b.erase(at, 1); break;
                case 1: b.insert(at, 1, static_cast<char>('a' + test_random_i32(&random, 0, 2))); break;
                default: b[at] = static_cast<char>('a' + test_random_i32(&random, 0, 2)); break;
            }
        }
        const i32 allowed = std::min(3, static_cast<i32>(std::min(a.size(), b.size())) / 3);
        const bool near = plain_edits(a, b) <= allowed;
        EXPECT_EQ(nearest(a.c_str(), {b.c_str()}), near ? b : "(none)") << a;
    }
}

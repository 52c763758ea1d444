#include "gds/gds_names.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

// Frees the names at the end of its scope.
struct Names {
    Names() = default;
    ~Names() { gds_names_clear(&table); }
    Names(const Names &) = delete;
    Names &operator=(const Names &) = delete;

    GdsName *add(const std::string &text) {
        return gds_names_add(&table, text.data(), static_cast<i64>(text.size()));
    }
    GdsName *find(const std::string &text) const {
        return gds_names_find(&table, text.data(), static_cast<i64>(text.size()));
    }

    GdsNames table = {};
};

TEST(GdsNames, KeepEachNameOnce) {
    Names names;
    EXPECT_EQ(names.find("A"), nullptr) << "an empty table has none";
    GdsName *first = names.add("A");
    EXPECT_EQ(names.add("A"), first);
    EXPECT_NE(names.add("AB"), first);
    EXPECT_NE(names.add(""), first) << "a name without letters is one";
    EXPECT_EQ(names.find("A"), first);
    EXPECT_EQ(names.find("a"), nullptr);
    EXPECT_EQ(names.table.count, 3);
    EXPECT_STREQ(gds_name_text(first), "A");
    EXPECT_STREQ(gds_name_text(nullptr), "");
}

TEST(GdsNames, ManyAndLongOnesStayWhereTheyAre) {
    const i64 before = memory_live_blocks();
    {
        Names names;
        std::vector<GdsName *> added;
        added.reserve(5000);
        for (i32 i = 0; i < 5000; ++i) {
            added.push_back(names.add("CELL" + std::to_string(i)));
        }
        const std::string longest(65530, 'x');
        GdsName *long_name = names.add(longest);
        for (i32 i = 0; i < 5000; ++i) {
            const std::string text = "CELL" + std::to_string(i);
            ASSERT_EQ(names.find(text), added[static_cast<size_t>(i)]);
            ASSERT_EQ(gds_name_text(added[static_cast<size_t>(i)]), text);
        }
        EXPECT_EQ(names.add(longest), long_name);
        EXPECT_EQ(long_name->string.count, 65530U);
        EXPECT_EQ(names.table.count, 5001);
    }
    EXPECT_EQ(memory_live_blocks(), before);
}

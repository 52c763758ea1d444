#include "platform/text_family.h"

#include <gtest/gtest.h>

#include <cstring>

TEST(TextFamily, SomeFaceHasUsualLetters) {
    for (const bool bold : {false, true}) {
        char family[PLATFORM_FAMILY_SIZE] = "";
        EXPECT_TRUE(platform_text_family('A', bold, family));
        EXPECT_NE(std::strlen(family), 0U);
    }
}

TEST(TextFamily, NoFaceHasALetterThatThereIsNot) {
    char family[PLATFORM_FAMILY_SIZE] = "as it was";
    EXPECT_FALSE(platform_text_family(0x378, false, family));  // not assigned
    EXPECT_STREQ(family, "as it was");
}

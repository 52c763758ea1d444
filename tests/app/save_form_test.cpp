// Tests of app/save_form.h: what the extension of a file name tells.
#include "app/save_form.h"

#include <gtest/gtest.h>

#include "app/picture_commands.h"

TEST(SaveKindOf, ByTheExtensionWhateverItsCase) {
    EXPECT_EQ(save_kind_of(&PICTURE_SAVE_FORM, L"a.png"), IMAGE_PNG);
    EXPECT_EQ(save_kind_of(&PICTURE_SAVE_FORM, L"C:\\x.bmp\\000 The substrate.PnG"), IMAGE_PNG);
    EXPECT_EQ(save_kind_of(&PICTURE_SAVE_FORM, L"/x.png/b.BMP"), IMAGE_BMP);
    for (const wchar_t *path : {L"", L"png", L"apng", L"a.pn", L"a.png.txt", L"a.bmp/b", L"a.", L"a.jpg"}) {
        EXPECT_EQ(save_kind_of(&PICTURE_SAVE_FORM, path), PICTURE_SAVE_FORM.kind_count) << path;
    }
}

#include "app/window_texts.h"

#include <gtest/gtest.h>

TEST(FileIsOfKind, ByTheExtensionWhateverItsCase) {
    for (const wchar_t *path : {L"a.gds", L"C:\\x y\\b.GDS", L"/data/c.d/e.Gds", L".gds", L"Ω.gds"}) {
        EXPECT_TRUE(file_is_of_kind(path, FILE_LAYOUT)) << path;
        EXPECT_FALSE(file_is_of_kind(path, FILE_PROCESS)) << path;
    }
    for (const wchar_t *path : {L"a.txt", L"b.TXT"}) {
        EXPECT_TRUE(file_is_of_kind(path, FILE_PROCESS)) << path;
        EXPECT_FALSE(file_is_of_kind(path, FILE_LAYOUT)) << path;
    }
    for (const wchar_t *path :
         {L"", L"gds", L"a.gd", L"a.gdsx", L"a.gds.zip", L"a.", L"a.gds.", L"a.gds/b"}) {
        EXPECT_FALSE(file_is_of_kind(path, FILE_LAYOUT)) << path;
    }
}

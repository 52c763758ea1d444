// Tests of export/export_formats.h: the table of what can be written, and how a file of it fails.
#include "export/export_formats.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "tests/support/test_support.h"

TEST(ExportFormats, EachHasItsOwnNameAndTheExtensionOfThatName) {
    std::set<std::string> names;
    for (const ExportFormatForm &form : EXPORT_FORMATS) {
        ASSERT_NE(form.name, nullptr);
        EXPECT_TRUE(names.insert(form.name).second) << form.name;
        const std::wstring extension = form.extension;
        EXPECT_EQ(extension, L"." + std::wstring(form.name, form.name + std::string(form.name).size()));
        EXPECT_NE(std::wstring(form.kind).find(L"(*" + extension + L")"), std::wstring::npos) << form.name;
        EXPECT_NE(form.write, nullptr) << form.name;
    }
}

TEST(ExportFormats, AFileInAFolderThatIsNotThereIsToldWithItsReason) {
    const TemporaryFolder folder;
    const ExportStep step = {};
    wchar_t reason[EXPORT_REASON_SIZE] = L"";
    EXPECT_FALSE(export_write(&step, EXPORT_SVG, folder.file(L"missing/a.svg").c_str(), reason));
    EXPECT_NE(std::wstring(reason), L"");
}

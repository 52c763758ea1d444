// The menu entry, the kind of file and the metadata speak of the same program in the same words.
#include <gtest/gtest.h>

#include <string>

#include "app/app_state.h"
#include "tests/support/test_support.h"

static std::string desktop_file(const wchar_t *name) {
    return test_file_read(test_wide(QUARN_SOURCE_FOLDER) + L"/data/desktop/" + name);
}

// The value of a key of the menu entry, empty when it is not there.
static std::string entry_value(const std::string &key) {
    const std::string text = desktop_file(L"quarn.desktop");
    const size_t line = text.find("\n" + key + "=");
    if (line == std::string::npos) {
        return "";
    }
    const size_t start = line + key.size() + 2;
    return text.substr(start, text.find('\n', start) - start);
}

TEST(DesktopEntry, StartsTheProgramWithOneLayout) {
    // One file: a second one would be taken for a process file.
    EXPECT_EQ(entry_value("Exec"), "quarn %f");
    EXPECT_EQ(entry_value("TryExec"), "quarn");
    EXPECT_EQ(entry_value("Icon"), "quarn");
    EXPECT_EQ(entry_value("StartupWMClass"), "quarn");
    EXPECT_EQ(entry_value("Name"), PROGRAM_NAME);
}

TEST(DesktopEntry, OpensTheKindOfFileThatIsDefined) {
    std::string type = entry_value("MimeType");
    ASSERT_FALSE(type.empty());
    ASSERT_EQ(type.back(), ';');
    type.pop_back();
    EXPECT_NE(desktop_file(L"quarn.xml").find("<mime-type type=\"" + type + "\">"), std::string::npos)
        << type;
    EXPECT_NE(desktop_file(L"quarn.metainfo.xml").find("<mediatype>" + type + "</mediatype>"),
              std::string::npos)
        << type;
}

TEST(DesktopMetadata, NamesTheMenuEntryAndTheVersion) {
    const std::string metadata = desktop_file(L"quarn.metainfo.xml");
    EXPECT_NE(metadata.find("<launchable type=\"desktop-id\">quarn.desktop</launchable>"), std::string::npos);
    EXPECT_NE(metadata.find(std::string("<release version=\"") + PROGRAM_VERSION + "\""), std::string::npos)
        << "no release " << PROGRAM_VERSION;
}

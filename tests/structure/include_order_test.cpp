// Compares the #include lines of the source tree with the order of its folders: each folder knows only
// those below it, and the system's own headers stay where the system is spoken to.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/test_support.h"

namespace fs = std::filesystem;

static const fs::path ROOT = QUARN_SOURCE_FOLDER;

using FolderRules = std::map<std::string, std::set<std::string>>;

// What the files of each folder may include from the project, besides their own folder.
static const FolderRules ALLOWED_FOLDERS = {
    {"platform", {}},
    {"platform/linux", {"platform"}},
    {"platform/win32", {"platform"}},
    {"log", {"platform"}},
    {"gds", {"platform", "log"}},
    {"process", {"platform", "log"}},
    {"image", {"platform", "log"}},
    {"sim/kernels", {"platform", "gds"}},  // arrays and polygons in, arrays out: no stack, no text
    {"sim", {"platform", "log", "gds", "process", "image", "sim/kernels"}},
    {"render", {"platform", "log", "gds", "process", "image", "sim"}},
    {"export", {"platform", "log", "gds", "process", "image", "sim"}},
    {"app", {"platform", "log", "gds", "process", "image", "sim", "render", "export"}},
    {"app/batch", {"platform", "log", "gds", "process", "image", "sim", "render", "export", "app"}},
    {"app/gtk", {"platform", "log", "gds", "process", "image", "sim", "render", "export", "app"}},
    {"app/win32",
     {"platform", "platform/win32", "log", "gds", "process", "image", "sim", "render", "export", "app"}},
};

// These speak to a system or a window library and include what they need for it.
static const std::set<std::string> SYSTEM_FOLDERS = {"platform/linux", "platform/win32", "app/batch",
                                                     "app/gtk", "app/win32"};

// Libraries that a .cpp of a folder may include; headers include none, so that no caller meets them.
static const FolderRules ALLOWED_LIBRARIES = {
    {"gds", {"emmintrin.h", "zlib.h"}},
    {"image", {"png.h", "zlib.h"}},
    {"sim", {"GL/glew.h"}},
    {"render", {"GL/glew.h"}},
    {"app", {"GL/glew.h"}},
    {"export", {"cairo-pdf.h", "cairo-svg.h", "cairo.h", "zlib.h"}},
};

static const std::set<std::string> STANDARD_HEADERS = {
    "algorithm", "array",   "atomic",  "cassert", "cctype",      "charconv", "cerrno",  "cfenv",   "cfloat",
    "chrono",    "climits", "csetjmp", "cmath",   "csignal",     "cstdarg",  "cstddef", "cstdint", "cstdio",
    "cstdlib",   "cstring", "ctime",   "cwchar",  "cwctype",     "iterator", "limits",  "mutex",   "new",
    "memory",    "numeric", "thread",  "tuple",   "type_traits", "utility",
};

struct Include {
    i32 line;
    bool quoted;
    std::string name;
};

// The #include lines of a text, with any blanks around the sign.
static std::vector<Include> includes_of(const std::string &text) {
    std::vector<Include> includes;
    std::istringstream stream(text);
    std::string line;
    for (i32 number = 1; std::getline(stream, line); ++number) {
        std::string packed;
        for (const char character : line) {
            if (std::isspace(static_cast<unsigned char>(character)) == 0) {
                packed.push_back(character);
            }
        }
        const std::string directive = "#include";
        if (packed.compare(0, directive.size(), directive) != 0 || packed.size() < directive.size() + 2) {
            continue;
        }
        const char open = packed[directive.size()];
        const size_t end = packed.find(open == '<' ? '>' : '"', directive.size() + 1);
        if ((open == '<' || open == '"') && end != std::string::npos) {
            const size_t start = directive.size() + 1;
            includes.push_back({number, open == '"', packed.substr(start, end - start)});
        }
    }
    return includes;
}

static std::string folder_of(const std::string &name) {
    const size_t separator = name.rfind('/');
    return separator == std::string::npos ? "" : name.substr(0, separator);
}

static bool is_header(const std::string &name) {
    return name.size() > 2 && name.compare(name.size() - 2, 2, ".h") == 0;
}

// Why a file of the project (its name from the root on) must not include something; "" when it may.
static std::string fault_of(const std::string &file, const Include &include) {
    const std::string folder = folder_of(file);
    const FolderRules::const_iterator allowed = ALLOWED_FOLDERS.find(folder);
    if (allowed == ALLOWED_FOLDERS.end()) {
        return "lies in a folder without rules";
    }
    if (include.quoted) {
        const std::string target = folder_of(include.name);
        const bool known = target == folder || allowed->second.count(target) != 0;
        return known ? "" : "must not know the folder \"" + target + "\"";
    }
    if (SYSTEM_FOLDERS.count(folder) != 0 || STANDARD_HEADERS.count(include.name) != 0) {
        return "";
    }
    const FolderRules::const_iterator libraries = ALLOWED_LIBRARIES.find(folder);
    if (libraries == ALLOWED_LIBRARIES.end() || libraries->second.count(include.name) == 0) {
        return "must not include this header of a system or library";
    }
    return is_header(file) ? "is a header and must not pass this one on" : "";
}

// Names, from the root on, of the sources of every folder with rules.
static std::vector<std::string> source_files() {
    std::vector<std::string> files;
    std::set<std::string> tops;
    for (const FolderRules::value_type &entry : ALLOWED_FOLDERS) {
        tops.insert(entry.first.substr(0, entry.first.find('/')));
    }
    for (const std::string &top : tops) {
        std::error_code error;
        for (const fs::directory_entry &entry : fs::recursive_directory_iterator(ROOT / top, error)) {
            const std::string extension = entry.path().extension().string();
            if (extension == ".h" || extension == ".cpp") {
                files.push_back(entry.path().lexically_relative(ROOT).generic_string());
            }
        }
        EXPECT_FALSE(error) << "the folder " << top << " cannot be read: " << error.message();
    }
    std::sort(files.begin(), files.end());
    return files;
}

TEST(IncludeOrder, EachFolderKnowsOnlyThoseBelowIt) {
    const std::vector<std::string> files = source_files();
    ASSERT_GT(files.size(), 20U) << "the source tree was not found";
    for (const std::string &file : files) {
        for (const Include &include : includes_of(test_file_read((ROOT / file).wstring()))) {
            const std::string fault = fault_of(file, include);
            EXPECT_EQ(fault, "") << file << ":" << include.line << " includes " << include.name;
        }
    }
}

TEST(IncludeOrder, EveryHeaderIsIncludedOnce) {
    for (const std::string &file : source_files()) {
        const std::string text = test_file_read((ROOT / file).wstring());
        if (is_header(file)) {
            EXPECT_NE(text.find("#pragma once\n"), std::string::npos) << file << " has no #pragma once";
        }
        std::set<std::string> seen;
        for (const Include &include : includes_of(text)) {
            EXPECT_TRUE(seen.insert(include.name).second)
                << file << ":" << include.line << " includes " << include.name << " again";
        }
    }
}

TEST(IncludeOrder, FindsWhatIsWrong) {
    const struct {
        const char *file;
        const char *line;
        bool fine;
    } cases[] = {
        {"gds/a.cpp", "#include \"gds/b.h\"", true},
        {"gds/a.cpp", "#include \"log/log.h\"", true},
        {"gds/a.cpp", "#include \"process/stack.h\"", false},
        {"process/a.h", "#include \"gds/b.h\"", false},
        {"process/a.h", " # include  \"sim/layer.h\"", false},
        {"log/a.cpp", "#include \"gds/b.h\"", false},
        {"platform/memory.cpp", "#include \"platform/linux/system_error.h\"", false},
        {"app/commands.cpp", "#include \"app/batch/options.h\"", false},
        {"app/gtk/main.cpp", "#include \"app/win32/main.h\"", false},
        {"sim/a.cpp", "#include \"b.h\"", false},
        {"sim/a.cpp", "#include \"sim/kernels/b.h\"", true},
        {"sim/kernels/a.cpp", "#include \"sim/layer.h\"", false},
        {"sim/kernels/a.h", "#include \"process/stack.h\"", false},
        {"sim/kernels/a.cpp", "#include \"log/log.h\"", false},
        {"sim/a.cpp", "#include <GL/glew.h>", true},
        {"sim/a.h", "#include <GL/glew.h>", false},
        {"gds/a.cpp", "#include <GL/glew.h>", false},
        {"gds/a.cpp", "#include <unistd.h>", false},
        {"log/a.cpp", "#include<windows.h>", false},
        {"app/commands.cpp", "#include <gtk/gtk.h>", false},
        {"app/gtk/main.cpp", "#include <gtk/gtk.h>", true},
        {"platform/linux/files.cpp", "#include <unistd.h>", true},
        {"render/a.h", "#include <cmath>", true},
    };
    for (const auto &c : cases) {
        std::vector<Include> includes = includes_of(c.line);
        ASSERT_EQ(includes.size(), 1U) << c.line;
        EXPECT_EQ(fault_of(c.file, includes[0]) == "", c.fine) << c.file << ": " << c.line;
    }
}

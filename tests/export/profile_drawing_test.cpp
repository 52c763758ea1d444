// Tests of export/profile_svg.h, profile_pdf.h and what they share: texts, rulers and hatches.
#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "export/export_formats.h"
#include "export/profile_hatch.h"
#include "export/profile_page.h"
#include "export/profile_ruler.h"
#include "process/process_text.h"
#include "tests/support/film_stack.h"
#include "tests/support/test_support.h"

static void name_film(Layer *layer, const char *name, f32 red, f32 green = 0.5F) {
    layer->legend_name = process_text_copy(name).release();
    layer->color[0] = red;
    layer->color[1] = green;
}

// A ground of 2 um and a film of 1 um over columns 0 to 20.
struct TwoFilms : FilmStack {
    explicit TwoFilms(const char *name) : FilmStack(21, 2) {
        name_film(add_columns(std::vector<FilmHeights>(21, {0.0F, 2.0F})), "GROUND", 0.9F);
        name_film(add_columns(std::vector<FilmHeights>(21, {2.0F, 3.0F})), name, 0.1F);
    }
};

static ExportFacts test_facts() {
    ExportFacts facts = {};
    facts.program = "Quarn 3";
    facts.layout_path = L"/home/someone/chip & co.gds";
    facts.process_path = L"steps.txt";
    std::strcpy(facts.date, "2024-05-31 17:05");
    return facts;
}

static std::string draw(const Stack *stack, ExportFormat format, f32 vertical_scale = 1.0F,
                        const wchar_t *heading = nullptr) {
    const TemporaryFolder folder;
    const std::wstring path = folder.file(L"drawing");
    const ExportFacts facts = test_facts();
    const ExportStep step = {stack,          1,     1, L"Cross section after <OXIDE> deposition", heading,
                             vertical_scale, &facts};
    wchar_t reason[EXPORT_REASON_SIZE] = L"";
    EXPECT_TRUE(export_write(&step, format, path.c_str(), reason)) << test_utf8(reason);
    return test_file_read(path);
}

static size_t count_of(const std::string &text, const std::string &part) {
    size_t count = 0;
    for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++count;
    }
    return count;
}

// What a program of the system says of a file with these bytes; "missing" where there is none.
static std::string ask(const std::string &program, const std::string &options, const std::string &bytes) {
    if (std::system(("command -v " + program + " >/dev/null 2>&1").c_str()) != 0) {
        return "missing";
    }
    const TemporaryFolder folder;
    test_file_write(folder.file(L"in"), bytes);
    const std::string command = program + " " + options + " '" + test_utf8(folder.file(L"in")) + "' >'" +
                                test_utf8(folder.file(L"out")) + "' 2>&1";
    const std::string status = std::system(command.c_str()) == 0 ? "" : "failed: ";
    return status + test_file_read(folder.file(L"out"));
}

TEST(ProfileSvg, HasItsTextsAsText) {
    const TwoFilms films("OXIDE");
    const std::string svg = draw(&films.stack, EXPORT_SVG, 1.0F, L"Wafer 7");
    EXPECT_NE(svg.find("<title>Cross section after &lt;OXIDE&gt; deposition</title>"), std::string::npos);
    EXPECT_NE(svg.find(">Wafer 7</text>"), std::string::npos);
    EXPECT_NE(svg.find(">chip &amp; co.gds, section of 21 um from (0, 0) um, 21 columns</text>"),
              std::string::npos);
    EXPECT_NE(svg.find(">steps.txt, Quarn 3, 2024-05-31 17:05</text>"), std::string::npos);
    EXPECT_EQ(count_of(svg, ">OXIDE</text>"), 2U);  // in the film and in the legend
    EXPECT_EQ(count_of(svg, "<g id=\"section\">"), 1U);
    EXPECT_EQ(svg.find("<glyph"), std::string::npos);
    EXPECT_EQ(svg.find("<symbol"), std::string::npos);
}

TEST(ProfileSvg, TheSameStepIsTheSameBytes) {
    const TwoFilms films("OXIDE");
    const std::string first = draw(&films.stack, EXPORT_SVG);
    draw(&films.stack, EXPORT_PDF);
    EXPECT_EQ(draw(&films.stack, EXPORT_SVG), first);
}

TEST(ProfileSvg, HostileNamesAreOnlyNames) {
    const TwoFilms films("</text><script>alert(1)</script>&amp;\x01\"'\xFF");
    const std::string svg = draw(&films.stack, EXPORT_SVG);
    EXPECT_EQ(svg.find("<script"), std::string::npos);
    EXPECT_NE(svg.find("&lt;script&gt;alert(1)&lt;/script&gt;&amp;amp; &quot;&#39;\xC3\xBF</text>"),
              std::string::npos);
    const std::string said = ask("xmllint", "--noout --nonet", svg);
    if (said != "missing") {
        EXPECT_EQ(said, "");
    }
}

TEST(ProfileSvg, FilmsAreFilledInTheirColors) {
    const TwoFilms films("OXIDE");
    const std::string svg = draw(&films.stack, EXPORT_SVG);
    EXPECT_GE(count_of(svg, "rgb(89.999") + count_of(svg, "rgb(90%"), 1U);
    EXPECT_GE(count_of(svg, "rgb(10.000") + count_of(svg, "rgb(10%"), 1U);
}

TEST(ProfileSvg, NoLocaleChangesItsNumbers) {
    const TwoFilms films("OXIDE");
    const std::string plain = draw(&films.stack, EXPORT_SVG);
    const char *found = std::setlocale(LC_ALL, "de_DE.UTF-8");
    found = found != nullptr ? found : std::setlocale(LC_ALL, "de_DE.utf8");
    const std::string german = draw(&films.stack, EXPORT_SVG);
    std::setlocale(LC_ALL, "C");
    EXPECT_EQ(german, plain) << (found != nullptr ? found : "no such locale here");
}

TEST(ProfileSvg, ManyFilmsAndLongNamesKeepThePageInOrder) {
    FilmStack films(21, 2);
    const std::string long_name(3000, 'W');
    for (i32 i = 0; i < 100; ++i) {
        const auto bottom = static_cast<f32>(i);
        Layer *layer = films.add_columns(std::vector<FilmHeights>(21, {bottom, bottom + 1.0F}));
        name_film(layer, (std::to_string(i) + long_name).c_str(), 0.01F * bottom);
    }
    const std::string svg = draw(&films.stack, EXPORT_SVG);
    EXPECT_EQ(svg.find(long_name), std::string::npos);
    EXPECT_EQ(count_of(svg, "W\xE2\x80\xA6</text>") >= 100U, true);
    EXPECT_LT(svg.size(), 1000000U);
}

TEST(ProfileSvg, AnEmptyStackIsAPageWithoutFilms) {
    FilmStack films(21, 2);
    const std::string svg = draw(&films.stack, EXPORT_SVG);
    EXPECT_NE(svg.find("</svg>"), std::string::npos);
    EXPECT_NE(svg.find(">um</text>"), std::string::npos);
}

TEST(ProfilePdf, ItsTextsCanBeFound) {
    const TwoFilms films(
        "\xCE\xB2-SiC \xC3\x9C"
        "berzug");
    const std::string pdf = draw(&films.stack, EXPORT_PDF, 1.0F, L"Wafer 7");
    ASSERT_EQ(pdf.substr(0, 5), "%PDF-");
    if (std::system("command -v pdftotext >/dev/null 2>&1") != 0) {
        GTEST_SKIP() << "pdftotext is not installed";
    }
    const TemporaryFolder folder;
    test_file_write(folder.file(L"a.pdf"), pdf);
    const std::string command = "pdftotext -layout '" + test_utf8(folder.file(L"a.pdf")) + "' '" +
                                test_utf8(folder.file(L"a.txt")) + "'";
    ASSERT_EQ(std::system(command.c_str()), 0);
    const std::string found = test_file_read(folder.file(L"a.txt"));
    EXPECT_NE(found.find("Wafer 7"), std::string::npos) << found;
    EXPECT_NE(found.find("Cross section after <OXIDE> deposition"), std::string::npos) << found;
    EXPECT_NE(found.find("\xCE\xB2-SiC \xC3\x9C"
                         "berzug"),
              std::string::npos)
        << found;
    EXPECT_NE(found.find("chip & co.gds"), std::string::npos) << found;
}

TEST(ProfilePdf, TheSameStepIsTheSameBytes) {
    const TwoFilms films("OXIDE");
    EXPECT_EQ(draw(&films.stack, EXPORT_PDF), draw(&films.stack, EXPORT_PDF));
}

static ProfilePage page_of(const Stack *stack, f32 vertical_scale = 1.0F) {
    ExportStep step = {};
    step.stack = stack;
    step.title = L"A step";
    step.vertical_scale = vertical_scale;
    return profile_page_create(&step);
}

static bool page_says(const ProfilePage &page, const std::string &text) {
    for (i32 i = 0; i < page.texts.count; ++i) {
        if (std::string(drawn_text(&page.texts, i)).find(text) != std::string::npos) {
            return true;
        }
    }
    return false;
}

TEST(ProfilePage, BothScalesAreTheSameOrAsAskedFor) {
    const TwoFilms films("OXIDE");
    const ProfilePage plain = page_of(&films.stack);
    EXPECT_DOUBLE_EQ(plain.x_scale, plain.z_scale);
    EXPECT_DOUBLE_EQ(profile_page_x(&plain, 2.0) - profile_page_x(&plain, 0.0),
                     profile_page_y(&plain, 0.0) - profile_page_y(&plain, 1.0));
    EXPECT_FALSE(page_says(plain, "z x"));
    const ProfilePage stretched = page_of(&films.stack, 2.5F);
    EXPECT_DOUBLE_EQ(stretched.z_scale, 2.5 * stretched.x_scale);
    EXPECT_TRUE(page_says(stretched, "z x 2.5"));
}

// 100 um with 50 nm on a ground of 5 um: at 1,200 points a page the film is about 0.5 points high.
struct FlatFilm : FilmStack {
    FlatFilm() : FilmStack(101, 2) {
        name_film(add_columns(std::vector<FilmHeights>(101, {0.0F, 5.0F})), "GROUND", 0.9F);
        name_film(add_columns(std::vector<FilmHeights>(101, {5.0F, 5.05F})), "FILM", 0.1F);
    }
};

TEST(ProfilePage, AFlatSectionTellsHowItWouldBeSeen) {
    const FlatFilm films;
    const ProfilePage page = page_of(&films.stack);
    EXPECT_TRUE(page_says(page, "With --z-scale 500 ")) << "550 times that is 300";
    EXPECT_LT(page.height, 400.0);
    EXPECT_FALSE(page_says(page_of(&films.stack, 500.0F), "With --z-scale"));
    const TwoFilms thick("OXIDE");
    EXPECT_FALSE(page_says(page_of(&thick.stack), "With --z-scale")) << "54 points for each um";
}

TEST(ProfilePage, StretchedTheSubstrateEndsBelowItsSurface) {
    const FlatFilm films;
    EXPECT_EQ(page_of(&films.stack).face.lowest, 0.0);
    const ProfilePage page = page_of(&films.stack, 500.0F);
    EXPECT_NEAR(profile_page_y(&page, page.face.lowest) - profile_page_y(&page, 5.0), 40.0, 1e-6);
    EXPECT_TRUE(page_says(page, "z x 500, the foot of the substrate is left out"));
    EXPECT_LT(page.height, 600.0);
    // A hole down to 1 um is shown to its bottom.
    FilmStack holed(101, 2);
    name_film(holed.add([](i32 n, i32) { return FilmHeights{0.0F, n == 50 ? 1.0F : 5.0F}; }), "GROUND", 0.9F);
    const ProfilePage deep = page_of(&holed.stack, 10.0F);
    EXPECT_LT(deep.face.lowest, 1.0);
    EXPECT_GT(deep.face.lowest, 0.0);
}

TEST(ProfilePage, ATallSectionStaysOnThePage) {
    FilmStack films(3, 2);
    name_film(films.add_columns(std::vector<FilmHeights>(3, {0.0F, 500.0F})), "GROUND", 0.9F);
    const ProfilePage page = page_of(&films.stack);
    EXPECT_DOUBLE_EQ(page.x_scale, page.z_scale);
    EXPECT_LT(page.height, 2000.0);
}

TEST(ProfileRuler, StepsAreRound) {
    struct RulerCase {
        f64 lowest, highest, least;
        f64 step;
        bool in_nanometres;
        const char *last;
    };
    const RulerCase cases[] = {
        {0.0, 8.0, 0.54, 1.0, false, "8"},          {0.0, 2.2, 0.17, 0.2, false, "2.2"},
        {0.0, 0.9, 0.02, 0.02, true, "900"},        {0.0, 0.05, 0.0003, 0.0005, true, "50.0"},
        {0.0, 100.0, 6.9, 10.0, false, "100"},      {-0.4, 3.0, 0.3, 0.5, false, "3.0"},
        {0.0, 4000.0, 270.0, 500.0, false, "4000"},
    };
    for (const RulerCase &c : cases) {
        const ProfileRuler ruler = profile_ruler_create(c.lowest, c.highest, c.least);
        EXPECT_DOUBLE_EQ(ruler.step, c.step) << c.highest;
        EXPECT_EQ(ruler.in_nanometres, c.in_nanometres) << c.highest;
        i64 last = ruler.last;
        while (!profile_ruler_has_figure(&ruler, last)) {
            --last;
        }
        char text[32];
        profile_ruler_format(&ruler, last, text);
        EXPECT_STREQ(text, c.last);
        EXPECT_GE(profile_ruler_place(&ruler, ruler.first), c.lowest - 1e-9);
        EXPECT_LE(profile_ruler_place(&ruler, ruler.last), c.highest + 1e-9);
    }
}

static f64 hatch_length(i32 material, const std::vector<std::vector<HatchPoint>> &outlines) {
    std::vector<HatchRing> rings;
    for (const std::vector<HatchPoint> &outline : outlines) {
        rings.push_back({outline.data(), static_cast<i32>(outline.size())});
    }
    HatchLines lines = {};
    profile_hatch_add(material, rings.data(), static_cast<i32>(rings.size()), &lines);
    f64 length = 0.0;
    for (i32 i = 0; i < lines.count; ++i) {
        length += std::hypot(lines.items[i].to.x - lines.items[i].from.x,
                             lines.items[i].to.y - lines.items[i].from.y);
    }
    return length;
}

TEST(ProfileHatch, LinesFillTheAreaAndLeaveHoles) {
    const std::vector<HatchPoint> square = {{0, 0}, {300, 0}, {300, 300}, {0, 300}};
    const std::vector<HatchPoint> hole = {{100, 100}, {100, 200}, {200, 200}, {200, 100}};
    EXPECT_EQ(hatch_length(0, {square}), 0.0);
    for (i32 material = 1; material <= 9; ++material) {
        // The length of lines so far apart is the area over their distance, up to what ends cut off.
        const f64 whole = hatch_length(material, {square});
        const f64 holed = hatch_length(material, {square, hole});
        EXPECT_NEAR(holed / whole, 8.0 / 9.0, 0.02) << "material " << material;
        EXPECT_DOUBLE_EQ(hatch_length(material + 9, {square}), whole);
    }
    EXPECT_NEAR(hatch_length(1, {square}), 300.0 * 300.0 / 7.0, 300.0);
}

TEST(ProfileText, IsShortenedBetweenCharacters) {
    const NarrowText whole = text_shortened("OXIDE", 12.0, 400.0);
    EXPECT_STREQ(whole.get(), "OXIDE");
    std::string greek;
    for (i32 i = 0; i < 200; ++i) {
        greek += "\xCE\xB2";
    }
    const NarrowText shorter = text_shortened(greek.c_str(), 12.0, 100.0);
    const std::string text = shorter.get();
    ASSERT_GT(text.size(), 5U);
    EXPECT_EQ(text.substr(text.size() - 3), "\xE2\x80\xA6");
    EXPECT_EQ((text.size() - 3) % 2, 0U);
    EXPECT_LE(text_width(text.c_str(), 12.0, false), 100.0);
    EXPECT_STREQ(text_shortened("", 12.0, 100.0).get(), "");
}

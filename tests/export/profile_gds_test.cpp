// Tests of export/profile_gds.h and material_numbers.h: what other programs find in the file.
#include "export/profile_gds.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <map>

#include "export/export_formats.h"
#include "export/material_numbers.h"
#include "gds/gds_read.h"
#include "process/process_text.h"
#include "tests/support/film_stack.h"
#include "tests/support/test_support.h"

static void name_film(Layer *layer, const char *name, f32 red) {
    layer->legend_name = process_text_copy(name).release();
    layer->material_name = process_text_copy(name).release();
    layer->color[0] = red;
}

static ExportStep step_of(const Stack *stack, i32 number = 3) {
    ExportStep step = {};
    step.stack = stack;
    step.number = number;
    step.title = L"A step";
    step.vertical_scale = 1.0F;
    return step;
}

// Twice the area of the polygons of each layer, in steps of coordinates.
static std::map<i32, i64> doubled_areas(const GdsDatabase *layout) {
    std::map<i32, i64> areas;
    const GdsCell *cell = &layout->cells[0];
    for (i64 i = 0; i < cell->polygon_count; ++i) {
        const GdsPolygon *polygon = &cell->polygons[i];
        i64 twice = 0;
        for (i32 k = 0; k + 1 < polygon->point_count; ++k) {
            twice += i64{polygon->points[k].x} * polygon->points[k + 1].y -
                     i64{polygon->points[k + 1].x} * polygon->points[k].y;
        }
        EXPECT_GT(twice, 0) << "counter-clockwise";
        areas[polygon->layer] += twice;
    }
    return areas;
}

struct WrittenGds {
    TemporaryFolder folder;
    std::wstring path = folder.file(L"step.gds");
    Owned<GdsDatabase> layout{memory_new_zeroed<GdsDatabase>()};

    explicit WrittenGds(const Stack *stack) {
        const ExportStep step = step_of(stack);
        wchar_t reason[EXPORT_REASON_SIZE] = L"";
        EXPECT_TRUE(export_write(&step, EXPORT_GDS, path.c_str(), reason)) << test_utf8(reason);
        const ConsoleCapture capture;
        EXPECT_EQ(gds_read(layout.get(), path.c_str()), 0);
    }
};

TEST(ProfileGds, OurOwnReaderFindsTheAreas) {
    // A slab of 2 um under a mesa of 3 um from column 4 to column 6, which ends half-way to the next columns.
    FilmStack made(11, 2);
    name_film(made.add_columns(std::vector<FilmHeights>(11, {0.0F, 2.0F})), "SUB", 0.1F);
    name_film(made.add([](i32 n, i32) {
        return FilmHeights{2.0F, n >= 4 && n <= 6 ? 5.0F : 2.0F};
    }),
              "MESA", 0.2F);
    const WrittenGds written(&made.stack);
    ASSERT_EQ(written.layout->cell_count, 1);
    EXPECT_STREQ(nstring_text(written.layout->cells[0].name), "STEP_3");
    EXPECT_NEAR(written.layout->unit, 1e-6, 1e-18);
    const std::map<i32, i64> areas = doubled_areas(written.layout.get());
    // 20 and 9 square micrometres of 10^12 squares of 0.001 nm each.
    EXPECT_EQ(areas, (std::map<i32, i64>{{1, 40'000'000'000'000}, {2, 18'000'000'000'000}}));
}

TEST(ProfileGds, FilmsOfOneNameAndColorShareALayer) {
    FilmStack made(3, 2);
    name_film(made.add_columns(std::vector<FilmHeights>(3, {0.0F, 1.0F})), "OXIDE", 0.5F);
    name_film(made.add_columns(std::vector<FilmHeights>(3, {1.0F, 2.0F})), "OXIDE", 0.6F);
    name_film(made.add_columns(std::vector<FilmHeights>(3, {2.0F, 3.0F})), "OXIDE", 0.5F);
    const WrittenGds written(&made.stack);
    const std::map<i32, i64> areas = doubled_areas(written.layout.get());
    EXPECT_EQ(areas, (std::map<i32, i64>{{1, 8'000'000'000'000}, {2, 4'000'000'000'000}}));
}

TEST(ProfileGds, AnEmptyStackIsAnEmptyStructure) {
    FilmStack made(3, 2);
    const WrittenGds written(&made.stack);
    ASSERT_EQ(written.layout->cell_count, 1);
    EXPECT_EQ(written.layout->cells[0].polygon_count, 0);
}

TEST(ProfileGds, AWideSectionHasCoarserSteps) {
    // 20,000 um need 0.1 nm to stay below 10^9 steps.
    FilmStack made(21, 2);
    made.stack.spacing = 1000.0F;
    made.stack.width = 21000.0F;
    name_film(made.add_columns(std::vector<FilmHeights>(21, {0.0F, 8.0F})), "SUB", 0.1F);
    const WrittenGds written(&made.stack);
    EXPECT_NEAR(written.layout->unit, 1e-4, 1e-16);
    EXPECT_EQ(doubled_areas(written.layout.get()).at(1), i64{2} * 200'000'000 * 80'000);
}

TEST(ProfileGds, NamesStandWithinTheirFilms) {
    FilmStack made(11, 2);
    name_film(made.add_columns(std::vector<FilmHeights>(11, {0.0F, 2.0F})), "SUB\xE9", 0.1F);  // Latin-1
    const WrittenGds written(&made.stack);
    const std::string bytes = test_file_read(written.path);
    // TEXT, LAYER 1, TEXTTYPE 0, XY of 4.75 um (the half column beside the middle) and 1 um, and the name in
    // UTF-8 with a zero behind its five bytes.
    const std::string element(
        "\0\x04\x0C\0"
        "\0\x06\x0D\x02\0\x01"
        "\0\x06\x16\x02\0\0"
        "\0\x0C\x10\x03"
        "\0\x48\x7A\xB0"
        "\0\x0F\x42\x40"
        "\0\x0A\x19\x06SUB\xC3\xA9\0"
        "\0\x04\x11\0",
        42);
    EXPECT_NE(bytes.find(element), std::string::npos);
}

TEST(ProfileGds, KLayoutFindsTheAreas) {
    if (std::system("command -v klayout >/dev/null 2>&1") != 0) {
        GTEST_SKIP() << "klayout is not installed";
    }
    // A cavity of 2 um by 1 um in a block of 6 um by 3 um, and a film on it.
    FilmStack made(7, 2);
    const std::vector<FilmHeights> walls = {{1, 2}, {1, 2}, {1, 1}, {1, 1}, {1, 1}, {1, 2}, {1, 2}};
    name_film(made.add_columns(std::vector<FilmHeights>(7, {0.0F, 1.0F})), "BLOCK", 0.1F);
    name_film(made.add_columns(walls), "BLOCK", 0.1F);
    name_film(made.add_columns(std::vector<FilmHeights>(7, {2.0F, 3.0F})), "BLOCK", 0.1F);
    name_film(made.add_columns(std::vector<FilmHeights>(7, {3.0F, 3.5F})), "COVER", 0.2F);
    const WrittenGds written(&made.stack);
    const std::wstring script = written.folder.file(L"areas.py");
    test_file_write(script,
                    "import pya\n"
                    "layout = pya.Layout()\n"
                    "layout.read(source)\n"
                    "out = open(target, 'w')\n"
                    "for index in layout.layer_indexes():\n"
                    "    region = pya.Region(layout.top_cell().begin_shapes_rec(index))\n"
                    "    area = region.area() * layout.dbu ** 2\n"
                    "    merged = region.merged().area() * layout.dbu ** 2\n"
                    "    out.write('%d %.9f %.9f\\n' % (layout.get_info(index).layer, area, merged))\n"
                    "out.close()\n");
    const std::wstring result = written.folder.file(L"areas.txt");
    const std::string command = "QT_QPA_PLATFORM=offscreen klayout -b -rd source='" +
                                test_utf8(written.path) + "' -rd target='" + test_utf8(result) + "' -r '" +
                                test_utf8(script) + "' >/dev/null 2>&1";
    ASSERT_EQ(std::system(command.c_str()), 0);
    std::string areas = test_file_read(result);
    // The cavity is open from half-way between the columns 1 and 2 to half-way between 4 and 5: 3 um.
    EXPECT_NE(areas.find("1 15.000000000 15.000000000\n"), std::string::npos) << areas;
    EXPECT_NE(areas.find("2 3.000000000 3.000000000\n"), std::string::npos) << areas;
}

static ProcessStep film_step(i32 kind, const char *label, f32 red, f32 alpha = 1.0F) {
    ProcessStep step = {};
    step.kind = kind;
    step.label = const_cast<char *>(label);  // never freed
    step.material = const_cast<char *>(label);
    step.color_r = red;
    step.alpha = alpha;
    return step;
}

TEST(MaterialNumbers, GoByTheStepsAndStayWhenAFilmIsGone) {
    ProcessStep made[] = {film_step(STEP_DEPOSITION, "SUBSTRATE", 0.0F),
                          film_step(STEP_DEPOSITION, "OXIDE", 0.1F),
                          film_step(STEP_PHOTO, "PR", 0.2F),
                          film_step(STEP_ETCH, "OXIDE", 0.9F),
                          film_step(STEP_COATING, "OXIDE", 0.1F),
                          film_step(STEP_COATING, "OXIDE", 0.3F, 0.5F)};
    ProcessStep *items[6];
    for (i32 i = 0; i < 6; ++i) {
        items[i] = &made[i];
    }
    StepList steps = {items, 6, 6};
    FilmStack films(3, 2);
    films.stack.steps = &steps;
    Layer *layer = films.add_columns(std::vector<FilmHeights>(3, {0.0F, 1.0F}), 0.5F);
    name_film(layer, "OXIDE", 0.3F);
    const Owned<MaterialNumbers> numbers(material_numbers_create(&films.stack));
    ASSERT_EQ(numbers->count, 4);
    EXPECT_STREQ(numbers->items[2].name, "PR");
    EXPECT_STREQ(numbers->items[2].material, RESIST_MATERIAL);
    EXPECT_EQ(material_number_of(numbers.get(), layer), 4);
    films.stack.steps = nullptr;
}

TEST(MaterialNumbers, AreATable) {
    FilmStack films(3, 2);
    name_film(films.add_columns(std::vector<FilmHeights>(3, {0.0F, 1.0F})), "A, \"B\"", 1.0F);
    name_film(films.add_columns(std::vector<FilmHeights>(3, {1.0F, 2.0F}), 0.5F), "GLASS", 0.2F);
    const TemporaryFolder folder;
    const std::wstring path = folder.file(L"layers.csv");
    std::FILE *file = std::fopen(test_system_from_wide(path).c_str(), "wb");
    ASSERT_NE(file, nullptr);
    wchar_t reason[EXPORT_REASON_SIZE] = L"";
    EXPECT_TRUE(material_numbers_write(&films.stack, file, reason));
    std::fclose(file);
    // 0.2 of 255 is 51 or 33 in hexadecimal; half of 255, rounded up, is 80.
    EXPECT_EQ(test_file_read(path),
              "number,name,material,color\n"
              "1,\"A, \"\"B\"\"\",\"A, \"\"B\"\"\",#ff0000\n"
              "2,GLASS,GLASS,#33000080\n");
}

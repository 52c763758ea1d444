// quarn-batch --layers and --starter, and what a process file with -datatype makes.
#include <gtest/gtest.h>

#include "tests/app/batch_fixture.h"
#include "tests/gds/gds_bytes.h"

static void add_box(GdsBytes *stream, u16 layer, u16 datatype, Box box) {
    stream->record(GDS_RECORD_BOUNDARY).record_u16(GDS_RECORD_LAYER, {layer});
    stream->record_u16(GDS_RECORD_DATATYPE, {datatype});
    stream->xy({{box.x_min, box.y_min},
                {box.x_max, box.y_min},
                {box.x_max, box.y_max},
                {box.x_min, box.y_max},
                {box.x_min, box.y_min}});
    stream->record(GDS_RECORD_ENDEL);
}

// PART has poly and two contacts; TOP places it twice, and has a metal of its own. EMPTY has nothing.
static std::string cells_bytes() {
    GdsBytes stream;
    stream.head().begin("PART");
    add_box(&stream, 66, 20, {0, 0, 1000, 4000});
    add_box(&stream, 66, 44, {250, 250, 750, 750});
    add_box(&stream, 66, 44, {250, 3250, 750, 3750});
    stream.end().begin("TOP");
    add_box(&stream, 68, 5, {-500, -500, 9000, 500});
    stream.sref("PART", {0, 0}).sref("PART", {5000, 0}).end().begin("EMPTY").end().close();
    return stream.bytes;
}

using Arguments = std::vector<std::string>;

static i32 count_of(const std::string &text, const std::string &part) {
    i32 count = 0;
    for (size_t at = 0; (at = text.find(part, at)) != std::string::npos; at += part.size()) {
        ++count;
    }
    return count;
}

TEST(QuarnBatchLayers, ListsEveryPairOfEveryCell) {
    const BatchFixture fixture;
    fixture.write("l.gds", cells_bytes());
    const ProgramResult all = fixture.run({"--layers", "l.gds"});
    EXPECT_EQ(all.status, 0);
    EXPECT_EQ(all.error, "");
    EXPECT_EQ(all.output,
              "Layers and datatypes of cells with all that they refer to; lengths in um\n"
              "cell \"PART\"\n"
              "  -mask_id 66 -datatype 20  1 polygon   (   0,    0) to (   1,    4)\n"
              "  -mask_id 66 -datatype 44  2 polygons  (0.25, 0.25) to (0.75, 3.75)\n"
              "cell \"TOP\", top cell\n"
              "  -mask_id 66 -datatype 20  2 polygons  (   0,    0) to (   6,    4)\n"
              "  -mask_id 66 -datatype 44  4 polygons  (0.25, 0.25) to (5.75, 3.75)\n"
              "  -mask_id 68 -datatype 5   1 polygon   (-0.5, -0.5) to (   9,  0.5)\n"
              "cell \"EMPTY\", top cell: no polygons\n");
    const ProgramResult one = fixture.run({"--layers", "--cell", "PART", "l.gds"});
    EXPECT_EQ(one.status, 0);
    EXPECT_EQ(one.output,
              "Layers and datatypes of cells with all that they refer to; lengths in um\n"
              "cell \"PART\"\n"
              "  -mask_id 66 -datatype 20  1 polygon   (   0,    0) to (   1,    4)\n"
              "  -mask_id 66 -datatype 44  2 polygons  (0.25, 0.25) to (0.75, 3.75)\n");
}

TEST(QuarnBatchLayers, FailuresAreTold) {
    const BatchFixture fixture;
    fixture.write("l.gds", cells_bytes());
    fixture.write("cut.gds", cells_bytes().substr(0, 4) + std::string(2, '\0'));
    struct Case {
        Arguments words;
        i32 status;
        const char *error;
    };
    const Case cases[] = {
        {{"--layers", "--cell", "top", "l.gds"},
         3,
         "there is no cell \"top\" in the layout: did you mean \"TOP\"?"},
        {{"--layers", "--cell", "XYZZY", "l.gds"}, 3, "there is no cell \"XYZZY\" in the layout"},
        {{"--starter", "l.gds", "PATR"}, 3, "did you mean \"PART\"?"},
        {{"--layers", "missing.gds"}, 2, "No such file or directory"},
        {{"--starter", "missing.gds"}, 2, "No such file or directory"},
        {{"--layers", "cut.gds"}, 2, "error"},
        {{"--cell", "TOP", "l.gds", "p.txt"}, 1, "'--cell' needs --layers or --starter"},
        {{"--cells", "--cell", "TOP", "l.gds"}, 1, "'--cell' needs --layers or --starter"},
        {{"--layers", "--cell", "", "l.gds"}, 1, "the name of the cell is empty"},
        {{"--starter", "l.gds", ""}, 1, "the name of the cell is empty"},
        {{"--starter", "--cell", "TOP", "l.gds", "TOP"}, 1, "the cell is given twice"},
        {{"--starter", "l.gds", "TOP", "x"}, 1, "too many files: 'x'"},
        {{"--starter", "--layers", "l.gds"}, 1, "--layers and --starter exclude each other"},
        {{"--layers"}, 1, "no layout given"},
    };
    for (const Case &c : cases) {
        const ProgramResult result = fixture.run(c.words);
        EXPECT_EQ(result.status, c.status) << testing::PrintToString(c.words);
        EXPECT_NE(result.error.find(c.error), std::string::npos)
            << testing::PrintToString(c.words) << result.error;
        EXPECT_EQ(result.output, "") << "standard output is for the answer: "
                                     << testing::PrintToString(c.words);
    }
    ProgramCall full = fixture.call({"--layers", "l.gds"});
    full.output_path = "/dev/full";
    EXPECT_EQ(fixture.run_call(full).status, 4);
}

// The starter's file for a cell, after a run of it that says nothing on standard error.
static std::string starter_that_runs(const BatchFixture &fixture, Arguments words, const std::string &layout,
                                     const char *how = "--check") {
    words.insert(words.begin(), "--starter");
    const ProgramResult made = fixture.run(words);
    EXPECT_EQ(made.status, 0) << made.error;
    EXPECT_EQ(made.error, "");
    fixture.write("starter.txt", made.output);
    const ProgramResult result = fixture.run({how, layout, "starter.txt"});
    EXPECT_EQ(result.status, 0) << result.output << result.error;
    EXPECT_EQ(result.error, "") << made.output;
    return made.output;
}

TEST(QuarnBatchStarter, RunsAsItIs) {
    const BatchFixture fixture;
    fixture.write("l.gds", cells_bytes());
    const std::string text = starter_that_runs(fixture, {"l.gds"}, "l.gds", "--no-images");
    // TOP's polygons lie between (-0.5, -0.5) and (9, 4): 9.5 wide, and 4 x 4.5 high is more. The depth is
    // 0.4 of the width, 3.8, and the middle is (4.25, 1.75).
    EXPECT_NE(text.find("\nlocation -x -0.5 -y -0.15 -dx 9.5 -dy 3.8\n"), std::string::npos) << text;
    EXPECT_NE(text.find("\ngds -cell TOP\n"), std::string::npos);
    EXPECT_NE(text.find("# Other cells that no cell refers to:\n#   EMPTY\n"), std::string::npos) << text;
    EXPECT_NE(text.find("\n# Layer 66, datatype 44: 4 polygons from (0.25, 0.25) to (5.75, 3.75)\n"
                        "deposition -name L66_44 "),
              std::string::npos)
        << text;
    for (const char *pair :
         {"-mask_id 66 -datatype 20 ", "-mask_id 66 -datatype 44 ", "-mask_id 68 -datatype 5 "}) {
        EXPECT_EQ(count_of(text, pair), 1) << pair;
    }
    for (const char *command : {"\ndeposition ", "\nphoto ", "\netch ", "\nstrip\n"}) {
        EXPECT_EQ(count_of(text, command), 3) << command;
    }
    EXPECT_EQ(starter_that_runs(fixture, {"l.gds", "TOP"}, "l.gds"), text);
    EXPECT_EQ(starter_that_runs(fixture, {"--cell=TOP", "l.gds"}, "l.gds"), text);
    EXPECT_EQ(count_of(starter_that_runs(fixture, {"l.gds", "PART"}, "l.gds"), "\nphoto "), 2);
}

// The films of the starter lie where the polygons are and nowhere else: at -dx 9.5 and N = 400 column 40 is
// x = 0.45, in poly and contact of the first PART, and column 240 is x = 5.2, in those of the second one at
// its left edge; column 180, x = 3.775, meets neither. The front row, y = -0.15, meets the metal only, row
// 100 is y = 2.225, above the lower contacts.
TEST(QuarnBatchStarter, ItsFilmsLieWhereThePolygonsAre) {
    const BatchFixture fixture;
    fixture.write("l.gds", cells_bytes());
    const std::string text = starter_that_runs(fixture, {"l.gds"}, "l.gds");
    fixture.write("dump.txt", text + "dump\n");
    ASSERT_EQ(fixture.run({"--no-images", "l.gds", "dump.txt"}).status, 0);
    const std::string dump = fixture.read("VertexData.txt");
    auto layers_at = [&dump](i32 m, i32 n) {
        const std::string begin = "M: " + std::to_string(m) + "\tN: " + std::to_string(n) + "\tL: ";
        std::string layers;
        for (size_t at = 0; (at = dump.find(begin, at)) != std::string::npos; at += begin.size()) {
            const size_t thickness = dump.find("THI: ", at);
            layers +=
                std::stod(dump.substr(thickness + 5, 14)) > 0.01 ? dump.substr(at + begin.size(), 1) : "";
        }
        return layers;
    };
    // Slots: 0 substrate, 1 metal (a large polygon, so the first film), 3 poly, 5 contact.
    EXPECT_EQ(layers_at(0, 40), "01");
    EXPECT_EQ(layers_at(100, 40), "03");
    EXPECT_EQ(layers_at(100, 180), "0");
    EXPECT_EQ(layers_at(25, 40), "0135") << "y = 0.44";
}

TEST(QuarnBatchStarter, OddCells) {
    struct Case {
        const char *name;
        std::vector<Box> boxes;
        i32 photos;
    };
    const Case cases[] = {
        {"a#b", {{0, 0, 100, 100}}, 1},
        {"100%s%n", {{0, 0, 100, 100}}, 1},
        {"$$$X_-cell", {{0, 0, 100, 100}}, 1},
        {"TINY", {{5, 5, 13, 13}}, 1},
        {"DOT", {{5, 5, 6, 6}}, 0},  // the section's corners are cut to whole units
        {"LINE", {{0, 0, 1000000, 1}}, 1},
        {"COLUMN", {{0, 0, 1, 1000000}}, 1},
        {"HUGE", {{-1000000000, -1000000000, 1000000000, 1000000000}}, 1},
        {"VAST", {{-2000000000, -2000000000, 2000000000, 2000000000}}, 0},  // distances pass 32 bits
        {"FAR", {{2000000, 2000000, 2001000, 2001000}}, 1},
        {"CORNERS", {{0, 0, 10, 10}, {999990, 999990, 1000000, 1000000}}, 0},
        {"FLAT", {{0, 0, 1000, 0}}, 0},
    };
    for (const Case &c : cases) {
        const BatchFixture fixture;
        GdsBytes stream;
        stream.head().begin(c.name);
        for (const Box &box : c.boxes) {
            add_box(&stream, 7, 1, box);
        }
        fixture.write("l.gds", stream.end().close().bytes);
        const bool hint = std::string(c.name) == "FLAT";  // no section lies in a cell without an area
        const ProgramResult made = fixture.run({"--starter", "l.gds"});
        EXPECT_EQ(made.status, 0) << c.name << made.error;
        fixture.write("p.txt", made.output);
        const ProgramResult run = fixture.run({"--check", "l.gds", "p.txt"});
        EXPECT_EQ(run.status, 0) << c.name << run.output << run.error << made.output;
        EXPECT_EQ(run.error.empty(), !hint) << c.name << run.error << made.output;
        EXPECT_EQ(count_of(made.output, "\nphoto "), c.photos) << c.name << made.output;
        EXPECT_EQ(count_of(made.output, "photo -name L7_1 "), 1) << c.name;
    }
}

TEST(QuarnBatchStarter, NamesThatAProcessFileCannotWrite) {
    for (const char *name : {"TWO WORDS", "TAB\tBED", "-DASH"}) {
        const BatchFixture fixture;
        GdsBytes stream;
        stream.head().begin(name);
        add_box(&stream, 7, 1, {0, 0, 100, 100});
        const std::string one = GdsBytes(stream).end().close().bytes;
        fixture.write("one.gds", one);
        const ProgramResult refused = fixture.run({"--starter", "one.gds"});
        EXPECT_EQ(refused.status, 3) << name;
        EXPECT_NE(refused.error.find("no cell whose name a process file can write"), std::string::npos);
        const ProgramResult named = fixture.run({"--starter", "--cell", name, "one.gds"});
        EXPECT_EQ(named.status, 3) << name;
        EXPECT_NE(named.error.find("a process file cannot name the cell"), std::string::npos) << named.error;
        EXPECT_EQ(named.output + refused.output, "");
        // Another top cell is taken, though it has less in it.
        stream.end().begin("PLAIN").end().close();
        fixture.write("two.gds", stream.bytes);
        EXPECT_NE(fixture.run({"--starter", "two.gds"}).output.find("\ngds -cell PLAIN\n"),
                  std::string::npos);
    }
}

TEST(QuarnBatchStarter, CellsThatReferToEachOther) {
    GdsBytes stream;
    stream.head().begin("A");
    add_box(&stream, 1, 0, {0, 0, 1000, 1000});
    stream.sref("B", {1000, 0}).end().begin("B");
    add_box(&stream, 2, 0, {0, 0, 1000, 1000});
    stream.sref("A", {1000, 0}).end().close();
    const BatchFixture fixture;
    fixture.write("l.gds", stream.bytes);
    EXPECT_EQ(count_of(starter_that_runs(fixture, {"l.gds"}, "l.gds"), "\nphoto "), 2);
    EXPECT_EQ(starter_that_runs(fixture, {"l.gds", "A"}, "l.gds"),
              fixture.run({"--starter", "l.gds"}).output);
    // B was sized when A was under way, and so without what A adds to it, which begins where B's extent ends.
    const std::string text = starter_that_runs(fixture, {"l.gds", "B"}, "l.gds");
    EXPECT_NE(text.find(" -dx 1 "), std::string::npos) << text;
    EXPECT_EQ(count_of(text, "\nphoto -name L2_0 "), 1) << text;
    EXPECT_EQ(count_of(text, "photo -name "), 2) << text;
}

// A cell without polygons is no reason to fail. What it lacks is told at once, and again when the file runs.
TEST(QuarnBatchStarter, ACellWithoutPolygons) {
    const BatchFixture fixture;
    fixture.write("l.gds", cells_bytes());
    const std::string told = "cell \"EMPTY\" has no polygons, of which masks could be made\n";
    const ProgramResult made = fixture.run({"--starter", "l.gds", "EMPTY"});
    EXPECT_EQ(made.status, 0);
    EXPECT_EQ(made.error, "quarn-batch: " + told);
    EXPECT_NE(made.output.find("\n# The cell has no polygons, so there are no masks"), std::string::npos);
    EXPECT_EQ(made.output.find("polygons."), std::string::npos) << "no word of those it lacks" << made.output;
    EXPECT_EQ(count_of(made.output, "\ndeposition "), 1);
    fixture.write("p.txt", made.output);
    const ProgramResult run = fixture.run({"--no-images", "l.gds", "p.txt"});
    EXPECT_EQ(run.status, 0);
    const size_t line =
        static_cast<size_t>(count_of(made.output.substr(0, made.output.find("gds -cell")), "\n"));
    EXPECT_EQ(run.error, "quarn-batch: p.txt:" + std::to_string(line + 1) + ": " + told);
    fixture.write("none.gds", GdsBytes().head().close().bytes);
    EXPECT_EQ(fixture.run({"--starter", "none.gds"}).status,
              fixture.run({"--cells", "none.gds"}).status == 0 ? 3 : 2);
}

TEST(QuarnBatchStarter, AThousandPairs) {
    const BatchFixture fixture;
    GdsBytes stream;
    stream.head().begin("MANY");
    for (u16 i = 0; i < 1000; ++i) {
        const i32 x = i % 40 * 1000;
        const i32 y = i / 40 * 1000;
        add_box(&stream, static_cast<u16>(i / 10), static_cast<u16>(i % 10 * 6553), {x, y, x + 500, y + 500});
    }
    fixture.write("l.gds", stream.end().close().bytes);
    const std::string text = starter_that_runs(fixture, {"l.gds"}, "l.gds");
    EXPECT_EQ(count_of(text, "photo -name "), 1000);
    EXPECT_GE(count_of(text, "\nphoto -name "), 600) << "40 x 25 um, of which the depth shows 16";
    EXPECT_EQ(text.find("-legend"), std::string::npos) << "a legend of a thousand rows fits no picture";
}

// Poly covers the cut from x = 0 to 10, its contact cut, of the same layer, from 0 to 5.
static std::string poly_and_contact(u16 contact) {
    GdsBytes stream;
    stream.head().begin("TOP");
    add_box(&stream, 66, 20, {0, 0, 10000, 10000});
    add_box(&stream, 66, contact, {0, 0, 5000, 10000});
    return stream.end().close().bytes;
}

// Heights in the front row: the substrate is 5 % of 10 um, the film 0.1 um, and N = 200, so that column 40 is
// x = 2 and column 160 is x = 8.
TEST(QuarnBatchDatatype, OnlyItsPolygonsAreTheMask) {
    struct Case {
        const char *argument;
        const char *left, *right;
    };
    const Case cases[] = {
        {"-datatype 44 ", "0.5000000000", "0.6000000238"},
        {"-datatype 20 ", "0.5000000000", "0.5000000000"},
        {"", "0.5000000000", "0.5000000000"},
    };
    for (const Case &c : cases) {
        const BatchFixture fixture;
        fixture.write("l.gds", poly_and_contact(44));
        fixture.write("p.txt",
                      process_text(deposition_line("OX") + "photo -name C -mask_id 66 " + c.argument +
                                   "-type 0 -res 0 -thickness 300\netch -targets t_OX -depth 150\n"
                                   "strip\ndump\n"));
        const ProgramResult run = fixture.run({"--no-images", "l.gds", "p.txt"});
        ASSERT_EQ(run.status, 0) << run.output;
        EXPECT_EQ(run.error, "");
        const std::string dump = fixture.read("VertexData.txt");
        auto height = [&dump](i32 n) {
            const size_t point = dump.find("M: 0\tN: " + std::to_string(n) + "\t");
            const size_t at = dump.rfind("HEIGHT: ", point) + 8;
            return dump.substr(at, dump.find('\n', at) - at);
        };
        EXPECT_EQ(height(40), c.left) << c.argument;
        EXPECT_EQ(height(160), c.right) << c.argument;
    }
}

// Nothing but the mask of such a photo is another: console text, heights and polygons of a layout whose
// datatypes differ are those of one without datatypes.
TEST(QuarnBatchDatatype, WithoutTheArgumentDatatypesAreNotLookedAt) {
    const BatchFixture fixture;
    fixture.write("p.txt",
                  process_text(deposition_line("OX") + "photo -name C -mask_id 66 -type 0 -res 0 -thickness "
                                                       "300\netch -targets t_OX -depth 50\ndump\n"));
    std::string texts[2];
    for (const u16 contact : {u16{20}, u16{44}}) {
        fixture.write("l.gds", poly_and_contact(contact));
        const ProgramResult run = fixture.run({"--no-images", "-o", "out", "l.gds", "p.txt"});
        ASSERT_EQ(run.status, 0) << run.output;
        texts[contact == 44 ? 1 : 0] = mask_seconds(run.output) + run.error + fixture.read("VertexData.txt") +
                                       fixture.read("out/Polygon.gds");
    }
    EXPECT_TRUE(texts[0] == texts[1]) << "they differ";
}

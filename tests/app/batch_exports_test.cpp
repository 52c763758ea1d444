// quarn-batch with --profile, --mesh and --report: which files lie where, and what becomes of those that
// fail.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <thread>

#include "tests/app/batch_fixture.h"

using Names = std::vector<std::string>;

static bool contains(const std::string &text, const std::string &part) {
    return text.find(part) != std::string::npos;
}

// An eighth of a micrometre, so that heights are round figures.
static std::string film_line(const std::string &name) {
    return "deposition -name " + name + " -type t_" + name + " -thickness 125 -sc 0 -color 200 100 50 100\n";
}

static const std::string TWO_FILMS = film_line("A") + film_line("B");

static const Names TABLES = {"000 The substrate.csv", "001 Cross section after A deposition.csv",
                             "002 Cross section after B deposition.csv", "Polygon.gds", "thickness.csv"};

static std::vector<std::string> lines_of(const std::string &text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

TEST(QuarnBatchExports, AreNamedAsThePicturesAndNeedNoGraphics) {
    const BatchFixture fixture;
    fixture.write("p.txt", process_text(TWO_FILMS));
    ProgramCall call = fixture.call({"--no-images", "--profile", "csv", "-o", "out", "a.gds", "p.txt"});
    call.environment.emplace_back("EGL_PLATFORM=nonsense");
    const ProgramResult result = fixture.run_call(call);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.error, "");
    EXPECT_TRUE(contains(result.output, "Saved 4 exported files to folder \"out\"\n")) << result.output;
    EXPECT_EQ(fixture.list("out"), TABLES);
    // 10 um in 200 columns; the substrate is a twentieth of the width high, and two films of 125 nm.
    const auto lines = lines_of(fixture.read("out/" + TABLES[2]));
    ASSERT_EQ(lines.size(), 201U);
    EXPECT_EQ(lines[0],
              "x_um,SUBSTRATE bottom_nm,SUBSTRATE top_nm,A bottom_nm,A top_nm,B bottom_nm,B top_nm");
    EXPECT_EQ(lines[1], "0,0,500,500,625,625,750");
    EXPECT_EQ(lines[200], "9.95,0,500,500,625,625,750");
    const auto rows = lines_of(fixture.read("out/thickness.csv"));
    ASSERT_EQ(rows.size(), 1U + 1U + 2U + 3U) << "a row a step and film";
    EXPECT_EQ(rows[1].find("0,substrate,0,SUBSTRATE,500,500,500,500,1,4.975,"), 0U) << rows[1];
    EXPECT_EQ(rows[6].find("2,B deposition,2,B,125,125,125,125,1,1.24375,"), 0U) << rows[6];
}

TEST(QuarnBatchExports, WithoutTheOptionsNothingIsWritten) {
    const BatchFixture fixture;
    fixture.write("p.txt", process_text(TWO_FILMS));
    const ProgramResult result = fixture.run({"--no-images", "-o", "out", "a.gds", "p.txt"});
    EXPECT_EQ(result.status, 0);
    EXPECT_FALSE(contains(result.output, "export"));
    EXPECT_EQ(fixture.list("out"), Names({"Polygon.gds"}));
}

TEST(QuarnBatchExports, AreTheSameBesidePictures) {
    NEEDS_GRAPHICS();
    const BatchFixture fixture;
    fixture.write("p.txt", process_text(TWO_FILMS + "etch -targets t_B -depth 500\n"));
    EXPECT_EQ(fixture.run({"--profile=csv", "-o", "with", "a.gds", "p.txt"}).status, 0);
    EXPECT_EQ(fixture.run({"--profile=csv", "--no-images", "-o", "without", "a.gds", "p.txt"}).status, 0);
    EXPECT_EQ(fixture.list("with").size(), 4U + 4U + 2U) << "pictures, tables, thicknesses, polygons";
    for (const std::string &name : fixture.list("without")) {
        EXPECT_TRUE(fixture.read("with/" + name) == fixture.read("without/" + name)) << name;
    }
}

TEST(QuarnBatchExports, AreTheFiguresOfTheDump) {
    const BatchFixture fixture;
    fixture.write("p.txt",
                  process_text(TWO_FILMS + "photo -name P -mask_id 1 -type 0 -res 0.3 -thickness 300\n"
                                           "etch -targets t_B -depth 150 -iso 0.5\nstrip\ndump\n"));
    const ProgramResult result = fixture.run({"--no-images", "--profile", "csv", "--steps", "last", "-o",
                                              "out", "--dump", "out", "a.gds", "p.txt"});
    ASSERT_EQ(result.status, 0) << result.output;
    const Names names = fixture.list("out");
    ASSERT_EQ(names.size(), 4U);
    const auto table = lines_of(fixture.read("out/" + names[0]));
    ASSERT_EQ(table.size(), 201U);
    i32 compared = 0;
    for (const std::string &line : lines_of(fixture.read("out/VertexData.txt"))) {
        i32 n = 0;
        i32 slot = 0;
        char bottom[32] = "";
        char top[32] = "";
        if (std::sscanf(line.c_str(), "M: 0\tN: %d\tL: %d\tBOT: %31s\tTOP: %31s", &n, &slot, bottom, top) !=
            4) {
            continue;
        }
        std::istringstream row(table[static_cast<size_t>(n) + 1]);
        std::string field;
        for (i32 i = 0; i <= 2 * slot; ++i) {
            std::getline(row, field, ',');
        }
        for (const char *dumped : {bottom, top}) {
            std::getline(row, field, ',');
            char text[64];
            std::snprintf(text, sizeof(text), "%.6f",
                          static_cast<f64>(static_cast<f32>(std::strtod(field.c_str(), nullptr) / 1000.0)));
            EXPECT_STREQ(text, dumped) << "column " << n << ", layer " << slot;
            ++compared;
        }
    }
    EXPECT_EQ(compared, 10 * 3 * 2) << "every 20th column of three films";
}

TEST(QuarnBatchExports, AreThoseOfTheStepsAskedFor) {
    const BatchFixture fixture;
    fixture.write("p.txt", process_text(TWO_FILMS));
    EXPECT_EQ(fixture.run({"--no-images", "--profile", "csv", "--steps", "1", "-o", "out", "a.gds", "p.txt"})
                  .status,
              0);
    EXPECT_EQ(fixture.list("out"), Names({TABLES[1], "Polygon.gds", "thickness.csv"}));
    EXPECT_EQ(lines_of(fixture.read("out/thickness.csv")).size(), 3U);
}

TEST(QuarnBatchExports, OneThatFailsLosesNothingElse) {
    const BatchFixture fixture;
    fixture.write("p.txt", process_text(TWO_FILMS));
    std::filesystem::create_directories(fixture.path("out/" + TABLES[1]));
    std::filesystem::create_directories(fixture.path("out/thickness.csv"));
    const ProgramResult result =
        fixture.run({"--no-images", "--profile", "csv", "-o", "out", "a.gds", "p.txt"});
    EXPECT_EQ(result.status, 4);
    EXPECT_EQ(result.error, "quarn-batch: out/" + TABLES[1] +
                                ": Is a directory\n"
                                "quarn-batch: out/thickness.csv: Is a directory\n"
                                "quarn-batch: out: 1 other .csv file of an earlier run lies there\n");
    EXPECT_TRUE(contains(result.output, "Saved 2 exported files to folder \"out\"\n")) << result.output;
    EXPECT_EQ(lines_of(fixture.read("out/" + TABLES[0])).size(), 201U);
    EXPECT_EQ(lines_of(fixture.read("out/" + TABLES[2])).size(), 201U);
    EXPECT_EQ(fixture.list("out"), TABLES);
}

TEST(QuarnBatchExports, ADiskThatIsFullIsTold) {
    const BatchFixture fixture;
    fixture.write("p.txt", process_text(TWO_FILMS));
    ProgramCall call = fixture.call({"--no-images", "--profile", "csv", "-o", "out", "a.gds", "p.txt"});
    call.file_size_limit = 1000;  // enough for the polygons and the table of thicknesses
    const ProgramResult result = fixture.run_call(call);
    EXPECT_EQ(result.status, 4);
    EXPECT_TRUE(contains(result.error, TABLES[0] + ": File too large\n")) << result.error;
    EXPECT_EQ(fixture.list("out"), Names({"Polygon.gds", "thickness.csv"}));
}

TEST(QuarnBatchExports, TakeThePlaceOfThoseOfAnEarlierRun) {
    const BatchFixture fixture;
    fixture.write("p.txt", process_text(TWO_FILMS));
    std::filesystem::create_directories(fixture.path("out"));
    fixture.write("out/001 Cross section after OLD deposition.csv", "old");
    fixture.write("out/007 Cross section after OLD deposition.csv", "old");
    fixture.write("out/001 Cross section after OLD deposition.bmp", "old");
    fixture.write("out/001 notes.csv", "mine");
    const ProgramResult result =
        fixture.run({"--no-images", "--profile", "csv", "-o", "out", "a.gds", "p.txt"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.error, "quarn-batch: out: 1 other .csv file of an earlier run lies there\n");
    Names expected = TABLES;
    expected.insert(expected.end(), {"001 Cross section after OLD deposition.bmp", "001 notes.csv",
                                     "007 Cross section after OLD deposition.csv"});
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(fixture.list("out"), expected);
}

TEST(QuarnBatchExports, GoIntoTheFolderOfEachCut) {
    const BatchFixture fixture;
    fixture.write("p.txt", process_text(TWO_FILMS));
    for (const char *jobs : {"1", "2"}) {
        const ProgramResult result =
            fixture.run({"--no-images", "--profile", "csv", "--jobs", jobs, "--cut", "west=0,0,10,2.5",
                         "--cut", "east=4,0,5,2.5", "-o", jobs, "a.gds", "p.txt"});
        EXPECT_EQ(result.status, 0) << result.error;
        Names expected = TABLES;
        expected.emplace_back("console.txt");
        std::sort(expected.begin(), expected.end());
        for (const char *cut : {"/west", "/east"}) {
            EXPECT_EQ(fixture.list(std::string(jobs) + cut), expected) << cut;
        }
        const auto lines = lines_of(fixture.read(std::string(jobs) + "/east/" + TABLES[1]));
        ASSERT_EQ(lines.size(), 201U);
        EXPECT_EQ(lines[2].substr(0, 6), "0.025,") << "5 um in 200 columns";
    }
}

TEST(QuarnBatchExports, ACutWhoseFilesFailIsTold) {
    const BatchFixture fixture;
    fixture.write("p.txt", process_text(TWO_FILMS));
    std::filesystem::create_directories(fixture.path("out/b/thickness.csv"));
    const ProgramResult result =
        fixture.run({"--no-images", "--profile", "csv", "--jobs", "1", "--cut", "a=0,0,10,2.5", "--cut",
                     "b=4,0,5,2.5", "-o", "out", "a.gds", "p.txt"});
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(result.error, "quarn-batch: b: out/b/thickness.csv: Is a directory\n");
    EXPECT_TRUE(contains(result.output, "b  failed: out/b/thickness.csv: Is a directory")) << result.output;
    EXPECT_TRUE(fixture.exists("out/a/thickness.csv"));
}

TEST(QuarnBatchExports, EachFormatHasAFileAStep) {
    const BatchFixture fixture;
    fixture.write("p.txt", process_text(TWO_FILMS));
    const ProgramResult result =
        fixture.run({"--no-images", "--profile", "svg,pdf", "--profile=gds", "--mesh", "glb,stl", "--report",
                     "out/page.html", "--title", "A run", "--z-scale", "2", "-o", "out", "a.gds", "p.txt"});
    EXPECT_EQ(result.status, 0) << result.error;
    EXPECT_EQ(result.error, "");
    EXPECT_TRUE(contains(result.output,
                         "Saved 16 exported files to folder \"out\"\nSaved the page "
                         "\"out/page.html\"\n"))
        << result.output;
    Names expected = {"Polygon.gds", "layers.csv", "page.html"};
    for (const char *extension : {".svg", ".pdf", ".gds", ".glb", ".stl"}) {
        for (i32 step = 0; step < 3; ++step) {
            std::string name = TABLES[static_cast<size_t>(step)];
            expected.push_back(name.replace(name.size() - 4, 4, extension));
        }
    }
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(fixture.list("out"), expected);
    for (const std::string &name : expected) {
        EXPECT_GT(fixture.read("out/" + name).size(), 40U) << name;
    }
}

TEST(QuarnBatchExports, APageHasTheStepsAskedForAndTheProcessFile) {
    const BatchFixture fixture;
    const std::string process = process_text(TWO_FILMS) + "stop\n# what follows the end\n";
    fixture.write("p.txt", process);
    ASSERT_EQ(mkfifo(fixture.path("pipe.txt").c_str(), 0600), 0);
    for (const char *path : {"p.txt", "pipe.txt"}) {
        std::thread writer([&] {
            if (std::string(path) == "pipe.txt") {
                fixture.write("pipe.txt", process);
            }
        });
        const ProgramResult result =
            fixture.run({"--no-images", "--report", "page.html", "--steps", "2", "-o", "out", "a.gds", path});
        writer.join();
        ASSERT_EQ(result.status, 0) << result.error;
        const std::string page = fixture.read("page.html");
        EXPECT_TRUE(contains(page, "deposition -name B -type t_B -thickness 125")) << path;
        EXPECT_FALSE(contains(page, "Cross section after A deposition")) << path;
        EXPECT_EQ(contains(page, "# what follows the end"), std::string(path) == "p.txt") << path;
    }
}

TEST(QuarnBatchExports, EachCutHasItsPage) {
    const BatchFixture fixture;
    fixture.write("p.txt", process_text(TWO_FILMS));
    for (const char *jobs : {"1", "2"}) {
        const ProgramResult result =
            fixture.run({"--no-images", "--report", "page.html", "--jobs", jobs, "--cut", "west=0,0,10,2.5",
                         "--cut", "east=4,0,5,2.5", "-o", jobs, "a.gds", "p.txt"});
        EXPECT_EQ(result.status, 0) << result.error;
        for (const char *cut : {"west", "east"}) {
            const std::string page = fixture.read(std::string(jobs) + "/" + cut + "/page.html");
            EXPECT_TRUE(contains(page, std::string("\"") + cut + "\"")) << "the name of its cut";
        }
    }
    const ProgramResult single = fixture.run(
        {"--no-images", "--report", "page.html", "--cut", "only=0,0,10,2.5", "-o", "out", "a.gds", "p.txt"});
    EXPECT_EQ(single.status, 0) << single.error;
    EXPECT_EQ(fixture.list("out/only"), Names({"Polygon.gds", "page.html"}));
}

TEST(QuarnBatchExports, APageIsTriedBeforeAnythingIsRead) {
    const BatchFixture fixture;
    fixture.write("p.txt", process_text(TWO_FILMS));
    const struct {
        std::string path, reason;
    } cases[] = {{"missing/page.html", "No such file or directory"}, {".", "Is a directory"}};
    for (const auto &c : cases) {
        const ProgramResult result =
            fixture.run({"--no-images", "--report", c.path, "-o", "out", "nothing.gds", "p.txt"});
        EXPECT_EQ(result.status, 4) << c.path;
        EXPECT_EQ(result.output, "");
        EXPECT_EQ(result.error,
                  "quarn-batch: " + c.path + ": the page cannot be written: " + c.reason + "\n");
        EXPECT_FALSE(fixture.exists("out")) << "what was made for it is gone again";
    }
}

TEST(QuarnBatchExports, AnInterruptLeavesWhatIsFinished) {
    const BatchFixture fixture;
    std::string steps;
    for (i32 i = 0; i < 60; ++i) {
        steps += deposition_line("M" + std::to_string(i));
    }
    std::string process = process_text(steps);
    process.replace(process.find("-N 200"), 6, "-N 2000");
    fixture.write("p.txt", process);
    ProgramRun run =
        program_start(fixture.call({"--no-images", "--profile", "csv", "-o", "out", "a.gds", "p.txt"}),
                      test_utf8(fixture.scratch.path));
    ASSERT_TRUE(program_wait_for(&run, "Executing M1 deposition")) << run.output;
    program_signal(run, SIGINT);
    const ProgramResult result = program_finish(&run);
    EXPECT_EQ(result.status, 130) << result.error;
    EXPECT_TRUE(fixture.exists("out/001 Cross section after M0 deposition.csv"));
    EXPECT_FALSE(fixture.exists("out/060 Cross section after M59 deposition.csv"));
    const auto tables = fixture.list("out").size() - 2;  // beside the thicknesses and the polygons
    size_t rows = 1;
    for (size_t step = 0; step < tables; ++step) {
        rows += step + 1;
    }
    EXPECT_EQ(lines_of(fixture.read("out/thickness.csv")).size(), rows);
}

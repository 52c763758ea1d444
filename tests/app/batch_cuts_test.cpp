// quarn-batch with cuts and chosen steps: the same files as single runs, whatever happens to one of them.
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>

#include "platform/platform.h"
#include "tests/app/batch_fixture.h"

// A film, a mask over the left half of the section at the origin, an etch, and the heights.
static std::string process_of_cuts(const std::string &location) {
    return "settings -version 3 -N 200 -legend\ngds -cell TOP\n" + location + deposition_line("A") +
           "photo -name P -mask_id 1 -type 0 -res 0.1 -thickness 100\netch -targets t_A -depth "
           "50\nstrip\ndump\n";
}

static std::string location_line(const std::string &x, const std::string &dx) {
    return "location -x " + x + " -y 0 -dx " + dx + " -dy 2.5\n";
}

// Every file of a folder below that of the fixture, with its bytes. The seconds and paths of "console.txt"
// are taken out.
static std::vector<std::pair<std::string, std::string>> files_of(const BatchFixture &fixture,
                                                                 const std::string &folder) {
    std::vector<std::pair<std::string, std::string>> files;
    for (const std::string &name : fixture.list(folder)) {
        if (name != "console.txt") {
            files.emplace_back(name, fixture.read(folder + "/" + name));
        }
    }
    return files;
}

// What a run prints from its first line on, without what differs from run to run.
static std::string run_part(const std::string &output, const std::string &folder) {
    const size_t start = output.find("--- Handling \"Run\"");
    std::string text = mask_seconds(start != std::string::npos ? output.substr(start) : output);
    const size_t name = text.find("folder \"" + folder + "\"");
    return name != std::string::npos ? text.replace(name, 9 + folder.size(), "folder \"X\"") : text;
}

TEST(QuarnBatchCuts, EachIsTheRunOfItsSection) {
    NEEDS_GRAPHICS();
    const BatchFixture fixture;
    fixture.write("p.txt", process_of_cuts(location_line("0", "10")));
    const ProgramResult cuts = fixture.run({"-o", "out", "--cut", "west=0,0,10,2.5", "--cut",
                                            "east=4,0,5,2.5", "--jobs", "2", "a.gds", "p.txt"});
    EXPECT_EQ(cuts.status, 0) << cuts.error;
    const struct { std::string name, x, dx; } sections[] = {{"west", "0", "10"}, {"east", "4", "5"}};
    for (const auto &section : sections) {
        std::filesystem::create_directory(fixture.path("single_" + section.name));
        fixture.write("p.txt", process_of_cuts(location_line(section.x, section.dx)));
        const std::string folder = "single_" + section.name;
        const ProgramResult single = fixture.run({"-o", folder, "--dump", folder, "a.gds", "p.txt"});
        ASSERT_EQ(single.status, 0) << single.error;
        EXPECT_EQ(fixture.list(folder).size(), 7U) << "five pictures, heights, polygons";
        EXPECT_TRUE(files_of(fixture, "out/" + section.name) == files_of(fixture, folder)) << section.name;
        EXPECT_EQ(run_part(fixture.read("out/" + section.name + "/console.txt"), "out/" + section.name),
                  run_part(single.output, folder));
    }
    EXPECT_FALSE(fixture.exists("VertexData.txt"));
}

TEST(QuarnBatchCuts, OneAloneRunsAsWithoutTheOptionIntoItsFolder) {
    const BatchFixture fixture;
    fixture.write("p.txt", process_of_cuts(""));  // the option gives the location
    const ProgramResult result =
        fixture.run({"--no-images", "-o", "out", "--cut", "west=0,0,10,2.5", "a.gds", "p.txt"});
    EXPECT_EQ(result.status, 0) << result.error;
    const std::vector<std::string> expected = {"Polygon.gds", "VertexData.txt"};
    EXPECT_EQ(fixture.list("out/west"), expected);
    EXPECT_NE(result.output.find("Executing A deposition"), std::string::npos) << "on standard output";
    EXPECT_EQ(fixture.list("out"), std::vector<std::string>{"west"});
}

TEST(QuarnBatchCuts, AFailingOneStopsNoOther) {
    const BatchFixture fixture;
    fixture.write("p.txt", process_of_cuts(location_line("0", "10")));
    fixture.write("c.csv",
                  "name,x,y,dx,dy,cell\n"
                  "zero,0,0,0,2.5,\n"         // no width
                  "coarse,0,0,0.2,0.1,\n"     // 0.1 is more than a quarter of it
                  "lost,0,0,10,2.5,NONE\n"    // no such cell
                  "far,100,100,10,2.5,TOP\n"  // beyond the cell, which is told but no fault
                  "good,0,0,10,2.5,\n");
    const ProgramResult result =
        fixture.run({"--no-images", "-o", "out", "--cuts", "c.csv", "--dump", "heights", "a.gds", "p.txt"});
    EXPECT_EQ(result.status, 3);
    EXPECT_TRUE(fixture.exists("out/good/Polygon.gds"));
    EXPECT_TRUE(fixture.exists("heights/good/VertexData.txt"));
    EXPECT_TRUE(fixture.exists("heights/far/VertexData.txt"));
    EXPECT_FALSE(fixture.exists("out/zero/Polygon.gds"));
    EXPECT_NE(fixture.read("out/zero/console.txt").find("Error in line 3: Invalid -dx argument\n"),
              std::string::npos);
    const std::string table = result.output.substr(result.output.rfind("\n\nzero"));
    EXPECT_TRUE(text_matches(
        table,
        "\n\nzero    failed: Error in line 3: Invalid -dx argument\n"
        "coarse  failed: Error: The maximum photo resolution (0.100 micron) can not exceed 25% of the cross "
        "section width\n"
        "lost    failed: ERROR: The cell name NONE specified in the process file was not found in the GDS "
        "database\n"
        "far     done; p.txt:3: the section (x 100 to 110, y 100 to 102.5 um) lies outside cell "
        "\"TOP\" *\n"
        "good    done\n"))
        << table;
    EXPECT_NE(result.error.find("quarn-batch: coarse: p.txt: 1 fault, see its console.txt\n"),
              std::string::npos)
        << result.error;
    EXPECT_NE(result.error.find("quarn-batch: far: p.txt:3: the section"), std::string::npos) << result.error;
}

TEST(QuarnBatchCuts, FaultsOfTheProcessFileAreToldOnce) {
    const BatchFixture fixture;
    fixture.write("p.txt", process_of_cuts(location_line("0", "10")) + "nonsense\n");
    const ProgramResult result = fixture.run(
        {"--no-images", "-o", "out", "--cut", "a=0,0,10,2.5", "--cut", "b=1,0,10,2.5", "a.gds", "p.txt"});
    EXPECT_EQ(result.status, 3);
    const std::string fault = "Error in line 9: Unknown command\n";
    const size_t first = result.output.find(fault);
    EXPECT_NE(first, std::string::npos) << result.output;
    EXPECT_EQ(result.output.find(fault, first + 1), std::string::npos) << result.output;
    EXPECT_FALSE(fixture.exists("out/a")) << "nothing was run";
}

TEST(QuarnBatchCuts, HintsOfTheProcessFileAreToldOnce) {
    const BatchFixture fixture;
    fixture.write("p.txt", process_of_cuts(location_line("0", "10")) +
                               "deposition -name B -type b -thickness 0.1 "
                               "-sc 0 -color 1 2 3 100\n");
    const ProgramResult result = fixture.run(
        {"--no-images", "-o", "out", "--cut", "a=0,0,10,2.5", "--cut", "b=1,0,10,2.5", "a.gds", "p.txt"});
    EXPECT_EQ(result.status, 0) << result.error;
    EXPECT_TRUE(text_matches(result.error, "quarn-batch: p.txt:9: *")) << result.error;
    EXPECT_EQ(result.error.find('\n'), result.error.size() - 1) << result.error;
}

TEST(QuarnBatchCuts, WrongListsEndBeforeAnythingIsRead) {
    const BatchFixture fixture;
    fixture.write("p.txt", process_of_cuts(location_line("0", "10")));
    fixture.write("c.csv", "name,x,y,dx,dy\na,0,0,ten,2.5\n");
    fixture.write("empty.csv", "name,x,y,dx,dy\n");
    const std::vector<std::vector<std::string>> lines = {
        {"--cut", "a=1,2", "-o", "out", "a.gds", "p.txt"},
        {"--cuts", "c.csv", "-o", "out", "a.gds", "p.txt"},
        {"--cuts", "empty.csv", "-o", "out", "a.gds", "p.txt"},
        {"--cuts", "none.csv", "-o", "out", "a.gds", "p.txt"},
        {"--cut", "a=0,0,1,1", "--cut", "A=0,0,1,1", "-o", "out", "a.gds", "p.txt"},
        {"--jobs", "0", "-o", "out", "a.gds", "p.txt"},
        {"--cells", "--cut", "a=0,0,1,1", "a.gds"},
    };
    for (const std::vector<std::string> &line : lines) {
        const ProgramResult result = fixture.run(line);
        EXPECT_EQ(result.status, 1) << line[1];
        EXPECT_EQ(result.output, "") << line[1];
        EXPECT_NE(result.error, "") << line[1];
        EXPECT_FALSE(fixture.exists("out")) << line[1];
    }
}

TEST(QuarnBatchCuts, CheckTriesEachOfThem) {
    const BatchFixture fixture;
    fixture.write("p.txt", process_of_cuts(location_line("0", "10")));
    const ProgramResult result =
        fixture.run({"--check", "--cut", "good=0,0,10,2.5", "--cut", "zero=0,0,0,2.5", "a.gds", "p.txt"});
    EXPECT_EQ(result.status, 3);
    EXPECT_NE(result.output.find("--- Cut \"good\" ---\n\nSuccessfully read"), std::string::npos)
        << result.output;
    EXPECT_NE(result.output.find("--- Cut \"zero\" ---\n\nError in line 3: Invalid -dx argument"),
              std::string::npos)
        << result.output;
}

TEST(QuarnBatchInterrupt, EndsTheRunningCutsAndStartsNoMore) {
    const BatchFixture fixture;
    std::string steps;
    for (i32 i = 0; i < 400; ++i) {
        steps += deposition_line("L" + std::to_string(i));
    }
    fixture.write("p.txt",
                  "settings -version 3 -N 1000\ngds -cell TOP\nlocation -x 0 -y 0 -dx 10 -dy 2.5\n" + steps);
    ProgramCall call = fixture.call({"--no-images", "-o", "out", "--jobs", "2", "--cut", "a=0,0,10,2.5",
                                     "--cut", "b=1,0,10,2.5", "--cut", "c=2,0,10,2.5", "a.gds", "p.txt"});
    ProgramRun run = program_start(call, test_utf8(fixture.scratch.path));
    ASSERT_TRUE(program_wait_for(&run, "finished loading"));
    // Both have begun when both have a console.
    for (i32 i = 0; i < 1000 && fixture.read("out/b/console.txt").find("Executing L3 ") == std::string::npos;
         ++i) {
        platform_semaphore_wait_for(Owned<PlatformSemaphore>(platform_semaphore_create()).get(), 10);
    }
    program_signal(run, SIGTERM);
    const ProgramResult result = program_finish(&run);
    EXPECT_EQ(result.status, 130) << result.error;
    EXPECT_TRUE(fixture.exists("out/a/Polygon.gds"));
    EXPECT_TRUE(fixture.exists("out/b/Polygon.gds"));
    EXPECT_FALSE(fixture.exists("out/c"));
    EXPECT_NE(fixture.read("out/a/console.txt").find("Handling \"Stop\" request"), std::string::npos);
    EXPECT_TRUE(text_matches(result.output, "*\na  interrupted\nb  interrupted\nc  not started\n"))
        << result.output;
}

TEST(QuarnBatchSteps, OnlyTheChosenPicturesAreSaved) {
    NEEDS_GRAPHICS();
    const BatchFixture fixture;
    fixture.write("p.txt", process_of_cuts(location_line("0", "10")));
    const ProgramResult whole = fixture.run({"-o", "whole", "--dump", "whole", "a.gds", "p.txt"});
    const ProgramResult some =
        fixture.run({"-o", "some", "--dump", "some", "--steps", "2,last,A", "a.gds", "p.txt"});
    EXPECT_EQ(some.status, 0) << some.error;
    const std::vector<std::string> expected = {
        "001 Cross section after A deposition.bmp", "002 Cross section after P photo.bmp",
        "004 Cross section after photoresist strip.bmp", "Polygon.gds", "VertexData.txt"};
    EXPECT_EQ(fixture.list("some"), expected);
    for (const std::string &name : expected) {
        EXPECT_TRUE(fixture.read("some/" + name) == fixture.read("whole/" + name)) << name;
    }
    EXPECT_EQ(run_part(some.output, "some"), run_part(whole.output, "whole"));
}

TEST(QuarnBatchSteps, AListThatNamesNoStepStartsNoRun) {
    const BatchFixture fixture;
    fixture.write("p.txt", process_of_cuts(location_line("0", "10")));
    const ProgramResult result = fixture.run({"--no-images", "-o", "out", "--steps", "9", "a.gds", "p.txt"});
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(result.error, "quarn-batch: --steps: there is no picture 9; they are 0 to 4\n");
    EXPECT_EQ(result.output.find("Running process"), std::string::npos);
}

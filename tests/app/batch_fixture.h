// batch_fixture.h: quarn-batch in a folder of its own with a small layout and process files.
#pragma once
#include "tests/app/app_inputs.h"
#include "tests/app/program_run.h"
#include "tests/support/test_support.h"

struct BatchFixture {
    TemporaryFolder folder;  // current folder of the program; "a.gds" lies there
    TemporaryFolder scratch;

    BatchFixture();

    std::string path(const std::string &name) const;
    void write(const std::string &name, const std::string &bytes) const;
    std::string read(const std::string &name) const;
    bool exists(const std::string &name) const;                         // a file or a folder
    std::vector<std::string> list(const std::string &name = "") const;  // names in a folder, sorted

    // The call with these arguments, and its result.
    ProgramCall call(const std::vector<std::string> &arguments) const;
    ProgramResult run(const std::vector<std::string> &arguments) const;
    ProgramResult run_call(const ProgramCall &call) const;
};

// Whether this machine has an OpenGL context to give.
bool graphics_available();

#define NEEDS_GRAPHICS()                                     \
    if (!graphics_available()) {                             \
        GTEST_SKIP() << "no OpenGL context on this machine"; \
    }

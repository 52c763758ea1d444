#include "tests/app/program_run.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iterator>

static constexpr u32 LONGEST_SECONDS = 120;

static void limit(__rlimit_resource resource, i64 bytes) {
    if (bytes > 0) {
        const rlimit value = {static_cast<rlim_t>(bytes), static_cast<rlim_t>(bytes)};
        setrlimit(resource, &value);
    }
}

// In the new process, up to the program itself.
[[noreturn]] static void become_program(const ProgramCall &call, char *const *argv, int output_descriptor,
                                        int error_descriptor) {
    if (chdir(call.folder.c_str()) != 0) {
        _exit(126);
    }
    if (call.close_output) {
        close(STDOUT_FILENO);
    } else {
        dup2(output_descriptor, STDOUT_FILENO);
    }
    dup2(error_descriptor, STDERR_FILENO);
    for (const std::string &variable : call.environment) {
        putenv(const_cast<char *>(variable.c_str()));
    }
    std::signal(SIGXFSZ, SIG_IGN);  // a file at its limit is then a failed write, as on a full disk
    limit(RLIMIT_FSIZE, call.file_size_limit);
    limit(RLIMIT_AS, call.memory_limit);
    alarm(LONGEST_SECONDS);
    execv(call.program.c_str(), argv);
    _exit(127);
}

ProgramRun program_start(const ProgramCall &call, const std::string &scratch) {
    ProgramRun run = {-1, -1, scratch + "/standard_error", ""};
    std::vector<char *> argv = {const_cast<char *>(call.program.c_str())};
    for (const std::string &argument : call.arguments) {
        argv.push_back(const_cast<char *>(argument.c_str()));
    }
    argv.push_back(nullptr);

    int ends[2] = {-1, -1};
    int output_descriptor = -1;
    if (call.output_path.empty()) {
        if (pipe2(ends, O_CLOEXEC) != 0) {
            return run;
        }
        run.output_pipe = ends[0];
        output_descriptor = ends[1];
    } else {
        output_descriptor = open(call.output_path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    }
    const int error_descriptor = open(run.error_path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    run.process = fork();
    if (run.process == 0) {
        become_program(call, argv.data(), output_descriptor, error_descriptor);
    }
    close(output_descriptor);
    close(error_descriptor);
    return run;
}

// False at the end of the output.
static bool read_some(ProgramRun *run) {
    char buffer[4096];
    const i64 count = run->output_pipe >= 0 ? read(run->output_pipe, buffer, sizeof buffer) : 0;
    if (count <= 0) {
        return false;
    }
    run->output.append(buffer, static_cast<size_t>(count));
    return true;
}

bool program_wait_for(ProgramRun *run, const std::string &text) {
    while (run->output.find(text) == std::string::npos) {
        if (!read_some(run)) {
            return false;
        }
    }
    return true;
}

void program_signal(const ProgramRun &run, i32 signal) {
    kill(run.process, signal);
}

ProgramResult program_finish(ProgramRun *run) {
    while (read_some(run)) {
    }
    int status = 0;
    waitpid(run->process, &status, 0);
    if (run->output_pipe >= 0) {
        close(run->output_pipe);
    }
    std::ifstream error(run->error_path, std::ios::binary);
    ProgramResult result = {};
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    result.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    result.output = run->output;
    result.error = {std::istreambuf_iterator<char>(error), std::istreambuf_iterator<char>()};
    return result;
}

ProgramResult program_run(const ProgramCall &call, const std::string &scratch) {
    ProgramRun run = program_start(call, scratch);
    return program_finish(&run);
}

#include "tests/process/process_read.h"

#include <gtest/gtest.h>

#include <sstream>

#include "platform/memory.h"
#include "process/color_table.h"
#include "tests/support/test_support.h"

ReadStack::~ReadStack() {
    memory_free(stack.cell_name);
    memory_free(stack.process_text);
    step_list_free(stack.steps);
}

ProcessRead::ProcessRead(const std::string &text) {
    const TemporaryFolder folder;
    const std::wstring path = folder.file(L"p.txt");
    test_file_write(path, text);
    const ConsoleCapture capture;
    result = process_read_file(&stack, path.c_str());
    console_wide = capture.wide();
    console = capture.narrow();
    std::istringstream lines(capture.diagnostics());
    for (std::string line; std::getline(lines, line);) {
        const size_t name = line.find("p.txt:");
        diagnostics.push_back(name != std::string::npos ? line.substr(name) : line);
    }
}

const ProcessStep &ProcessRead::step(i32 index) const {
    static const ProcessStep none = {};
    if (stack.steps == nullptr || index >= stack.steps->count) {
        ADD_FAILURE() << "there is no step " << index;
        return none;
    }
    return *stack.steps->items[index];
}

std::string faults(i32 line, const std::vector<std::string> &messages) {
    std::string text;
    for (const std::string &message : messages) {
        text += line > 0 ? "Error in line " + std::to_string(line) + ": " : "Error: ";
        text += message + "\r\n";
    }
    return text;
}

std::string text_of(const char *text) {
    return text != nullptr ? text : "(none)";
}

std::vector<std::string> names_of(const NameList &list) {
    return {list.items, list.items + list.count};
}

void load_test_colors() {
    const TemporaryFolder folder;
    const std::wstring path = folder.file(L"colors.txt");
    test_file_write(path, "beige x 245, 245, 220\nred x 255, 0, 0\ndark x 51, 102, 153\n");
    color_table_free();
    EXPECT_EQ(color_table_load_file(path.c_str()), 0);
}

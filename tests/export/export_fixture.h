// export_fixture.h: a small stack with its steps, as the writers of export/ see a step of a run.
#pragma once
#include <gtest/gtest.h>
#include "export/export_formats.h"
#include "process/process_text.h"
#include "tests/support/test_stack.h"
#include "tests/support/test_support.h"

// The substrate and a step "A deposition". The stack has no layer at first.
struct ExportFixture {
    TemporaryFolder folder;
    Owned<Stack> stack;
    ExportFacts facts = {};
    ExportStep step = {};

    ExportFixture(i32 grid_n, i32 grid_m, f32 spacing) : stack(test_stack(grid_n, grid_m, spacing)) {
        stack->steps = step_list_create();
        step_list_append(stack->steps, memory_new_zeroed<ProcessStep>());
        auto *deposition = memory_new_zeroed<ProcessStep>();
        deposition->title = process_text_copy("A deposition").release();
        step_list_append(stack->steps, deposition);
        facts.program = "Quarn";
        step.stack = stack.get();
        step.index = 1;
        step.number = 1;
        step.title = L"Cross section after A deposition";
        step.vertical_scale = 1.0F;
        step.facts = &facts;
    }

    // What export_write makes of the step.
    std::string written(ExportFormat format) const {
        const std::wstring path = folder.file(L"written");
        wchar_t reason[EXPORT_REASON_SIZE] = L"";
        EXPECT_TRUE(export_write(&step, format, path.c_str(), reason)) << test_utf8(reason);
        return test_file_read(path);
    }
};

// export_step.h: one step of a run as the writers of export/ see it.
#pragma once
#include "process/stack.h"

inline constexpr i32 EXPORT_REASON_SIZE = 160;
inline constexpr i32 EXPORT_DATE_SIZE = 32;

// What made an export, for files that have room for it. Texts are not owned.
struct ExportFacts {
    const char *program;          // its name and version
    const wchar_t *layout_path;   // null or empty where there is none
    const wchar_t *process_path;  // the same
    const char *cut_name;         // of one of several cuts; null: the section of the process file
    char date[EXPORT_DATE_SIZE];  // "2024-05-31 17:05", local time
};

// The heights of the stack are those after the step.
struct ExportStep {
    const Stack *stack;      // not owned
    i32 index;               // of the step in stack->steps; 0 is the substrate
    i32 number;              // of its picture
    const wchar_t *title;    // of its picture, in letters as people read them
    const wchar_t *heading;  // what the user wants written at the top of drawings; null: nothing
    f32 vertical_scale;      // of drawings; measured figures and solids are those of the heights as they are
    const ExportFacts *facts;  // not owned
};

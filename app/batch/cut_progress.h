// cut_progress.h: how far a call with several cuts is, on the last line of a terminal. Lines of text scroll
// above it.
#pragma once
#include "platform/base.h"

struct CutProgress {
    bool on_terminal;  // else nothing is ever shown
    bool shown;
};

// Shows "3 of 10 cuts done" on standard error, over what it showed before.
void cut_progress_show(CutProgress *progress, i32 done, i32 count);

// Takes the line away, for text that follows.
void cut_progress_clear(CutProgress *progress);

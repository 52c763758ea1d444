// cut_table.h: what has become of each cut of a call, and how it is told.
#pragma once
#include "app/batch/batch_options.h"
#include "app/batch/cut_list.h"
#include "log/text.h"

struct CutResult {
    BatchStatus status;
    bool started, finished;
    i32 pictures;
    f64 seconds;
    wchar_t *reason;  // why it failed, or a hint about it; null: nothing to say; owned
};

// Whether a result counts as a failure of the cut: an interrupt is none.
bool cut_result_failed(const CutResult *result);

// The line that tells of a cut when it has finished: "NAME: 26 pictures in 4.4 s", without a line end.
Owned<WString> cut_result_line(const Cut *cut, const CutResult *result);

// A table of all results to the console, a line a cut in the order of the list.
void cut_table_write(const CutList *cuts, const CutResult *results);

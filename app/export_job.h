// export_job.h: an export of the last run beside a window. A run keeps the heights of its last step only, so
// the worker runs the steps once more, without pictures, up to the one that is to be written, or all of them
// for a page.
#pragma once
#include "app/app_state.h"
#include "export/export_formats.h"

enum ExportOutcome {
    EXPORT_FAILED,  // for a reason
    EXPORT_STOPPED,
    EXPORT_WRITTEN,
};

struct ExportJob {
    i32 last_step;        // of the run's steps: the one to write, or the last one of a page
    bool is_page;         // all steps with a picture, as a page; else the last one alone, in a format
    ExportFormat format;  // of the one
    WString *path;        // of the file; owned
    ExportOutcome outcome;
    wchar_t reason[EXPORT_REASON_SIZE];
};

// Frees the job with its path; null is ignored.
void export_job_free(ExportJob *job);

template <>
struct Freed<ExportJob> {
    void operator()(ExportJob *job) const { export_job_free(job); }
};

// The worker's function, a PlatformThreadFunction: does the job of the state given, and tells its end with
// run_done. Between two steps it looks whether it is to stop; what is there at its path stays then.
i32 export_thread(void *state);

#include "log/progress.h"

#include <atomic>
#include <cassert>
#include <cstdarg>

#include "log/text.h"
#include "platform/thread_role.h"

static ProgressSink progress_sink = nullptr;
static std::atomic<i32> last_percent{-1};

void progress_set_sink(ProgressSink sink) {
    assert(thread_role_fits(THREAD_WINDOW));
    progress_sink = sink;
    last_percent = -1;
}

bool progress_is_seen() {
    return progress_sink != nullptr;
}

void progress_show(const wchar_t *format, ...) {
    assert(format != nullptr);
    if (progress_sink == nullptr) {
        return;
    }
    va_list arguments;
    va_start(arguments, format);
    const WideText line = text_format_wide(format, arguments);
    va_end(arguments);
    last_percent = -1;
    progress_sink(line.get());
}

void progress_show_share(const wchar_t *what, i64 done, i64 total) {
    assert(what != nullptr && done >= 0);
    if (progress_sink == nullptr || total <= 0) {
        return;
    }
    const i32 percent =
        done < total ? static_cast<i32>(static_cast<f64>(done) / static_cast<f64>(total) * 100.0) : 100;
    if (percent != last_percent) {
        progress_show(L"%ls: %d %%", what, percent);
        last_percent = percent;
    }
}

void progress_clear() {
    if (progress_sink != nullptr) {
        progress_sink(nullptr);
    }
}

#include "app/batch/cut_table.h"

#include <algorithm>
#include <cassert>
#include <cwchar>

#include "log/log.h"
#include "log/shown_text.h"
#include "log/text.h"

static constexpr size_t WIDEST_NAME = 40;  // characters of the first column

bool cut_result_failed(const CutResult *result) {
    return result->finished && result->status != BATCH_DONE && result->status != BATCH_INTERRUPTED;
}

// Why a cut ended as it did where no better reason was heard.
static const wchar_t *reason_of(BatchStatus status) {
    switch (status) {
        case BATCH_PROCESS_FAILED: return L"the process cannot run on it";
        case BATCH_WRITE_FAILED: return L"something could not be written";
        case BATCH_NO_GRAPHICS: return L"no graphics";
        case BATCH_NO_MEMORY: return L"no memory for a picture";
        default: return L"it could not be done";
    }
}

// "26 pictures", "failed: ..." and so on.
//   seconds   how long it took, " in 4.4 s"; may be empty
static Owned<WString> outcome(const CutResult *result, const wchar_t *seconds) {
    const wchar_t *reason = result->reason;
    if (!result->finished) {
        return Owned<WString>(wstring_copy(result->started ? L"interrupted" : L"not started"));
    }
    if (cut_result_failed(result)) {
        return Owned<WString>(
            wstring_make(L"failed: %ls", reason != nullptr ? reason : reason_of(result->status)));
    }
    const bool interrupted = result->status == BATCH_INTERRUPTED;
    if (result->pictures == 0) {  // a run without pictures
        return Owned<WString>(wstring_make(L"%ls%ls%ls%ls", interrupted ? L"interrupted" : L"done", seconds,
                                           reason != nullptr ? L"; " : L"",
                                           reason != nullptr ? reason : L""));
    }
    wchar_t made[32];
    std::swprintf(made, sizeof(made) / sizeof(made[0]), L"%d picture%ls", result->pictures,
                  result->pictures == 1 ? L"" : L"s");
    return Owned<WString>(wstring_make(L"%ls%ls%ls%ls%ls", made, seconds,
                                       interrupted ? L", interrupted" : L"", reason != nullptr ? L"; " : L"",
                                       reason != nullptr ? reason : L""));
}

Owned<WString> cut_result_line(const Cut *cut, const CutResult *result) {
    assert(cut != nullptr && result != nullptr);
    wchar_t seconds[32];
    std::swprintf(seconds, sizeof(seconds) / sizeof(seconds[0]), L" in %.1f s", result->seconds);
    const Owned<WString> text = outcome(result, seconds);
    return Owned<WString>(wstring_make(L"%ls: %ls", shown_text(cut->name).text, wstring_text(text.get())));
}

void cut_table_write(const CutList *cuts, const CutResult *results) {
    assert(cuts != nullptr && results != nullptr);
    size_t width = 0;
    for (i32 i = 0; i < cuts->count; ++i) {
        width = std::max(width, std::wcslen(shown_text(cuts->items[i].name).text));
    }
    width = std::min(width, WIDEST_NAME);
    console_append(L"\r\n");
    for (i32 i = 0; i < cuts->count; ++i) {
        const ShownText name = shown_text(cuts->items[i].name);
        const size_t length = std::wcslen(name.text);
        const i32 blanks = length < width ? static_cast<i32>(width - length) : 0;
        const Owned<WString> text = outcome(&results[i], L"");
        console_printf_w(L"%ls%*ls  %ls\r\n", name.text, blanks, L"", wstring_text(text.get()));
    }
}

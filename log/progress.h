// progress.h: what a long piece of work is at, for people who wait in front of a terminal. Each text takes
// the place of the one before, and none of them stays. Any thread.
#pragma once
#include "platform/base.h"

// Receives the line; null takes it away.
using ProgressSink = void (*)(const wchar_t *line);

// Where it is shown; null (the start): nowhere, and the functions below do nothing.
void progress_set_sink(ProgressSink sink);

// Whether somebody sees it, for what has to be worked out first.
bool progress_is_seen();

// Shows what printf makes of the format.
void progress_show(const wchar_t *format, ...);

// Shows "WHAT: 37 %" when that is another figure than the last one.
//   what    a static text
//   total   of what there is to do; 0 or less when nobody knows, then nothing is shown
void progress_show_share(const wchar_t *what, i64 done, i64 total);

void progress_clear();

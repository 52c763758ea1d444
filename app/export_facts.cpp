#include "app/export_facts.h"

#include <cassert>
#include <cstdio>

static_assert(sizeof("Quarn 3.0.0") > 1, "");

ExportFacts export_facts(const AppState *state) {
    assert(state != nullptr);
    ExportFacts facts = {};
    facts.program = "Quarn 3.0.0";
    facts.layout_path = wstring_text(state->gds_path);
    facts.process_path = wstring_text(state->process_path);
    const PlatformTime now = platform_local_time();
    std::snprintf(facts.date, EXPORT_DATE_SIZE, "%04d-%02d-%02d %02d:%02d", now.year, now.month, now.day,
                  now.hour, now.minute);
    return facts;
}

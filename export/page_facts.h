// page_facts.h: all that a page tells in words and numbers, heights aside, as JSON for its scripts.
#pragma once
#include "export/export_text.h"
#include "export/page_record.h"

// Appends one JSON object that may stand in a script element. What is no number is 0.
void page_facts_put(ExportText *text, const PageWriter *page);

#include "export/export_text.h"

#include <cassert>
#include <charconv>
#include <cmath>
#include <cstring>
#include <utility>

#include "platform/platform.h"
#include "platform/utf8.h"

static constexpr i64 PIECE_BYTES = 1 << 16;  // gathered for a file
static constexpr i64 FIRST_CAPACITY = 256;
static constexpr i32 NUMBER_ROOM = 64;  // for 15 digits before the point and 20 behind it
static constexpr i32 SMALLEST_PLAIN =
    -7;  // powers of ten between which a number is written without an exponent
static constexpr i32 LARGEST_PLAIN = 15;
static constexpr u32 REPLACEMENT_CODE = 0xFFFD;

void export_text_free(ExportText *text) {
    if (text == nullptr) {
        return;
    }
    memory_free(text->bytes);
    *text = {};
}

// Makes room for so many more bytes. False when memory is lacking.
static bool make_room(ExportText *text, i64 more) {
    if (text->capacity - text->size >= more) {
        return true;
    }
    i64 capacity = text->file != nullptr ? PIECE_BYTES : FIRST_CAPACITY;
    capacity = text->capacity > capacity / 2 ? 2 * text->capacity : capacity;
    capacity = capacity < text->size + more ? text->size + more : capacity;
    void *moved = memory_try_reallocate(text->bytes, capacity, 1);
    if (moved == nullptr) {
        text->lacking = true;
        return false;
    }
    text->bytes = static_cast<char *>(moved);
    text->capacity = capacity;
    return true;
}

static void flush(ExportText *text) {
    std::fwrite(text->bytes, 1, static_cast<size_t>(text->size), text->file);
    text->size = 0;
}

bool export_text_finish(ExportText *text) {
    assert(text != nullptr);
    if (text->file != nullptr && text->size > 0) {
        flush(text);
    }
    return !text->lacking;
}

void export_text_put_bytes(ExportText *text, const char *bytes, i64 size) {
    assert(text != nullptr && bytes != nullptr && size >= 0);
    if (text->file != nullptr && text->size > 0 && text->size + size > PIECE_BYTES) {
        flush(text);
    }
    if (size == 0 || text->lacking || !make_room(text, size)) {
        return;
    }
    std::memcpy(text->bytes + text->size, bytes, static_cast<size_t>(size));
    text->size += size;
}

void export_text_put(ExportText *text, const char *plain) {
    assert(plain != nullptr);
    export_text_put_bytes(text, plain, static_cast<i64>(std::strlen(plain)));
}

static void put_code(ExportText *text, u32 code) {
    char bytes[4];
    const i32 count = utf8_encode(code, bytes);
    export_text_put_bytes(text, bytes, count);
}

void export_text_put_clean(ExportText *text, const char *value) {
    assert(text != nullptr && value != nullptr);
    while (*value != 0) {
        u32 code = 0;
        value += utf8_clean_decode(value, &code);
        put_code(text, code);
    }
}

static const char *xml_reference(u32 code) {
    switch (code) {
        case '&': return "&amp;";
        case '<': return "&lt;";
        case '>': return "&gt;";
        case '"': return "&quot;";
        case '\'': return "&#39;";
        case '\t': return "&#9;";
        case '\n': return "&#10;";
        case '\r': return "&#13;";
        default: return nullptr;
    }
}

void export_text_put_xml(ExportText *text, const char *value) {
    assert(text != nullptr && value != nullptr);
    while (*value != 0) {
        u32 code = 0;
        value += utf8_or_latin1_decode(value, &code);
        const char *reference = xml_reference(code);
        if (reference != nullptr) {
            export_text_put(text, reference);
        } else if (code < 0x20 || (code >= 0x7F && code < 0xA0)) {
            export_text_put(text, " ");
        } else {
            put_code(text, code == 0xFFFE || code == 0xFFFF ? REPLACEMENT_CODE : code);
        }
    }
}

static void put_json_escape(ExportText *text, u32 code) {
    static constexpr char DIGITS[] = "0123456789abcdef";
    const char escape[6] = {'\\',
                            'u',
                            DIGITS[(code >> 12) & 15],
                            DIGITS[(code >> 8) & 15],
                            DIGITS[(code >> 4) & 15],
                            DIGITS[code & 15]};
    export_text_put_bytes(text, escape, 6);
}

void export_text_put_json(ExportText *text, const char *value) {
    assert(text != nullptr && value != nullptr);
    export_text_put(text, "\"");
    while (*value != 0) {
        u32 code = 0;
        value += utf8_or_latin1_decode(value, &code);
        const bool markup = code == '<' || code == '>' || code == '&' || code == 0x2028 || code == 0x2029;
        if (code == '\n') {
            export_text_put(text, "\\n");
        } else if (code == '"' || code == '\\') {
            const char escape[2] = {'\\', static_cast<char>(code)};
            export_text_put_bytes(text, escape, 2);
        } else if (markup || code < 0x20 || (code >= 0x7F && code < 0xA0)) {
            put_json_escape(text, code);
        } else {
            put_code(text, code);
        }
    }
    export_text_put(text, "\"");
}

// Whether a spreadsheet might take the text for a formula.
static bool is_formula(const char *value) {
    u32 code = 0;
    do {
        value += utf8_clean_decode(value, &code);
    } while (code == ' ');
    return code == '=' || code == '+' || code == '-' || code == '@';
}

static void put_csv_part(ExportText *text, const char *value) {
    while (*value != 0) {
        u32 code = 0;
        value += utf8_clean_decode(value, &code);
        put_code(text, code);
        if (code == '"') {
            export_text_put(text, "\"");
        }
    }
}

// Whether a reader needs quotes to take the text as it stands. A control character counts as the blank that
// becomes of it.
static bool needs_quotes(const char *value, const char *more) {
    u32 first = 0;
    u32 code = 0;
    for (const char *part : {value, more}) {
        while (*part != 0) {
            part += utf8_clean_decode(part, &code);
            if (code == ',' || code == ';' || code == '"') {
                return true;
            }
            first = first == 0 ? code : first;
        }
    }
    return first == ' ' || code == ' ';
}

void export_text_put_csv(ExportText *text, const char *value) {
    export_text_put_csv(text, value, "");
}

void export_text_put_csv(ExportText *text, const char *value, const char *more) {
    assert(text != nullptr && value != nullptr && more != nullptr);
    const bool formula = is_formula(value);
    const bool quoted = needs_quotes(value, more);
    export_text_put(text, quoted ? "\"" : "");
    export_text_put(text, formula ? "'" : "");
    put_csv_part(text, value);
    put_csv_part(text, more);
    export_text_put(text, quoted ? "\"" : "");
}

void export_text_put_integer(ExportText *text, i64 value) {
    char number[NUMBER_ROOM];
    const char *end = std::to_chars(number, number + NUMBER_ROOM, value).ptr;
    export_text_put_bytes(text, number, end - number);
}

// True, and the text has it, for what has no digits of its own: zeros and what is no number.
static bool put_special(ExportText *text, f64 value) {
    const char *word = nullptr;
    if (std::isnan(value)) {
        word = "nan";
    } else if (std::isinf(value)) {
        word = value > 0.0 ? "inf" : "-inf";
    } else if (value == 0.0) {
        word = "0";
    } else {
        return false;
    }
    export_text_put(text, word);
    return true;
}

// A number in digits: sign, and digits of which the first stands for units times ten to the power.
struct Decimal {
    bool negative;
    char digits[24];
    i32 count;
    i32 power;
};

// Of "-1.25e-07", as to_chars writes it.
static Decimal decimal_from(const char *scientific, const char *end) {
    Decimal decimal = {};
    decimal.negative = *scientific == '-';
    scientific += decimal.negative ? 1 : 0;
    for (; *scientific != 'e'; ++scientific) {
        if (*scientific != '.') {
            decimal.digits[decimal.count++] = *scientific;
        }
    }
    ++scientific;
    scientific += *scientific == '+' ? 1 : 0;  // from_chars knows none
    std::from_chars(scientific, end, decimal.power);
    return decimal;
}

// Writes the number, whose first digit stands before the point when it has an exponent; returns its end.
static char *decimal_write(const Decimal *decimal, char *out) {
    const i32 power = decimal->power;
    const bool plain = power >= SMALLEST_PLAIN && power < LARGEST_PLAIN;
    const i32 whole_count = plain ? power + 1 : 1;  // digits before the point; 0 or less: "0.00..." begins it
    if (decimal->negative) {
        *out++ = '-';
    }
    if (whole_count <= 0) {
        *out++ = '0';
        *out++ = '.';
        for (i32 i = whole_count; i < 0; ++i) {
            *out++ = '0';
        }
    }
    for (i32 i = 0; i < decimal->count || i < whole_count; ++i) {
        if (i == whole_count && whole_count > 0) {
            *out++ = '.';
        }
        *out++ = i < decimal->count ? decimal->digits[i] : '0';
    }
    if (!plain) {
        *out++ = 'e';
        *out++ = power < 0 ? '-' : '+';
        out = std::to_chars(out, out + 8, power < 0 ? -power : power).ptr;
    }
    return out;
}

static void put_decimal(ExportText *text, const Decimal *decimal) {
    char number[NUMBER_ROOM];
    const char *end = decimal_write(decimal, number);
    export_text_put_bytes(text, number, end - number);
}

// T is f32 or f64: what is the shortest depends on it.
template <typename T>
static void put_shortest(ExportText *text, T value) {
    if (put_special(text, f64{value})) {
        return;
    }
    char number[NUMBER_ROOM];
    const char *end = std::to_chars(number, number + NUMBER_ROOM, value, std::chars_format::scientific).ptr;
    const Decimal decimal = decimal_from(number, end);
    put_decimal(text, &decimal);
}

void export_text_put_f32(ExportText *text, f32 value) {
    assert(text != nullptr);
    put_shortest(text, value);
}

void export_text_put_f64(ExportText *text, f64 value) {
    assert(text != nullptr);
    put_shortest(text, value);
}

void export_text_put_fixed(ExportText *text, f64 value, i32 decimals) {
    assert(text != nullptr && decimals >= 0 && decimals <= 20);
    if (!std::isfinite(value)) {
        put_special(text, value);
        return;
    }
    const bool plain = std::fabs(value) < 1e15;
    char number[NUMBER_ROOM];
    const char *end =
        std::to_chars(number, number + NUMBER_ROOM, value,
                      plain ? std::chars_format::fixed : std::chars_format::scientific, decimals)
            .ptr;
    const i64 size = end - number;
    bool zero = true;
    for (i64 i = 0; i < size; ++i) {
        zero = zero && std::strchr("-.0", number[i]) != nullptr;
    }
    const i64 skipped = zero && number[0] == '-' ? 1 : 0;
    export_text_put_bytes(text, number + skipped, size - skipped);
}

// Whether a reader who divides by 1000 gets the height back.
static bool reads_back(const Decimal *nanometres, f32 height_um) {
    char number[NUMBER_ROOM];
    const char *end = decimal_write(nanometres, number);
    f64 value = 0.0;
    std::from_chars(number, end, value);
    return static_cast<f32>(value / 1000.0) == height_um;
}

void export_text_put_nm(ExportText *text, f32 height_um) {
    if (put_special(text, f64{height_um})) {
        return;
    }
    // The shortest digits of the height itself: those of 1000 times as much would be longer than it is exact.
    char number[NUMBER_ROOM];
    const char *end =
        std::to_chars(number, number + NUMBER_ROOM, height_um, std::chars_format::scientific).ptr;
    Decimal decimal = decimal_from(number, end);
    decimal.power += 3;
    if (!reads_back(&decimal, height_um)) {
        // At the rim of what rounds to the height; nine digits are well inside.
        end = std::to_chars(number, number + NUMBER_ROOM, height_um, std::chars_format::scientific, 8).ptr;
        decimal = decimal_from(number, end);
        decimal.power += 3;
    }
    put_decimal(text, &decimal);
}

NarrowText export_text_from_wide(const wchar_t *value) {
    assert(value != nullptr);
    const NarrowText bytes = platform_system_from_wide(value);
    ExportText clean = {};
    const Owned<ExportText> owner(&clean);
    export_text_put_clean(&clean, bytes.get());
    export_text_put_bytes(&clean, "", 1);
    if (!export_text_finish(&clean)) {
        memory_end_program();
    }
    return NarrowText(std::exchange(clean.bytes, nullptr));
}

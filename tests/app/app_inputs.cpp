#include "tests/app/app_inputs.h"

#include <cctype>

static std::string big_endian(u32 value, i32 bytes) {
    std::string out;
    for (i32 i = bytes - 1; i >= 0; --i) {
        out.push_back(static_cast<char>((value >> (8 * i)) & 0xFF));
    }
    return out;
}

static std::string record(u32 type, const std::string &data) {
    return big_endian(static_cast<u32>(data.size()) + 4, 2) + big_endian(type, 2) + data;
}

static std::string boundary(const LayoutBox &box) {
    std::string points;
    const i32 corners[5][2] = {{box.x_min, box.y_min},
                               {box.x_max, box.y_min},
                               {box.x_max, box.y_max},
                               {box.x_min, box.y_max},
                               {box.x_min, box.y_min}};
    for (const auto &corner : corners) {
        points += big_endian(static_cast<u32>(corner[0]), 4) + big_endian(static_cast<u32>(corner[1]), 4);
    }
    return record(0x0800, "") + record(0x0D02, big_endian(static_cast<u32>(box.layer), 2)) +
           record(0x0E02, big_endian(0, 2)) + record(0x1003, points) + record(0x1100, "");
}

std::string layout_bytes(const std::vector<LayoutBox> &boxes) {
    const std::string dates(24, '\0');
    // 0.001 user units a database unit, 1e-9 m a database unit.
    const std::string units("\x3E\x41\x89\x37\x4B\xC6\xA7\xF0\x39\x44\xB8\x2F\xA0\x9B\x5A\x54", 16);
    std::string bytes = record(0x0002, big_endian(600, 2)) + record(0x0102, dates) + record(0x0206, "LB") +
                        record(0x0305, units) + record(0x0502, dates) +
                        record(0x0606, std::string("TOP\0", 4));
    for (const LayoutBox &box : boxes) {
        bytes += boundary(box);
    }
    return bytes + record(0x0700, "") + record(0x0400, "");
}

std::string small_layout_bytes() {
    return layout_bytes({{1, 0, 0, 5000, 2500}, {9, 12000, 0, 12100, 2500}});
}

std::string process_text(const std::string &steps) {
    return "settings -version 3 -N 200\ngds -cell TOP\nlocation -x 0 -y 0 -dx 10 -dy 2.5\n" + steps;
}

std::string deposition_line(const std::string &name) {
    return "deposition -name " + name + " -type t_" + name + " -thickness 100 -sc 0 -color 200 100 50 100\n";
}

static bool is_digit(char c) {
    return std::isdigit(static_cast<u8>(c)) != 0;
}

// Length of "123.456" at `at`, or 0.
static size_t seconds_length(const std::string &text, size_t at) {
    size_t end = at;
    while (end < text.size() && is_digit(text[end])) {
        ++end;
    }
    const bool whole = end > at && text_matches(text.substr(end, 6), ".### s*");
    return whole ? end + 4 - at : 0;
}

std::string mask_seconds(const std::string &text) {
    std::string out;
    for (size_t i = 0; i < text.size();) {
        const size_t length = seconds_length(text, i);
        out += length > 0 ? '#' : text[i];
        i += length > 0 ? length : 1;
    }
    return out;
}

bool text_matches(const std::string &text, const std::string &pattern) {
    if (pattern.empty()) {
        return text.empty();
    }
    const std::string rest = pattern.substr(1);
    if (pattern[0] == '*') {
        for (size_t skipped = 0; skipped <= text.size(); ++skipped) {
            if (text_matches(text.substr(skipped), rest)) {
                return true;
            }
        }
        return false;
    }
    const bool same = !text.empty() && (pattern[0] == '#' ? is_digit(text[0]) : text[0] == pattern[0]);
    return same && text_matches(text.substr(1), rest);
}

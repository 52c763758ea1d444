#include "export/profile_ruler.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstring>

#include "export/export_text.h"
#include "platform/decimal_power.h"

// Of what a range may miss its last stroke by, in strokes: the arithmetic of round figures.
static constexpr f64 ROUNDING = 1e-6;

ProfileRuler profile_ruler_create(f64 lowest, f64 highest, f64 least_step) {
    assert(highest >= lowest && least_step > 0.0);
    ProfileRuler ruler = {};
    const f64 power = decimal_power(least_step * (1.0 - 1e-9));
    ruler.step = power;
    ruler.parts = 5;
    for (const f64 times : {2.0, 5.0, 10.0}) {
        if (ruler.step < least_step * (1.0 - 1e-9)) {
            ruler.step = power * times;
            ruler.parts = times == 2.0 ? 4 : 5;
        }
    }
    ruler.in_nanometres = std::max(std::fabs(lowest), std::fabs(highest)) < 1.0;
    const f64 stroke = ruler.step / ruler.parts;
    ruler.first = truncate_i64(std::ceil(lowest / stroke - ROUNDING));
    ruler.last = truncate_i64(std::floor(highest / stroke + ROUNDING));
    const f64 shown = ruler.in_nanometres ? ruler.step * 1000.0 : ruler.step;
    while (ruler.decimals < 9 && shown * std::pow(10.0, ruler.decimals) < 1.0 - 1e-9) {
        ++ruler.decimals;
    }
    return ruler;
}

f64 profile_ruler_place(const ProfileRuler *ruler, i64 stroke) {
    assert(ruler != nullptr);
    return static_cast<f64>(stroke) * ruler->step / ruler->parts;
}

bool profile_ruler_has_figure(const ProfileRuler *ruler, i64 stroke) {
    assert(ruler != nullptr);
    return stroke % ruler->parts == 0;
}

void profile_ruler_format(const ProfileRuler *ruler, i64 stroke, char text[32]) {
    assert(ruler != nullptr && text != nullptr);
    ExportText figure = {};
    const Owned<ExportText> owner(&figure);
    const f64 place = profile_ruler_place(ruler, stroke);
    export_text_put_fixed(&figure, ruler->in_nanometres ? place * 1000.0 : place, ruler->decimals);
    const i64 size = std::min(figure.size, i64{31});
    std::memcpy(text, figure.bytes, static_cast<size_t>(size));
    text[size] = 0;
}

#include "examples/layout_writer.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

static std::FILE *file = nullptr;
static const char *file_path = "";
static int drawn_datatype = 0;

static void write_bytes(const uint8_t *bytes, size_t count) {
    if (std::fwrite(bytes, 1, count, file) != count) {
        std::perror(file_path);
        std::exit(1);
    }
}

// One record: code is record type and data type as one number.
static void write_record(int code, const std::vector<uint8_t> &data) {
    const size_t length = data.size() + 4;
    const uint8_t header[4] = {static_cast<uint8_t>(length >> 8), static_cast<uint8_t>(length),
                               static_cast<uint8_t>(code >> 8), static_cast<uint8_t>(code)};
    write_bytes(header, 4);
    if (!data.empty()) {
        write_bytes(data.data(), data.size());
    }
}

static void put_int2(std::vector<uint8_t> *data, int value) {
    data->push_back(static_cast<uint8_t>(value >> 8));
    data->push_back(static_cast<uint8_t>(value));
}

static void put_int4(std::vector<uint8_t> *data, int32_t value) {
    auto bits = static_cast<uint32_t>(value);
    put_int2(data, static_cast<int>(bits >> 16));
    put_int2(data, static_cast<int>(bits & 0xFFFF));
}

// The stream format's own real: sign, exponent of 16 biased by 64, 56 bits of fraction.
static void put_real8(std::vector<uint8_t> *data, double value) {
    const uint8_t sign = value < 0 ? 0x80 : 0;
    double fraction = std::fabs(value);
    int exponent = 64;
    while (fraction >= 1.0) {
        fraction /= 16.0;
        ++exponent;
    }
    while (fraction != 0.0 && fraction < 1.0 / 16.0) {
        fraction *= 16.0;
        --exponent;
    }
    auto bits = static_cast<uint64_t>(std::llround(std::ldexp(fraction, 56)));
    data->push_back(static_cast<uint8_t>(sign | (value != 0.0 ? exponent : 0)));
    for (int shift = 48; shift >= 0; shift -= 8) {
        data->push_back(static_cast<uint8_t>(bits >> shift));
    }
}

static void write_int2(int code, int value) {
    std::vector<uint8_t> data;
    put_int2(&data, value);
    write_record(code, data);
}

static void write_text(int code, const char *text) {
    std::vector<uint8_t> data(text, text + std::strlen(text));
    if (data.size() % 2 != 0) {
        data.push_back(0);
    }
    write_record(code, data);
}

static void write_points(const std::vector<LayoutPoint> &points) {
    std::vector<uint8_t> data;
    for (const LayoutPoint &point : points) {
        put_int4(&data, point.x);
        put_int4(&data, point.y);
    }
    write_record(0x1003, data);
}

void layout_begin(const char *path, const char *library) {
    file_path = path;
    file = std::fopen(path, "wb");
    if (file == nullptr) {
        std::perror(path);
        std::exit(1);
    }
    write_int2(0x0002, 600);
    write_record(0x0102, std::vector<uint8_t>(24));
    write_text(0x0206, library);
    std::vector<uint8_t> units;
    put_real8(&units, 1e-3);
    put_real8(&units, 1e-9);
    write_record(0x0305, units);
}

void layout_end() {
    write_record(0x0400, {});
    if (std::fclose(file) != 0) {
        std::perror(file_path);
        std::exit(1);
    }
    file = nullptr;
}

void layout_cell_begin(const char *name) {
    write_record(0x0502, std::vector<uint8_t>(24));
    write_text(0x0606, name);
}

void layout_cell_end() {
    write_record(0x0700, {});
}

void layout_datatype(int datatype) {
    drawn_datatype = datatype;
}

void layout_polygon(int layer, const std::vector<LayoutPoint> &points) {
    write_record(0x0800, {});
    write_int2(0x0D02, layer);
    write_int2(0x0E02, drawn_datatype);
    std::vector<LayoutPoint> closed = points;
    closed.push_back(points.front());
    write_points(closed);
    write_record(0x1100, {});
}

void layout_box(int layer, int32_t x_min, int32_t y_min, int32_t x_max, int32_t y_max) {
    layout_polygon(layer, {{x_min, y_min}, {x_max, y_min}, {x_max, y_max}, {x_min, y_max}});
}

void layout_disc(int layer, LayoutPoint centre, int32_t radius, int corners) {
    std::vector<LayoutPoint> points;
    for (int i = 0; i < corners; ++i) {
        const double angle = 2.0 * 3.141592653589793 * i / corners;
        points.push_back({centre.x + static_cast<int32_t>(std::lround(radius * std::cos(angle))),
                          centre.y + static_cast<int32_t>(std::lround(radius * std::sin(angle)))});
    }
    layout_polygon(layer, points);
}

void layout_path(int layer, int32_t width, int end_type, const std::vector<LayoutPoint> &points) {
    write_record(0x0900, {});
    write_int2(0x0D02, layer);
    write_int2(0x0E02, drawn_datatype);
    write_int2(0x2102, end_type);
    std::vector<uint8_t> data;
    put_int4(&data, width);
    write_record(0x0F03, data);
    write_points(points);
    write_record(0x1100, {});
}

static void write_transform(const LayoutPlacement &placement) {
    write_int2(0x1A01, placement.reflected ? 0x8000 : 0);
    if (placement.mag != 1.0) {
        std::vector<uint8_t> data;
        put_real8(&data, placement.mag);
        write_record(0x1B05, data);
    }
    if (placement.angle_degrees != 0.0) {
        std::vector<uint8_t> data;
        put_real8(&data, placement.angle_degrees);
        write_record(0x1C05, data);
    }
}

void layout_reference(const char *cell, LayoutPlacement placement) {
    write_record(0x0A00, {});
    write_text(0x1206, cell);
    write_transform(placement);
    write_points({{placement.x, placement.y}});
    write_record(0x1100, {});
}

void layout_array(const char *cell, LayoutPlacement placement, int columns, int rows, LayoutPoint column,
                  LayoutPoint row) {
    write_record(0x0B00, {});
    write_text(0x1206, cell);
    write_transform(placement);
    std::vector<uint8_t> data;
    put_int2(&data, columns);
    put_int2(&data, rows);
    write_record(0x1302, data);
    write_points({{placement.x, placement.y},
                  {placement.x + columns * column.x, placement.y + columns * column.y},
                  {placement.x + rows * row.x, placement.y + rows * row.y}});
    write_record(0x1100, {});
}

#include "tests/gds/gds_bytes.h"

#include <cmath>
#include <ostream>

std::string bytes_u16(u32 value) {
    return {static_cast<char>(value >> 8), static_cast<char>(value)};
}

std::string bytes_i32(i32 value) {
    const u32 bits = static_cast<u32>(value);
    return bytes_u16(bits >> 16) + bytes_u16(bits & 0xFFFF);
}

std::string bytes_real8(f64 value) {
    std::string bytes(8, '\0');
    if (value == 0.0) {
        return bytes;
    }
    i32 exponent = 64;
    f64 fraction = std::fabs(value);
    for (; fraction >= 1.0; ++exponent) {
        fraction /= 16.0;
    }
    for (; fraction < 1.0 / 16.0; --exponent) {
        fraction *= 16.0;
    }
    bytes[0] = static_cast<char>(exponent | (value < 0.0 ? 0x80 : 0));
    for (size_t i = 1; i < 8; ++i) {
        fraction *= 256.0;
        const f64 digit = std::floor(fraction);
        bytes[i] = static_cast<char>(static_cast<i32>(digit));
        fraction -= digit;
    }
    return bytes;
}

GdsBytes &GdsBytes::raw(const std::string &more) {
    bytes += more;
    return *this;
}

GdsBytes &GdsBytes::record(u32 code, const std::string &data) {
    bytes += bytes_u16(static_cast<u32>(data.size()) + 4) + bytes_u16(code) + data;
    return *this;
}

GdsBytes &GdsBytes::record_u16(u32 code, std::initializer_list<u16> values) {
    std::string data;
    for (const u16 value : values) {
        data += bytes_u16(value);
    }
    return record(code, data);
}

GdsBytes &GdsBytes::name(u32 code, const std::string &text) {
    std::string data = text;
    if (data.size() % 2 != 0) {
        data.push_back('\0');
    }
    return record(code, data);
}

GdsBytes &GdsBytes::xy(const std::vector<Point> &points) {
    std::string data;
    for (const Point point : points) {
        data += bytes_i32(point.x) + bytes_i32(point.y);
    }
    return record(GDS_RECORD_XY, data);
}

GdsBytes &GdsBytes::real(u32 code, f64 value) {
    return record(code, bytes_real8(value));
}

GdsBytes &GdsBytes::head(f64 unit) {
    record_u16(GDS_RECORD_HEADER, {600});
    record(GDS_RECORD_BGNLIB, std::string(24, '\0'));
    name(GDS_RECORD_LIBNAME, "LIB");
    return record(GDS_RECORD_UNITS, bytes_real8(unit) + bytes_real8(unit * 1e-6));
}

GdsBytes &GdsBytes::begin(const std::string &cell) {
    record(GDS_RECORD_BGNSTR, std::string(24, '\0'));
    return name(GDS_RECORD_STRNAME, cell);
}

GdsBytes &GdsBytes::end() {
    return record(GDS_RECORD_ENDSTR);
}

GdsBytes &GdsBytes::close() {
    return record(GDS_RECORD_ENDLIB);
}

GdsBytes &GdsBytes::boundary(u16 layer, const std::vector<Point> &points) {
    record(GDS_RECORD_BOUNDARY).record_u16(GDS_RECORD_LAYER, {layer}).record_u16(GDS_RECORD_DATATYPE, {0});
    return xy(points).record(GDS_RECORD_ENDEL);
}

GdsBytes &GdsBytes::box(u16 layer, i32 x_min, i32 y_min, i32 x_max, i32 y_max) {
    return boundary(layer, {{x_min, y_min}, {x_min, y_max}, {x_max, y_max}, {x_max, y_min}, {x_min, y_min}});
}

GdsBytes &GdsBytes::path(u16 layer, u16 type, i32 width, const std::vector<Point> &points) {
    record(GDS_RECORD_PATH).record_u16(GDS_RECORD_LAYER, {layer}).record_u16(GDS_RECORD_DATATYPE, {0});
    record_u16(GDS_RECORD_PATHTYPE, {type}).record(GDS_RECORD_WIDTH, bytes_i32(width));
    return xy(points).record(GDS_RECORD_ENDEL);
}

static void append_strans(GdsBytes *stream, u16 flags, f64 mag, f64 degrees) {
    if (flags != 0 || mag != 1.0 || degrees != 0.0) {
        stream->record_u16(GDS_RECORD_STRANS, {flags}).real(GDS_RECORD_MAG, mag);
        stream->real(GDS_RECORD_ANGLE, degrees);
    }
}

GdsBytes &GdsBytes::sref(const std::string &cell, Point origin, u16 flags, f64 mag, f64 degrees) {
    record(GDS_RECORD_SREF).name(GDS_RECORD_SNAME, cell);
    append_strans(this, flags, mag, degrees);
    return xy({origin}).record(GDS_RECORD_ENDEL);
}

GdsBytes &GdsBytes::aref(const std::string &cell, u16 cols, u16 rows, Point p1, Point p2, Point p3, u16 flags,
                         f64 mag, f64 degrees) {
    record(GDS_RECORD_AREF).name(GDS_RECORD_SNAME, cell);
    append_strans(this, flags, mag, degrees);
    return record_u16(GDS_RECORD_COLROW, {cols, rows}).xy({p1, p2, p3}).record(GDS_RECORD_ENDEL);
}

bool operator==(Point a, Point b) {
    return a.x == b.x && a.y == b.y;
}

bool operator==(Box a, Box b) {
    return a.x_min == b.x_min && a.y_min == b.y_min && a.x_max == b.x_max && a.y_max == b.y_max;
}

void PrintTo(Point point, std::ostream *out) {
    *out << "(" << point.x << ", " << point.y << ")";
}

void PrintTo(Box box, std::ostream *out) {
    *out << "(" << box.x_min << ", " << box.y_min << ") to (" << box.x_max << ", " << box.y_max << ")";
}

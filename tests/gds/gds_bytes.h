// gds_bytes.h: GDSII streams made record by record, well-formed or not.
#pragma once
#include <initializer_list>
#include <iosfwd>
#include <string>
#include <vector>
#include "gds/gds_database.h"
#include "gds/gds_record.h"

// The bytes of a stream; each call appends one record and gives the record back for the next call.
struct GdsBytes {
    std::string bytes;

    GdsBytes &raw(const std::string &more);
    GdsBytes &record(u32 code, const std::string &data = "");
    GdsBytes &record_u16(u32 code, std::initializer_list<u16> values);
    GdsBytes &name(u32 code, const std::string &text);  // padded with a zero byte to an even length
    GdsBytes &xy(const std::vector<Point> &points);
    GdsBytes &real(u32 code, f64 value);

    GdsBytes &head(f64 unit = 0.001);          // HEADER, BGNLIB, LIBNAME, UNITS; micrometres per unit
    GdsBytes &begin(const std::string &name);  // BGNSTR, STRNAME
    GdsBytes &end();                           // ENDSTR
    GdsBytes &close();                         // ENDLIB

    GdsBytes &boundary(u16 layer, const std::vector<Point> &points);
    GdsBytes &box(u16 layer, i32 x_min, i32 y_min, i32 x_max, i32 y_max);
    GdsBytes &path(u16 layer, u16 type, i32 width, const std::vector<Point> &points);
    GdsBytes &sref(const std::string &name, Point origin, u16 flags = 0, f64 mag = 1.0, f64 degrees = 0.0);
    GdsBytes &aref(const std::string &name, u16 cols, u16 rows, Point p1, Point p2, Point p3, u16 flags = 0,
                   f64 mag = 1.0, f64 degrees = 0.0);
};

std::string bytes_u16(u32 value);
std::string bytes_i32(i32 value);
std::string bytes_real8(f64 value);  // the nearest GDSII real

bool operator==(Point a, Point b);
bool operator==(Box a, Box b);
// The name is GoogleTest's.
// NOLINTBEGIN(readability-identifier-naming)
void PrintTo(Point point, std::ostream *out);
void PrintTo(Box box, std::ostream *out);
// NOLINTEND(readability-identifier-naming)

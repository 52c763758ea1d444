// profile_areas.h: the connected areas of each region of a cut face, and where a name has room in them.
// Stations as in profile_borders.h, heights in micrometres.
#pragma once
#include "export/profile_borders.h"

// What one region fills between a station and the next without a break.
struct AreaSpan {
    i32 station;
    i32 area;  // that it belongs to
    f64 left_low, left_high;
    f64 right_low, right_high;
};

struct ProfileArea {
    i32 region;
    i32 first_station, last_station;  // of its spans
    f64 size;                         // in stations times micrometres
};

struct ProfileAreas {
    i32 station_count;
    Owned<AreaSpan[]> spans;  // by stations, then from below
    i32 span_count;
    Owned<i32[]> first;  // station_count + 1: the first span at each station, and behind the last
    Owned<ProfileArea[]> items;
    i32 count, capacity;
};

struct AreaPlace {
    f64 station;
    f64 height;
};

// The areas of the pieces of a face. Spans that meet at a point only are not connected.
ProfileAreas profile_areas_create(const StationPieces *pieces);

// The middle of an area where it is thickest: always inside.
AreaPlace profile_area_middle(const ProfileAreas *areas, i32 area);

// Looks for a place within an area for a box so many stations wide and so many micrometres high: the middle
// of the box, as near to the middle of the area as can be without touching its borders more than need be.
// False when there is no room.
bool profile_area_find_room(const ProfileAreas *areas, i32 area, i32 stations, f64 height, AreaPlace *place);

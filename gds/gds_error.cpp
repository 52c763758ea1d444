#include "gds/gds_error.h"

const wchar_t *gds_error_text(i32 error) {
    switch (error) {
        case GDS_OK: return L"no error";
        case GDS_ERROR_OPEN: return L"the file cannot be read";
        case GDS_ERROR_PATH:
            return L"a PATH cannot be made into a polygon: it has less than two points, two equal points in "
                   L"a row, two parallel segments in a row, or ends that cannot be extended";
        case GDS_ERROR_UNITS: return L"there is no UNITS record with a positive database unit";
        case GDS_ERROR_RECORD_LENGTH: return L"a record length is below 4";
        case GDS_ERROR_BGNSTR: return L"BGNSTR inside a structure";
        case GDS_ERROR_ENDSTR: return L"ENDSTR outside a structure";
        case GDS_ERROR_BOUNDARY: return L"BOUNDARY outside a structure or inside an open element";
        case GDS_ERROR_PATH_PLACE: return L"PATH outside a structure or inside an open element";
        case GDS_ERROR_SREF: return L"SREF outside a structure or inside an open element";
        case GDS_ERROR_AREF: return L"AREF outside a structure or inside an open element";
        case GDS_ERROR_TEXT: return L"TEXT outside a structure or inside an open element";
        case GDS_ERROR_NODE: return L"NODE outside a structure or inside an open element";
        case GDS_ERROR_BOX: return L"BOX outside a structure or inside an open element";
        case GDS_ERROR_ENDEL: return L"ENDEL with no element open or outside a structure";
        case GDS_ERROR_SNAME: return L"SNAME outside SREF and AREF";
        case GDS_ERROR_COLROW: return L"COLROW outside AREF";
        case GDS_ERROR_PATHTYPE: return L"PATHTYPE outside PATH";
        case GDS_ERROR_STRANS: return L"STRANS outside SREF, AREF and TEXT";
        case GDS_ERROR_ANGLE: return L"ANGLE outside SREF, AREF and TEXT";
        case GDS_ERROR_MAG: return L"MAG outside SREF, AREF and TEXT";
        case GDS_ERROR_XY: return L"XY with no element open";
        case GDS_ERROR_SREF_POINTS: return L"XY of an SREF with more than one point";
        case GDS_ERROR_AREF_POINTS: return L"XY of an AREF with more than three points";
        case GDS_ERROR_LAYER: return L"LAYER with no element open or in SREF or AREF";
        case GDS_ERROR_WIDTH: return L"WIDTH outside PATH and TEXT";
        case GDS_ERROR_STRNAME: return L"STRNAME outside a structure";
        case GDS_ERROR_UNKNOWN_STRUCTURE: return L"a reference names a structure that is not in the file";
        case GDS_ERROR_NO_LAYER: return L"BOUNDARY or PATH without LAYER";
        default: return L"unknown error";
    }
}

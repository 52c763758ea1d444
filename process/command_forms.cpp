#include "process/command_forms.h"

static const ArgumentForm NO_ARGUMENTS[] = {{nullptr, VALUE_NONE, 0}};

// clang-format off
static const ArgumentForm SETTINGS_FORMS[] = {
    {"-version", VALUE_INTEGERS, 1},
    {"-N", VALUE_INTEGERS, 1},
    {"-angle", VALUE_INTEGERS, 1},
    {"-use_nm", VALUE_NONE, 0},
    {"-heights", VALUE_NONE, 0},
    {"-legend", VALUE_NONE, 0},
    {nullptr, VALUE_NONE, 0},
};
// clang-format on

static const ArgumentForm GDS_FORMS[] = {{"-cell", VALUE_NAME, 1}, {nullptr, VALUE_NONE, 0}};

// clang-format off
static const ArgumentForm LOCATION_FORMS[] = {
    {"-x", VALUE_LENGTH, 1},
    {"-y", VALUE_LENGTH, 1},
    {"-dx", VALUE_LENGTH, 1},
    {"-dy", VALUE_LENGTH, 1},
    {nullptr, VALUE_NONE, 0},
};

static const ArgumentForm DEPOSITION_FORMS[] = {
    {"-name", VALUE_NAME, 1},
    {"-type", VALUE_NAME, 1},
    {"-thickness", VALUE_NANOMETRES, 1},
    {"-sc", VALUE_DECIMAL, 1},
    {"-color", VALUE_INTEGERS, 4},
    {"-scolor", VALUE_NAME, 1},
    {"-alpha", VALUE_DECIMAL, 1},
    {nullptr, VALUE_NONE, 0},
};

static const ArgumentForm COATING_FORMS[] = {
    {"-name", VALUE_NAME, 1},
    {"-type", VALUE_NAME, 1},
    {"-thickness", VALUE_NANOMETRES, 1},
    {"-dop", VALUE_DECIMAL, 1},
    {"-rr", VALUE_DECIMAL, 1},
    {"-color", VALUE_INTEGERS, 4},
    {"-scolor", VALUE_NAME, 1},
    {"-alpha", VALUE_DECIMAL, 1},
    {nullptr, VALUE_NONE, 0},
};
// clang-format on

// clang-format off
static const ArgumentForm PHOTO_FORMS[] = {
    {"-name", VALUE_NAME, 1},
    {"-mask_id", VALUE_INTEGERS, 1},
    {"-datatype", VALUE_INTEGERS, 1, true},
    {"-type", VALUE_INTEGERS, 1},
    {"-res", VALUE_LENGTH, 1},
    {"-taper", VALUE_INTEGERS, 1},
    {"-rr", VALUE_DECIMAL, 1},
    {"-thickness", VALUE_NANOMETRES, 1},
    {"-dop", VALUE_DECIMAL, 1},
    {nullptr, VALUE_NONE, 0},
};

static const ArgumentForm ETCH_FORMS[] = {
    {"-targets", VALUE_NAMES, 0},
    {"-depth", VALUE_NANOMETRES, 1},
    {"-name", VALUE_NAME, 1},
    {"-iso", VALUE_DECIMAL, 1},
    {nullptr, VALUE_NONE, 0},
};
// clang-format on

static const ArgumentForm RELEASE_FORMS[] = {
    {"-targets", VALUE_NAMES, 0}, {"-name", VALUE_NAME, 1}, {nullptr, VALUE_NONE, 0}};

static const ArgumentForm STRIP_FORMS[] = {{"-name", VALUE_NAME, 1}, {nullptr, VALUE_NONE, 0}};

// clang-format off
const CommandForm COMMAND_FORMS[] = {
    {"settings", true, SETTINGS_FORMS},
    {"gds", false, GDS_FORMS},
    {"location", true, LOCATION_FORMS},
    {"deposition", true, DEPOSITION_FORMS},
    {"coating", true, COATING_FORMS},
    {"photo", true, PHOTO_FORMS},
    {"etch", true, ETCH_FORMS},
    {"release", true, RELEASE_FORMS},
    {"strip", true, STRIP_FORMS},
    {"dump", false, NO_ARGUMENTS},
    {"stop", false, NO_ARGUMENTS},
    {nullptr, false, nullptr},
};
// clang-format on

#include "platform/text_family.h"

#include <cstring>

#include "platform/linux/font_face.h"

bool platform_text_family(u32 character, bool bold, char family[PLATFORM_FAMILY_SIZE]) {
    FcPattern *match = font_face_match(bold, character);
    if (match == nullptr) {
        return false;
    }
    FcChar8 *name = nullptr;  // owned by the match, as the characters are
    FcCharSet *characters = nullptr;
    bool found = FcPatternGetString(match, FC_FAMILY, 0, &name) == FcResultMatch &&
                 FcPatternGetCharSet(match, FC_CHARSET, 0, &characters) == FcResultMatch &&
                 FcCharSetHasChar(characters, character) != FcFalse;
    if (found) {
        const char *text = reinterpret_cast<const char *>(name);
        found = std::strlen(text) < static_cast<size_t>(PLATFORM_FAMILY_SIZE);
        if (found) {
            std::strcpy(family, text);
        }
    }
    FcPatternDestroy(match);
    return found;
}

#include "export/profile_face.h"

#include <algorithm>
#include <cassert>

static void measure(ProfileFace *face) {
    for (i32 i = 0; i < face->pieces.count; ++i) {
        const StationPiece *piece = &face->pieces.items[i];
        const f64 low = std::min(piece->left_low, piece->right_low);
        const f64 high = std::max(piece->left_high, piece->right_high);
        face->lowest = i == 0 ? low : std::min(face->lowest, low);
        face->highest = i == 0 ? high : std::max(face->highest, high);
        face->is_shown[piece->region] = true;
    }
}

ProfileFace profile_face_create(const Stack *stack) {
    assert(stack != nullptr && stack->grid_n > 0);
    const CutFace cut = cut_face_create(stack);
    ProfileFace face = {};
    face.materials.reset(material_numbers_create(stack));
    const Owned<i32[]> regions = memory_scratch<i32>(cut.film_count);
    for (i32 film = 0; film < cut.film_count; ++film) {
        regions[film] = material_number_of(face.materials.get(), stack->layers[cut.slots[film]]) - 1;
    }
    face.pieces = station_pieces_create(&cut, regions.get());
    face.spacing = stack->spacing;
    face.right = static_cast<f64>(stack->grid_n - 1) * f64{stack->spacing};
    face.is_shown = memory_scratch_zeroed<bool>(face.materials->count);
    measure(&face);
    return face;
}

// text.h: text placed in a picture. Needs a current context where nothing else is said.
#pragma once
#include "render/camera.h"
#include "render/font.h"
#include "render/picture_style.h"

// Draws black text at a point of the section (micrometres), moved by (dx, dy) pixels to the right and up from
// where the viewport shows it. Leaves no program in use.
//   text     bytes, zero-terminated; each is a character of the font
//   matrix   from micrometres to clip coordinates
void text_draw_at(f32 dx, f32 dy, Vector3 position, const char *text, const Font *font,
                  const Matrix4 *matrix);

// Draws black text with its lower left corner at a point of the window, pixels. No program may be in use.
void text_draw_window(f32 window_x, f32 window_y, const char *text, const Font *font);

// The same two for a picture of a style: with a white edge where its texts have one; their bytes are then
// read as wide_from_bytes does.
void text_draw_at_styled(const PictureStyle *style, f32 dx, f32 dy, Vector3 position, const char *text,
                         const Font *font, const Matrix4 *matrix);
// The second.
void text_draw_window_styled(const PictureStyle *style, f32 window_x, f32 window_y, const char *text,
                             const Font *font);

// Where text_draw_at puts the text: window coordinates (pixels) of `position` for a viewport x, y, width,
// height. Needs no context.
void text_window_position(f32 dx, f32 dy, Vector3 position, const Matrix4 *matrix, const i32 viewport[4],
                          f32 *window_x, f32 *window_y);

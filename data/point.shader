#shader vertex
#version 130
#extension GL_ARB_explicit_attrib_location : require

layout(location = 0) in vec3 position;  // micrometres
layout(location = 2) in float shade;    // 0 light to 1 dark

uniform mat4 transform;
uniform float viewHeight;  // of the part of the picture that shows the section, pixels

out float point_shade;

uniform float dotSize = 6.0;  // of a point, pixels

// Bounds of the lift, in parts of the depth that the picture has. The lower one takes up rounding. The
// upper one is above what any view needs in which points lie behind others; it matters for flatter views,
// where level ground is seen from its edge and all points lie in front.
const float LEAST_LIFT = 0.001;
const float MOST_LIFT = 0.08;

// How far a point is drawn nearer to the eye than it lies, so that the surface in front of it does not cut
// off its lower half: by the depth of level ground over the height of a whole point, where half of it would
// do, so that a surface may also fall away to the back. What stands nearer than that before a point does
// not hide it.
float lift(vec4 place)
{
    vec4 along = transform[1];  // change of the place on the way to the back
    vec2 change = along.yz * place.w - place.yz * along.w;
    float depth_per_height = change.y / change.x;
    return clamp(depth_per_height * dotSize * 2.0 / viewHeight, LEAST_LIFT, MOST_LIFT);
}

void main()
{
    vec4 place = transform * vec4(position, 1.0);
    place.z -= lift(place) * place.w;
    point_shade = shade;
    gl_Position = place;
    gl_PointSize = dotSize;
}

#shader fragment
#version 130

in float point_shade;

out vec4 fragment_color;

void main()
{
    // Without point sprites the place in the point is not known (it is 0, 0) and points stay square.
    vec2 from_middle = gl_PointCoord - vec2(0.5);
    if (gl_PointCoord != vec2(0.0) && dot(from_middle, from_middle) > 0.25) {
        discard;
    }
    fragment_color = vec4(vec3(1.0 - point_shade), 1.0);
}

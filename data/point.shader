#shader vertex
#version 130
#extension GL_ARB_explicit_attrib_location : require

layout(location = 0) in vec3 position;  // micrometres
layout(location = 2) in float shade;    // 0 light to 1 dark

uniform mat4 transform;

out float point_shade;

void main()
{
    vec4 place = transform * vec4(position, 1.0);
    place.z -= 0.004 * place.w;  // towards the eye: a point lies on the surface, not half in it
    point_shade = shade;
    gl_Position = place;
    gl_PointSize = 6.0;
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

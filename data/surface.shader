#shader vertex
#version 130
#extension GL_ARB_explicit_attrib_location : require

// This file may be replaced. Quarn sets the uniforms "transform", "lightColor", "lightPos", "color", "alpha"
// and "verticalScale" and feeds the attributes 0 and 1; a program need not use them all.

// Lengths are micrometres: x across the cut, y along it, z up.
layout(location = 0) in vec3 position;
layout(location = 1) in vec3 normal;  // any length; zeros for the underside, which has none

uniform mat4 transform;       // draws heights to their scale
uniform float verticalScale;  // that scale, which the light must go by too; 1 for true proportions

out vec3 surface_position;
out vec3 surface_normal;

void main()
{
    surface_position = vec3(position.xy, position.z * verticalScale);
    surface_normal = vec3(normal.xy * verticalScale, normal.z);
    gl_Position = transform * vec4(position, 1.0);
}

#shader fragment
#version 130

in vec3 surface_position;
in vec3 surface_normal;

uniform vec3 lightColor;
uniform vec3 lightPos;  // the main light, in front of the section and above it
uniform vec3 color;
uniform float alpha;

out vec4 fragment_color;

// The parts of the light. A surface facing straight up takes 1 of them together, so that a flat layer
// shows its own colour; the cut face takes a ninth less and stands apart from the top.
const float AMBIENT = 0.45;
const float MAIN = 0.60;
const float SIDE = 0.24;

// A weak light from the left, in front and above: it tells left slopes from right ones.
const vec3 SIDE_DIRECTION = vec3(-0.701, -0.350, 0.621);

float brightness(vec3 normal)
{
    // One direction for all, from the ground at the middle of the front edge: light from a point would reach
    // tall tops at a slant and leave them dark.
    vec3 to_light = normalize(lightPos - vec3(lightPos.x, 0.0, 0.0));
    float ambient = 0.80 + 0.20 * normal.z;
    float main_light = max(dot(normal, to_light), 0.0);
    float side_light = max(dot(normal, SIDE_DIRECTION), 0.0);
    return AMBIENT * ambient + MAIN * main_light + SIDE * side_light;
}

void main()
{
    // The underside of a layer has no normals. It shows where what was beside or beneath it is gone, as
    // the wall of a filled hole; there the triangle's own normal, towards the viewer, stands in.
    vec3 face = cross(dFdx(surface_position), dFdy(surface_position));
    float size = dot(surface_normal, surface_normal);
    bool has_normal = size > 0.0 && surface_normal.z >= 0.0;
    vec3 normal = has_normal ? surface_normal * inversesqrt(size) : normalize(face);
    float light = brightness(normal);
    // Beyond its own brightness a colour cannot grow, so what faces the light turns paler instead.
    vec3 lit = color * lightColor * min(light, 1.0);
    lit += (vec3(1.0) - lit) * clamp(light - 1.0, 0.0, 1.0);
    fragment_color = vec4(lit, alpha);
}

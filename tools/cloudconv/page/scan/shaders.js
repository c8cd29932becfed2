// What the graphics processor does with points and with the picture that they make.

/** Points are packed as 21 bits a coordinate: steps of a grid, from the lowest corner. */
const unpacking = `
uvec3 unpacked(uvec2 pair) {
    return uvec3(pair.x & 0x1FFFFFu,
                 (pair.x >> 21) | ((pair.y & 0x3FFu) << 11),
                 (pair.y >> 10) & 0x1FFFFFu);
}
`;

export const pointVertexShader = `#version 300 es
precision highp float;
precision highp int;
layout(location = 0) in uvec2 place;
layout(location = 1) in float intensity;
layout(location = 2) in vec3 colour;
uniform mat4 toScreen;
uniform float pointSize;
/** Pixels of a unit at distance 1; 0 when points keep their size. */
uniform float growth;
/** 0 by intensity, 1 by height, 2 by colour. */
uniform int colourBy;
/** Which values have the colours of the ends of the scale. */
uniform vec2 window;
uniform sampler2D scale;
uniform bool picks;
uniform int firstPoint;
out vec3 shade;
flat out vec4 code;
${unpacking}
vec3 shadeOf(float value) {
    float share = clamp((value - window.x) / max(window.y - window.x, 1e-12), 0.0, 1.0);
    return texture(scale, vec2(share * 255.0 / 256.0 + 0.5 / 256.0, 0.5)).rgb;
}

void main() {
    vec3 steps = vec3(unpacked(place));
    gl_Position = toScreen * vec4(steps / 2097151.0, 1.0);
    gl_PointSize = max(1.0, growth > 0.0 ? pointSize * growth / gl_Position.w : pointSize);
    if (colourBy == 2) {
        shade = colour;
    } else if (colourBy == 1) {
        shade = shadeOf(steps.z / 2097151.0);
    } else {
        // 0 is no intensity at all.
        shade = intensity == 0.0 ? vec3(0.55) : shadeOf((intensity * 65535.0 - 1.0) / 65534.0);
    }
    int number = firstPoint + gl_VertexID + 1;
    code = vec4(number & 255, (number >> 8) & 255, (number >> 16) & 255, number >> 24) / 255.0;
    if (picks) {
        gl_PointSize = max(gl_PointSize, 7.0);
    }
}
`;

export const pointFragmentShader = `#version 300 es
precision highp float;
in vec3 shade;
flat in vec4 code;
uniform bool picks;
uniform bool isRound;
out vec4 result;

void main() {
    if (isRound && length(gl_PointCoord - 0.5) > 0.5) {
        discard;
    }
    result = picks ? code : vec4(shade, 1.0);
}
`;

export const screenVertexShader = `#version 300 es
void main() {
    // One triangle over the whole screen.
    vec2 corner = vec2(gl_VertexID == 1 ? 3.0 : -1.0, gl_VertexID == 2 ? 3.0 : -1.0);
    gl_Position = vec4(corner, 0.0, 1.0);
}
`;

/** Darkens what lies behind its neighbours on the screen, so that edges and hollows show. */
export const screenFragmentShader = `#version 300 es
precision highp float;
uniform sampler2D picture;
uniform sampler2D depths;
uniform vec2 depthRange;
uniform float strength;
uniform float reach;
uniform vec3 ground;
out vec4 result;

/** The logarithm of the distance: a step counts alike near and far. */
float farness(ivec2 at, ivec2 last) {
    float depth = texelFetch(depths, clamp(at, ivec2(0), last), 0).r;
    if (depth == 1.0) {
        return 1e9;
    }
    float near = depthRange.x;
    float far = depthRange.y;
    return log2(2.0 * near * far / (far + near - (2.0 * depth - 1.0) * (far - near)));
}

void main() {
    ivec2 last = textureSize(depths, 0) - 1;
    ivec2 at = ivec2(gl_FragCoord.xy);
    float here = farness(at, last);
    if (here > 1e8) {
        result = vec4(ground, 1.0);
        return;
    }
    vec3 colour = texelFetch(picture, at, 0).rgb;
    if (strength > 0.0) {
        float radius = max(1.0, floor(reach));
        float behind = 0.0;
        for (int i = 0; i < 8; ++i) {
            float angle = float(i) * 0.785398;
            ivec2 offset = ivec2(round(vec2(cos(angle), sin(angle)) * radius));
            float there = farness(at + offset, last);
            behind += there > 1e8 ? 0.0 : max(0.0, here - there);
        }
        colour *= exp(-strength * behind / 8.0);
    }
    result = vec4(colour, 1.0);
}
`;

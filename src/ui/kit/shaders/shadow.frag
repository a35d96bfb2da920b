#version 440

// The shadow of a rounded box: the distance to its edge, softened like a Gauss blur.

layout(location = 0) in vec2 qt_TexCoord0;
layout(location = 0) out vec4 fragColor;

layout(std140, binding = 0) uniform buf {
    mat4 qt_Matrix;
    float qt_Opacity;
    float radius;
    float sigma;
    vec2 extent;
    vec2 box;
    vec2 shift;
    vec4 tint;
};

float boxDistance(vec2 point, vec2 halfSize, float corner) {
    vec2 q = abs(point) - halfSize + corner;
    return length(max(q, vec2(0.0))) + min(max(q.x, q.y), 0.0) - corner;
}

void main() {
    vec2 point = (qt_TexCoord0 - 0.5) * extent - shift;
    float d = boxDistance(point, box * 0.5, radius) / (sigma * 1.41421356);
    // 1 - erf, near enough for the eye.
    float cover = 1.0 / (1.0 + exp(2.4 * d));
    // The tint comes premultiplied.
    fragColor = tint * (cover * qt_Opacity);
}

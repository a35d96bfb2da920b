#version 440

// A rounded box filled along its diagonal.

layout(location = 0) in vec2 qt_TexCoord0;
layout(location = 0) out vec4 fragColor;

layout(std140, binding = 0) uniform buf {
    mat4 qt_Matrix;
    float qt_Opacity;
    float radius;
    vec2 extent;
    vec4 startColor;
    vec4 endColor;
};

void main() {
    vec2 q = abs((qt_TexCoord0 - 0.5) * extent) - extent * 0.5 + radius;
    float d = length(max(q, vec2(0.0))) + min(max(q.x, q.y), 0.0) - radius;
    float cover = clamp(0.5 - d / max(fwidth(d), 0.0001), 0.0, 1.0);
    vec4 colour = mix(startColor, endColor, (qt_TexCoord0.x + qt_TexCoord0.y) * 0.5);
    fragColor = colour * (cover * qt_Opacity);
}

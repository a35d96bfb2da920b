#version 440

// A rounded pane of frosted glass: blurred background, livelier colours, material, tint.

layout(location = 0) in vec2 qt_TexCoord0;
layout(location = 0) out vec4 fragColor;

layout(std140, binding = 0) uniform buf {
    mat4 qt_Matrix;
    float qt_Opacity;
    float radius;
    float saturation;
    vec2 extent;
    vec2 pane;
    vec2 captured;
    vec4 material;
    vec4 tint;
};
layout(binding = 1) uniform sampler2D blurred;

void main() {
    vec2 point = (qt_TexCoord0 - 0.5) * extent;
    vec2 q = abs(point) - pane * 0.5 + radius;
    float d = length(max(q, vec2(0.0))) + min(max(q.x, q.y), 0.0) - radius;
    float cover = clamp(0.5 - d / max(fwidth(d), 0.0001), 0.0, 1.0);
    vec3 colour = texture(blurred, point / captured + 0.5).rgb;
    float grey = dot(colour, vec3(0.2126, 0.7152, 0.0722));
    colour = clamp(mix(vec3(grey), colour, saturation), 0.0, 1.0);
    // Colours come as premultiplied.
    colour = colour * (1.0 - material.a) + material.rgb;
    colour = colour * (1.0 - tint.a) + tint.rgb;
    float alpha = cover * qt_Opacity;
    fragColor = vec4(colour * alpha, alpha);
}

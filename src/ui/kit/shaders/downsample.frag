#version 440

// Half of the dual filter blur: into a texture of half the size.

layout(location = 0) in vec2 qt_TexCoord0;
layout(location = 0) out vec4 fragColor;

layout(std140, binding = 0) uniform buf {
    mat4 qt_Matrix;
    float qt_Opacity;
    vec2 texel;  // of the source
};
layout(binding = 1) uniform sampler2D source;

void main() {
    vec4 sum = texture(source, qt_TexCoord0) * 4.0;
    sum += texture(source, qt_TexCoord0 + vec2(-texel.x, -texel.y));
    sum += texture(source, qt_TexCoord0 + vec2(texel.x, -texel.y));
    sum += texture(source, qt_TexCoord0 + vec2(-texel.x, texel.y));
    sum += texture(source, qt_TexCoord0 + vec2(texel.x, texel.y));
    fragColor = sum / 8.0;
}

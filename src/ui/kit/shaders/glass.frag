#version 440

// A rounded pane of thick glass over what is behind it. The flat of the pane blurs a little and
// brightens; the rim is a lens that bends inwards, splits colours slightly, and catches light.

layout(location = 0) in vec2 qt_TexCoord0;
layout(location = 0) out vec4 fragColor;

layout(std140, binding = 0) uniform buf {
    mat4 qt_Matrix;
    float qt_Opacity;
    float radius;     // of the corners, points
    float rim;        // width of the lens along the edge, points
    float bend;       // how far the lens looks inwards at the very edge, points
    float saturation;
    float sharpness;  // how much of the unblurred background the flat lets through
    float sheen;      // strength of the light on the rim
    vec2 extent;      // of this pane with its margin for softness, points
    vec2 pane;        // of the glass itself, points
    vec2 captured;    // of what is captured behind it, points
    vec4 tint;        // colour laid over, premultiplied
};
layout(binding = 1) uniform sampler2D sharp;
layout(binding = 2) uniform sampler2D blurred;

float boxDistance(vec2 point, vec2 halfSize, float corner) {
    vec2 q = abs(point) - halfSize + corner;
    return length(max(q, vec2(0.0))) + min(max(q.x, q.y), 0.0) - corner;
}

vec2 boxNormal(vec2 point, vec2 halfSize, float corner) {
    vec2 q = abs(point) - halfSize + corner;
    vec2 outwards = (q.x > 0.0 && q.y > 0.0) ? normalize(q) : (q.x > q.y ? vec2(1.0, 0.0) : vec2(0.0, 1.0));
    return outwards * sign(point);
}

vec3 behind(vec2 point, float share) {
    vec2 uv = point / captured + 0.5;
    return mix(texture(blurred, uv).rgb, texture(sharp, uv).rgb, share);
}

void main() {
    vec2 point = (qt_TexCoord0 - 0.5) * extent;
    vec2 halfPane = pane * 0.5;
    float d = boxDistance(point, halfPane, radius);
    float edge = fwidth(d);
    float cover = clamp(0.5 - d / max(edge, 0.0001), 0.0, 1.0);
    if (cover <= 0.0) {
        fragColor = vec4(0.0);
        return;
    }
    float depth = max(-d, 0.0);
    vec2 normal = boxNormal(point, halfPane, radius);

    // A quarter round profile: flat at the inner end, upright at the edge.
    float t = clamp(1.0 - depth / rim, 0.0, 1.0);
    float slope = 1.0 - sqrt(max(1.0 - t * t, 0.0));
    vec2 shift = -normal * slope * bend;
    float share = mix(sharpness, 0.6, smoothstep(0.1, 0.9, t));

    vec3 colour;
    colour.r = behind(point + shift * 0.94, share).r;
    colour.g = behind(point + shift, share).g;
    colour.b = behind(point + shift * 1.06, share).b;

    float grey = dot(colour, vec3(0.2126, 0.7152, 0.0722));
    colour = clamp(mix(vec3(grey), colour, saturation), 0.0, 1.0);
    colour = mix(colour, colour * (1.0 - tint.a) + tint.rgb, 1.0 - 0.35 * t * t);

    // Light from the upper left, and its way out at the lower right.
    float facing = dot(normal, normalize(vec2(-0.45, -0.89)));
    float line = 1.0 - smoothstep(0.35, 1.5, depth);
    float glow = exp(-depth / 4.5);
    float lit = pow(max(facing, 0.0), 1.6);
    float exiting = pow(max(-facing, 0.0), 2.2);
    colour += sheen * (line * (0.18 + 0.82 * lit + 0.55 * exiting) + glow * (0.22 * lit + 0.12 * exiting));
    // The lower edge turns away from the light and darkens a trace, which gives the pane its body.
    colour -= 0.07 * exp(-depth / 3.0) * (1.0 - line) * max(-facing, 0.0);

    float alpha = cover * qt_Opacity;
    fragColor = vec4(clamp(colour, 0.0, 1.0) * alpha, alpha);
}

// Vectors are arrays of three numbers, matrices of sixteen, column by column as WebGL has them.

export function cross(a, b) {
    return [
        a[1] * b[2] - a[2] * b[1],
        a[2] * b[0] - a[0] * b[2],
        a[0] * b[1] - a[1] * b[0],
    ];
}

export function dot(a, b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

/** a + share * b */
export function sum(a, b, share = 1) {
    return [a[0] + share * b[0], a[1] + share * b[1], a[2] + share * b[2]];
}

/** a b */
export function product(a, b) {
    const result = new Float32Array(16);
    for (let column = 0; column < 4; ++column) {
        for (let row = 0; row < 4; ++row) {
            for (let k = 0; k < 4; ++k) {
                result[4 * column + row] += a[4 * k + row] * b[4 * column + k];
            }
        }
    }
    return result;
}

/** What a camera with these axes sees from a place: x to the right, y up, z towards it. */
export function viewMatrix(right, up, back, eye) {
    return new Float32Array([
        right[0], up[0], back[0], 0,
        right[1], up[1], back[1], 0,
        right[2], up[2], back[2], 0,
        -dot(right, eye), -dot(up, eye), -dot(back, eye), 1,
    ]);
}

/** @param slope  the tangent of half the angle of view, upwards */
export function perspective(slope, aspect, near, far) {
    return new Float32Array([
        1 / (slope * aspect), 0, 0, 0,
        0, 1 / slope, 0, 0,
        0, 0, (far + near) / (near - far), -1,
        0, 0, (2 * far * near) / (near - far), 0,
    ]);
}

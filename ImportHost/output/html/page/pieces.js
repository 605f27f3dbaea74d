/** Bytes from their text in base 64. */
function decodeBase64(text) {
    if (Uint8Array.fromBase64) {
        return Uint8Array.fromBase64(text);
    }
    const characters = atob(text);
    const bytes = new Uint8Array(characters.length);
    for (let i = 0; i < bytes.length; ++i) {
        bytes[i] = characters.charCodeAt(i);
    }
    return bytes;
}

const roleNow = 0;
const roleBefore = 1;

/** The heads of all pieces, and where their numbers lie in the bytes. */
function readPieces(bytes) {
    const pieces = [];
    const view = new DataView(bytes.buffer, bytes.byteOffset, bytes.byteLength);
    if (bytes.length < 8 || String.fromCharCode(...bytes.subarray(0, 4)) !== 'IHS1') {
        return pieces;
    }
    const count = view.getUint32(4, true);
    let data = 8 + 64 * count;
    for (let i = 0; i < count; ++i) {
        const at = 8 + 64 * i;
        const piece = {
            low: [0, 1, 2].map((axis) => view.getFloat64(at + 8 * axis, true)),
            step: [0, 1, 2].map((axis) => view.getFloat32(at + 24 + 4 * axis, true)),
            object: view.getUint32(at + 36, true),
            role: view.getUint32(at + 40, true),
            points: view.getUint32(at + 44, true),
            triangles: view.getUint32(at + 48, true),
            edges: view.getUint32(at + 52, true),
            data,
        };
        data += 6 * piece.points + 6 * piece.triangles + 4 * piece.edges;
        pieces.push(piece);
    }
    return pieces;
}

/** Four bytes as they lie in memory: the three of a number from the low one on, and one more. */
function packed(number, last) {
    return new Uint32Array(Uint8Array.of(number & 255, (number >> 8) & 255, (number >> 16) & 255, last).buffer)[0];
}

function middle(values) {
    const sorted = Float64Array.from(values).sort();
    return sorted.length ? sorted[sorted.length >> 1] : 0;
}

/**
 * All shapes in a few long arrays, relative to an origin in their midst: what is drawn has seven digits, which are not
 * enough for coordinates of a whole country.
 */
class Shapes {
    constructor(bytes, objects) {
        this.objects = objects;
        this.pieces = readPieces(bytes).filter((piece) => piece.object < objects.length);
        this.firstOf = new Int32Array(objects.length).fill(-1); // chains of the pieces of each object
        this.pieces.forEach((piece, index) => {
            piece.index = index;
            piece.size = 65535 * Math.hypot(...piece.step); // from corner to corner
            piece.next = this.firstOf[piece.object];
            this.firstOf[piece.object] = index;
        });
        this.origin = [0, 1, 2].map((axis) => middle(this.pieces.map((piece) => piece.low[axis])));
        this.allocate();
        const words = new Uint16Array(bytes.buffer, bytes.byteOffset, bytes.length >> 1);
        for (const piece of this.pieces) {
            this.place(piece, words);
        }
    }

    allocate() {
        let points = 0;
        let triangles = 0;
        let edges = 0;
        for (const piece of this.pieces) {
            piece.firstPoint = points;
            piece.firstTriangle = triangles;
            piece.firstEdge = edges;
            points += piece.points;
            triangles += piece.triangles;
            edges += piece.edges;
        }
        this.positions = new Float32Array(3 * points);
        this.owners = new Uint32Array(points); // the object's number from 1, for finding what was clicked
        this.triangles = new Uint32Array(3 * triangles);
        this.edges = new Uint32Array(2 * edges);
    }

    /** Copies the numbers of one piece. */
    place(piece, words) {
        const [x, y, z] = [0, 1, 2].map((axis) => piece.low[axis] - this.origin[axis]);
        const [sx, sy, sz] = piece.step;
        const positions = this.positions;
        let at = piece.data >> 1;
        for (let i = 0, p = 3 * piece.firstPoint; i < piece.points; ++i, p += 3, at += 3) {
            positions[p] = x + sx * words[at];
            positions[p + 1] = y + sy * words[at + 1];
            positions[p + 2] = z + sz * words[at + 2];
        }
        this.owners.fill(packed(piece.object + 1, 255), piece.firstPoint, piece.firstPoint + piece.points);
        const triangles = 3 * piece.triangles;
        for (let i = 0, t = 3 * piece.firstTriangle; i < triangles; ++i, ++t) {
            this.triangles[t] = piece.firstPoint + words[at + i];
        }
        at += triangles;
        for (let i = 0, e = 2 * piece.firstEdge; i < 2 * piece.edges; ++i, ++e) {
            this.edges[e] = piece.firstPoint + words[at + i];
        }
    }

    /** Low and high corner of a piece as it is drawn. */
    boxOf(piece) {
        const low = piece.low.map((value, axis) => value - this.origin[axis]);
        return [low, low.map((value, axis) => value + 65535 * piece.step[axis])];
    }

    /** The pieces of an object in a role. */
    *piecesOf(object, role) {
        for (let index = this.firstOf[object]; index >= 0; index = this.pieces[index].next) {
            if (this.pieces[index].role === role) {
                yield this.pieces[index];
            }
        }
    }

    /** The middle of an object's box in a role; null where it has none. */
    centreOf(object, role) {
        const low = [Infinity, Infinity, Infinity];
        const high = [-Infinity, -Infinity, -Infinity];
        for (const piece of this.piecesOf(object, role)) {
            const box = this.boxOf(piece);
            for (let axis = 0; axis < 3; ++axis) {
                low[axis] = Math.min(low[axis], box[0][axis]);
                high[axis] = Math.max(high[axis], box[1][axis]);
            }
        }
        return low[0] > high[0] ? null : low.map((value, axis) => (value + high[axis]) / 2);
    }
}

const surfaceVertexShader = `
attribute vec4 fill;
varying vec3 place;
varying vec4 colour;
void main() {
    place = position;
    colour = fill;
    gl_Position = projectionMatrix * modelViewMatrix * vec4(position, 1.0);
}`;

// Back sides are seen only where something is cut: they show what is cut as a darker surface.
const surfaceFragmentShader = `
uniform float cut;
uniform bool isCut;
uniform vec4 oneColour;
varying vec3 place;
varying vec4 colour;
void main() {
    if (place.z > cut) { discard; }
    vec4 base = oneColour.a > 0.0 ? oneColour : colour;
    vec3 normal = normalize(cross(dFdx(place), dFdy(place)));
    float light = 0.70 + 0.30 * dot(normal, normalize(vec3(-0.35, -0.6, 0.85)));
    if (isCut && !gl_FrontFacing) { light = 0.55; }
    gl_FragColor = vec4(base.rgb * light, base.a);
}`;

const lineFragmentShader = `
uniform float cut;
uniform vec4 oneColour;
varying vec3 place;
varying vec4 colour;
void main() {
    if (place.z > cut) { discard; }
    gl_FragColor = oneColour.a > 0.0 ? oneColour : vec4(colour.rgb, 1.0);
}`;

const pickVertexShader = `
attribute vec4 owner;
varying vec3 place;
varying vec4 colour;
void main() {
    place = position;
    colour = owner;
    gl_Position = projectionMatrix * modelViewMatrix * vec4(position, 1.0);
}`;

const pickFragmentShader = `
uniform float cut;
varying vec3 place;
varying vec4 colour;
void main() {
    if (place.z > cut) { discard; }
    gl_FragColor = colour;
}`;

/** How a piece is drawn. */
const hidden = 0;
const solid = 1;
const ghost = 2;
const context = 3;
const chosen = 4;

/** So many triangles are drawn until it is known how fast the machine draws; never fewer than the second number. */
const firstTriangles = 150000;
const fewestTriangles = 100000;

/** So many of a layer while a slow machine turns the view: those of its largest objects. */
const movingTriangles = 30000;

/** What may pass until a picture of a large model is drawn, in milliseconds. */
const longestFrame = 400;

/** The part of a picked neighbourhood that is looked at, in pixels from its middle. */
const pickReach = 3;

function bytesOfColour(hex) {
    const value = parseInt(hex.slice(1), 16);
    return [value >> 16, (value >> 8) & 255, value & 255];
}

function packedColour(hex, opacity) {
    const [r, g, b] = bytesOfColour(hex);
    return packed(r + 256 * g + 65536 * b, opacity);
}

/** The objects in three dimensions: a few large meshes that share their points, one for each way of drawing. */
class Scene {
    constructor(frame, shapes, report, statuses) {
        this.frame = frame;
        this.shapes = shapes;
        this.report = report;
        this.statuses = statuses;
        this.afterDrawing = () => {};
        this.mostTriangles = firstTriangles;
        this.leftOut = 0; // pieces that are too many to draw
        this.bySize = [...shapes.pieces].sort((a, b) => b.size - a.size);
        this.renderer = new THREE.WebGLRenderer({ antialias: true, preserveDrawingBuffer: false });
        this.renderer.setPixelRatio(Math.min(window.devicePixelRatio || 1, 2));
        this.renderer.sortObjects = true;
        this.canvas = this.renderer.domElement;
        frame.prepend(this.canvas);
        this.scene = new THREE.Scene();
        this.uniforms = { cut: { value: 1e30 }, isCut: { value: false } };
        this.states = new Uint8Array(shapes.pieces.length);
        this.addAttributes();
        this.addMeshes();
        this.pickTarget = new THREE.WebGLRenderTarget(2 * pickReach + 1, 2 * pickReach + 1);
        this.pickMaterial = this.material(pickVertexShader, pickFragmentShader, {});
        this.camera = new Camera(this.canvas, () => this.moved());
        this.camera.setExtent(this.boxesOf(() => true));
        this.camera.controls.addEventListener('start', () => {
            this.isTouched = true;
        });
        this.resize();
        new ResizeObserver(() => this.resize()).observe(frame);
    }

    addAttributes() {
        const points = this.shapes.positions.length / 3;
        const fills = new Uint32Array(points);
        const strokes = new Uint32Array(points);
        for (const piece of this.shapes.pieces) {
            const object = this.report.objects[piece.object];
            const status = this.statuses.of(object.status);
            const isBefore = piece.role === roleBefore;
            const stroke = this.report.isFirst ? '#59636e' : status.stroke;
            const fill = isBefore ? stroke : this.report.isFirst ? '#d8dde3' : status.fill;
            // What is gone is more than a place that something left.
            const opacity = object.isSpace ? 40 : !isBefore ? 255 : status.name === 'removed' ? 105 : 30;
            fills.fill(packedColour(fill, opacity), piece.firstPoint, piece.firstPoint + piece.points);
            strokes.fill(packedColour(stroke, 255), piece.firstPoint, piece.firstPoint + piece.points);
        }
        const bytes = (words) => new THREE.BufferAttribute(new Uint8Array(words.buffer), 4, true);
        this.position = new THREE.BufferAttribute(this.shapes.positions, 3);
        this.fills = bytes(fills);
        this.strokes = bytes(strokes);
        this.owners = bytes(this.shapes.owners);
    }

    material(vertexShader, fragmentShader, options) {
        return new THREE.ShaderMaterial({
            vertexShader, fragmentShader, side: THREE.DoubleSide, extensions: { derivatives: true },
            uniforms: { ...this.uniforms, oneColour: { value: new THREE.Vector4(0, 0, 0, 0) } }, ...options,
        });
    }

    addMeshes() {
        const surface = (options) => this.material(surfaceVertexShader, surfaceFragmentShader,
            { polygonOffset: true, polygonOffsetFactor: 1, polygonOffsetUnits: 1, ...options });
        const line = (options) => this.material(surfaceVertexShader, lineFragmentShader, options);
        const through = { transparent: true, depthWrite: false };
        // What stayed is drawn twice, first its depth alone: then only its nearest surface covers what lies behind.
        this.layers = [
            { state: solid, mesh: this.addMesh(surface({}), 0) },
            { state: solid, lines: true, mesh: this.addMesh(line({}), 1) },
            { state: ghost, mesh: this.addMesh(surface(through), 2) },
            { state: ghost, lines: true, mesh: this.addMesh(line(through), 3) },
            { state: context, depthOnly: true, mesh: this.addMesh(surface({ transparent: true, colorWrite: false }), 4) },
            { state: context, mesh: this.addMesh(surface(through), 5) },
            { state: context, lines: true, mesh: this.addMesh(line(through), 6) },
            { state: chosen, mesh: this.addMesh(surface({ transparent: true }), 7) },
            { state: chosen, lines: true, mesh: this.addMesh(line(through), 8) },
        ];
        // The selected object is seen through everything, and covers nothing but itself.
        const selection = this.layers.find((layer) => layer.state === chosen);
        selection.mesh.onBeforeRender = (renderer) => renderer.clearDepth();
    }

    addMesh(material, order) {
        const geometry = new THREE.BufferGeometry();
        geometry.setAttribute('position', this.position);
        geometry.setAttribute('owner', this.owners);
        const isLine = material.fragmentShader === lineFragmentShader;
        geometry.setAttribute('fill', isLine ? this.strokes : this.fills);
        const mesh = isLine ? new THREE.LineSegments(geometry, material) : new THREE.Mesh(geometry, material);
        mesh.renderOrder = order;
        mesh.frustumCulled = false;
        mesh.visible = false;
        this.scene.add(mesh);
        return mesh;
    }

    setTheme(colours) {
        this.background = colours.background;
        this.renderer.setClearColor(this.background, 1);
        const set = (state, lines, colour, opacity) => {
            for (const layer of this.layers) {
                if (layer.state === state && Boolean(layer.lines) === lines) {
                    const [r, g, b] = bytesOfColour(colour);
                    layer.mesh.material.uniforms.oneColour.value.set(r / 255, g / 255, b / 255, opacity);
                }
            }
        };
        set(context, false, colours.context, 0.3);
        set(context, true, colours.contextLine, 0.35);
        set(chosen, true, colours.chosenLine, 1);
        this.draw();
    }

    /** Draws every piece as @p stateOf says, and the chosen object once more above the others. */
    show(stateOf, selected) {
        this.shapes.pieces.forEach((piece, index) => {
            this.states[index] = stateOf(piece);
        });
        this.thinOut();
        for (const layer of this.layers) {
            if (layer.state !== chosen) {
                this.fill(layer, (piece) => this.states[piece.index] === layer.state &&
                    !(layer.lines && piece.isPlain));
            }
        }
        this.select(selected);
    }

    /**
     * Draws once more to see how long it takes, and tells whether another part of the model should be drawn than is
     * now. A machine with a graphics card draws everything; one without would take seconds for a large model.
     */
    adapt() {
        const gl = this.renderer.getContext();
        const finish = () => gl.readPixels(0, 0, 1, 1, gl.RGBA, gl.UNSIGNED_BYTE, new Uint8Array(4));
        finish();
        const start = performance.now();
        this.drawNow();
        finish();
        const triangles = this.renderer.info.render.triangles;
        const possible = Math.max(triangles * longestFrame / Math.max(performance.now() - start, 1), fewestTriangles);
        const isOther = this.leftOut > 0 && possible > 1.5 * triangles || possible < 0.5 * triangles;
        this.mostTriangles = isOther ? possible : this.mostTriangles;
        return isOther;
    }

    /** Hides the smallest pieces and the edges of others as far as there are too many to draw, what stayed first. */
    thinOut() {
        let triangles = 0;
        let edges = 0;
        this.leftOut = 0;
        for (const isContext of [false, true]) {
            for (const piece of this.bySize) {
                const state = this.states[piece.index];
                if (state === hidden || (state === context) !== isContext) {
                    continue;
                }
                triangles += piece.triangles * (isContext ? 2 : 1);
                edges += piece.edges;
                piece.isPlain = edges > this.mostTriangles / 2;
                if (triangles > this.mostTriangles) {
                    this.states[piece.index] = hidden;
                    ++this.leftOut;
                }
            }
        }
    }

    select(selected) {
        for (const layer of this.layers) {
            if (layer.state === chosen) {
                this.fill(layer, (piece) => piece.object === selected &&
                    (piece.role === roleNow || this.report.objects[selected].status === 'removed'));
            }
        }
        this.draw();
    }

    /** The numbers of those points that a layer draws. */
    fill(layer, isDrawn) {
        const geometry = layer.mesh.geometry;
        const source = layer.lines ? this.shapes.edges : this.shapes.triangles;
        const range = (piece) => layer.lines ? [2 * piece.firstEdge, 2 * piece.edges]
            : [3 * piece.firstTriangle, 3 * piece.triangles];
        let size = 0;
        const drawn = this.bySize.filter(isDrawn);
        for (const piece of drawn) {
            size += range(piece)[1];
        }
        const numbers = new Uint32Array(size);
        let at = 0;
        for (const piece of drawn) {
            const [first, count] = range(piece);
            numbers.set(source.subarray(first, first + count), at);
            at += count;
        }
        geometry.setIndex(new THREE.BufferAttribute(numbers, 1));
        layer.mesh.visible = size > 0;
        layer.isUsed = size > 0;
    }

    /** Cuts off what is above a height in the model; null for nothing. */
    setCut(height) {
        this.uniforms.isCut.value = height !== null;
        this.uniforms.cut.value = height === null ? 1e30 : height - this.shapes.origin[2];
        this.draw();
    }

    /** The boxes of pieces, but for single ones that lie far away from most others. */
    boxesOf(isMeant) {
        const boxes = this.shapes.pieces.filter(isMeant).map((piece) => this.shapes.boxOf(piece));
        const limits = [0, 1, 2].map((axis) => {
            const lows = Float64Array.from(boxes, (box) => box[0][axis]).sort();
            const part = (share) => lows[Math.floor(share * (lows.length - 1))];
            const spread = Math.max(part(0.95) - part(0.05), 10);
            return [part(0.05) - 5 * spread, part(0.95) + 5 * spread];
        });
        return boxes.filter(([low]) =>
            limits.every(([least, most], axis) => low[axis] >= least && low[axis] <= most));
    }

    /** Everything that is drawn, from a direction or as it is looked at now. */
    fit(direction) {
        const drawn = this.boxesOf((piece) => this.states[piece.index] !== hidden);
        this.camera.fit(drawn.length ? drawn : this.boxesOf(() => true), direction);
    }

    fitObject(object) {
        this.camera.fit(this.shapes.pieces.filter((piece) => piece.object === object).map((piece) => {
            const [low, high] = this.shapes.boxOf(piece);
            const room = 0.3 * Math.hypot(...high.map((value, axis) => value - low[axis])) + 0.3;
            return [low.map((value) => value - room), high.map((value) => value + room)];
        }));
    }

    /** The first look stays on the whole model, whatever happens to the window, until someone turns it. */
    resize() {
        const width = Math.max(this.frame.clientWidth, 1);
        const height = Math.max(this.frame.clientHeight, 1);
        if (this.size === `${width} ${height}`) {
            return;
        }
        this.size = `${width} ${height}`;
        this.renderer.setSize(width, height);
        this.camera.resize(width, height);
        if (!this.isTouched) {
            this.fit(viewDirections.corner);
        }
        if (this.isShown) {
            this.drawNow(); // at once: a canvas of another size is empty
        }
    }

    /** The view is turned: on a slow machine without lines until it stands still. */
    moved() {
        const now = performance.now();
        this.isSlow = this.lastFrame !== undefined && this.isMoving && now - this.lastFrame > 70;
        this.lastFrame = now;
        this.isMoving = true;
        clearTimeout(this.rest);
        this.rest = setTimeout(() => {
            this.isMoving = false;
            this.draw();
        }, 180);
        this.draw();
    }

    draw() {
        if (!this.isWaiting) {
            this.isWaiting = true;
            requestAnimationFrame(() => {
                this.isWaiting = false;
                this.drawNow();
            });
        }
    }

    drawNow() {
        this.isShown = true;
        const plain = this.isMoving && this.isSlow;
        for (const layer of this.layers) {
            layer.mesh.visible = layer.isUsed && !(plain && (layer.lines || layer.depthOnly));
            layer.mesh.geometry.setDrawRange(0, plain && !layer.lines ? 3 * movingTriangles : Infinity);
        }
        this.camera.update();
        this.renderer.render(this.scene, this.camera.camera);
        this.afterDrawing();
    }

    /** The index of the object at a place of the canvas, those that are coloured before those that stayed; or -1. */
    pick(x, y) {
        const coloured = this.pickAmong(x, y, (layer) => layer.state === solid || layer.state === ghost);
        return coloured >= 0 ? coloured : this.pickAmong(x, y, (layer) => layer.state === context);
    }

    pickAmong(x, y, isMeant) {
        const size = 2 * pickReach + 1;
        const camera = this.camera.camera;
        for (const layer of this.layers) {
            layer.mesh.visible = layer.isUsed && !layer.lines && !layer.depthOnly && isMeant(layer);
        }
        camera.setViewOffset(this.frame.clientWidth, this.frame.clientHeight, x - pickReach, y - pickReach, size, size);
        this.scene.overrideMaterial = this.pickMaterial;
        this.renderer.setRenderTarget(this.pickTarget);
        this.renderer.setClearColor(0x000000, 0);
        this.renderer.clear();
        this.renderer.render(this.scene, camera);
        const pixels = new Uint8Array(4 * size * size);
        this.renderer.readRenderTargetPixels(this.pickTarget, 0, 0, size, size, pixels);
        this.renderer.setRenderTarget(null);
        this.renderer.setClearColor(this.background, 1);
        this.scene.overrideMaterial = null;
        camera.clearViewOffset();
        return this.nearest(pixels, size);
    }

    /** The object whose pixel is closest to the middle. */
    nearest(pixels, size) {
        let best = -1;
        let least = Infinity;
        for (let i = 0; i < size * size; ++i) {
            const number = pixels[4 * i] + 256 * pixels[4 * i + 1] + 65536 * pixels[4 * i + 2];
            const distance = Math.hypot((i % size) - pickReach, Math.floor(i / size) - pickReach);
            if (number > 0 && distance < least) {
                least = distance;
                best = number - 1;
            }
        }
        return best;
    }

    /** Where a point of the model is on the canvas; null when it is behind the viewer or cut off. */
    project(point) {
        if (point[2] > this.uniforms.cut.value) {
            return null;
        }
        const place = new THREE.Vector3(...point).project(this.camera.camera);
        return place.z > 1 ? null
            : [(place.x + 1) / 2 * this.frame.clientWidth, (1 - place.y) / 2 * this.frame.clientHeight];
    }
}

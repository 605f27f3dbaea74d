/** Directions from which the model is looked at, towards the viewer. */
const viewDirections = {
    corner: [-0.55, -0.75, 0.55], top: [0, 0, 1], front: [0, -1, 0], back: [0, 1, 0], left: [-1, 0, 0], right: [1, 0, 0],
};

/** The camera: turns about a point with z upwards, by mouse, touch and keys. */
class Camera {
    constructor(canvas, changed) {
        this.camera = new THREE.PerspectiveCamera(32, 1, 0.1, 1000);
        this.camera.up.set(0, 0, 1);
        this.controls = new THREE.OrbitControls(this.camera, canvas);
        this.controls.enableKeys = false;
        this.controls.screenSpacePanning = true;
        this.controls.addEventListener('change', changed);
        this.radius = 1; // of everything there is
        this.middle = new THREE.Vector3();
    }

    /** What near and far planes must leave between them. */
    setExtent(boxes) {
        const box = new THREE.Box3();
        for (const [low, high] of boxes) {
            box.expandByPoint(new THREE.Vector3(...low)).expandByPoint(new THREE.Vector3(...high));
        }
        if (!box.isEmpty()) {
            box.getCenter(this.middle);
            this.radius = Math.max(box.getSize(new THREE.Vector3()).length() / 2, 0.5);
            this.controls.minDistance = 0.2;
            this.controls.maxDistance = 30 * this.radius;
        }
    }

    /** Looks at boxes so that they fill the view, from a direction or the one of now. */
    fit(boxes, direction) {
        if (boxes.length === 0) {
            return;
        }
        const towards = direction ? new THREE.Vector3(...direction)
            : this.camera.position.clone().sub(this.controls.target);
        if (towards.lengthSq() === 0) {
            towards.set(...viewDirections.corner);
        }
        towards.normalize();
        const up = Math.abs(towards.z) > 0.999 ? new THREE.Vector3(0, 1, 0) : new THREE.Vector3(0, 0, 1);
        const right = up.clone().cross(towards).normalize();
        up.crossVectors(towards, right);
        const { x, y, z, distance } = this.frameOf(boxes, right, up, towards);
        this.controls.target.set(0, 0, 0).addScaledVector(right, x).addScaledVector(up, y).addScaledVector(towards, z);
        this.camera.position.copy(this.controls.target).addScaledVector(towards, distance);
        this.controls.update();
    }

    /** The point to look at, along three axes, and the distance from which all corners of the boxes are in view. */
    frameOf(boxes, right, up, towards) {
        const points = [];
        for (const [low, high] of boxes) {
            for (let corner = 0; corner < 8; ++corner) {
                const point = new THREE.Vector3(corner & 1 ? high[0] : low[0], corner & 2 ? high[1] : low[1],
                    corner & 4 ? high[2] : low[2]);
                points.push([point.dot(right), point.dot(up), point.dot(towards)]);
            }
        }
        const between = (values) => {
            let [least, most] = [Infinity, -Infinity];
            for (const value of values) {
                least = Math.min(least, value);
                most = Math.max(most, value);
            }
            return (least + most) / 2;
        };
        let [x, y, z] = [0, 1, 2].map((axis) => between(points.map((point) => point[axis])));
        const tangent = Math.tan(this.camera.fov * Math.PI / 360);
        const distanceOf = () => points.reduce((most, point) => Math.max(most, point[2] - z +
            Math.max(Math.abs(point[1] - y) / tangent, Math.abs(point[0] - x) / (tangent * this.camera.aspect))), 0.5);
        let distance = distanceOf();
        for (let step = 0; step < 3; ++step) { // what is near takes more of the view than what is far
            x += distance * between(points.map((point) => (point[0] - x) / (distance - point[2] + z)));
            y += distance * between(points.map((point) => (point[1] - y) / (distance - point[2] + z)));
            distance = distanceOf();
        }
        return { x, y, z, distance: 1.06 * distance };
    }

    resize(width, height) {
        this.camera.aspect = width / height;
        this.camera.updateProjectionMatrix();
    }

    /** Near and far plane as close together as they can be, for the sake of depth. */
    update() {
        const distance = this.camera.position.distanceTo(this.middle);
        this.camera.near = Math.max(distance - 1.5 * this.radius, this.radius / 2000, 0.05);
        this.camera.far = Math.max(distance + 1.5 * this.radius, 2 * this.camera.near);
        this.camera.updateProjectionMatrix();
    }

    /** Turns about the vertical and about the horizontal, in radians. */
    turn(aside, upwards) {
        const offset = this.camera.position.clone().sub(this.controls.target);
        const distance = offset.length();
        const azimuth = Math.atan2(offset.y, offset.x) + aside;
        const limit = Math.PI / 2 - 0.001;
        const elevation = Math.max(-limit, Math.min(limit, Math.asin(offset.z / distance) + upwards));
        this.camera.position.copy(this.controls.target).add(new THREE.Vector3(
            distance * Math.cos(elevation) * Math.cos(azimuth), distance * Math.cos(elevation) * Math.sin(azimuth),
            distance * Math.sin(elevation)));
        this.controls.update();
    }

    /** Moves aside by a part of what is seen. */
    pan(right, up) {
        const distance = this.camera.position.distanceTo(this.controls.target);
        const size = 2 * distance * Math.tan(this.camera.fov * Math.PI / 360);
        const matrix = this.camera.matrix;
        const move = new THREE.Vector3().setFromMatrixColumn(matrix, 0).multiplyScalar(right * size)
            .addScaledVector(new THREE.Vector3().setFromMatrixColumn(matrix, 1), up * size);
        this.camera.position.add(move);
        this.controls.target.add(move);
        this.controls.update();
    }

    zoom(factor) {
        const offset = this.camera.position.clone().sub(this.controls.target).multiplyScalar(factor);
        this.camera.position.copy(this.controls.target).add(offset);
        this.controls.update();
    }
}

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
    setExtent(box) {
        box.getCenter(this.middle);
        this.radius = Math.max(box.getSize(new THREE.Vector3()).length() / 2, 0.5);
    }

    /** Looks at a box so that it fills the view, from a direction or the one of now. */
    fit(box, direction) {
        if (box.isEmpty()) {
            return;
        }
        const target = box.getCenter(new THREE.Vector3());
        const towards = direction ? new THREE.Vector3(...direction)
            : this.camera.position.clone().sub(this.controls.target);
        if (towards.lengthSq() === 0) {
            towards.set(...viewDirections.corner);
        }
        const distance = this.distanceFor(box, target, towards.normalize());
        this.controls.target.copy(target);
        this.camera.position.copy(target).addScaledVector(towards, distance);
        this.controls.update();
    }

    /** How far away the eight corners of a box are inside the view. */
    distanceFor(box, target, towards) {
        const up = Math.abs(towards.z) > 0.99 ? new THREE.Vector3(0, 1, 0) : new THREE.Vector3(0, 0, 1);
        const right = up.clone().cross(towards).normalize();
        up.crossVectors(towards, right);
        const tangent = Math.tan(this.camera.fov * Math.PI / 360);
        let distance = 1;
        for (let corner = 0; corner < 8; ++corner) {
            const point = new THREE.Vector3(corner & 1 ? box.max.x : box.min.x, corner & 2 ? box.max.y : box.min.y,
                corner & 4 ? box.max.z : box.min.z).sub(target);
            const side = Math.max(Math.abs(point.dot(up)) / tangent,
                Math.abs(point.dot(right)) / (tangent * this.camera.aspect));
            distance = Math.max(distance, point.dot(towards) + side);
        }
        return 1.08 * distance;
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

/** More marks than this would hide what they stand for. */
const mostMarks = 250;

/** Signs on the objects and arrows from where they were, drawn above the model. */
class Marks {
    constructor(canvas, scene, report, statuses) {
        this.canvas = canvas;
        this.scene = scene;
        this.report = report;
        this.statuses = statuses;
        this.objects = [];
        this.showMarks = true;
        this.showArrows = true;
        this.selected = -1;
    }

    /** Which objects are marked: those that are coloured. */
    setObjects(objects) {
        const shapes = this.scene.shapes;
        this.objects = objects.map((object) => {
            const now = shapes.centreOf(object.index, roleNow);
            const before = shapes.centreOf(object.index, roleBefore);
            return { object, at: now || before, from: object.changes.includes('moved') ? before : null,
                low: object.box ? object.box[0][2] - shapes.origin[2] : -Infinity };
        }).filter((entry) => entry.at !== null);
    }

    draw(colours) {
        const width = this.scene.frame.clientWidth;
        const height = this.scene.frame.clientHeight;
        const ratio = Math.min(window.devicePixelRatio || 1, 2);
        if (this.canvas.width !== Math.round(width * ratio) || this.canvas.height !== Math.round(height * ratio)) {
            this.canvas.width = Math.round(width * ratio);
            this.canvas.height = Math.round(height * ratio);
        }
        const pen = this.canvas.getContext('2d');
        pen.setTransform(ratio, 0, 0, ratio, 0, 0);
        pen.clearRect(0, 0, width, height);
        if (this.scene.isMoving && this.scene.isSlow) {
            return;
        }
        const taken = new Set(); // places of the screen that have their mark
        let count = 0;
        const entries = this.objects.filter((entry) => entry.object.index === this.selected).concat(
            this.objects.filter((entry) => entry.object.index !== this.selected));
        for (const entry of entries) {
            const cut = this.scene.uniforms.cut.value; // what is cut through has its mark where it is cut
            const at = this.scene.project(entry.low < cut
                ? [entry.at[0], entry.at[1], Math.min(entry.at[2], cut)] : entry.at);
            if (at === null || at[0] < 0 || at[1] < 0 || at[0] > width || at[1] > height) {
                continue;
            }
            const place = `${Math.round(at[0] / 22)} ${Math.round(at[1] / 22)}`;
            if (taken.has(place) || ++count > mostMarks) {
                continue;
            }
            taken.add(place);
            const status = this.statuses.of(entry.object.status);
            if (this.showArrows && entry.from) {
                this.arrow(pen, this.scene.project(entry.from), at, status);
            }
            if (this.showMarks) {
                this.mark(pen, at, status, entry.object.index === this.selected, colours);
            }
        }
    }

    mark(pen, [x, y], status, isSelected, colours) {
        pen.beginPath();
        pen.arc(x, y, isSelected ? 11 : 8, 0, 2 * Math.PI);
        pen.fillStyle = '#ffffff';
        pen.fill();
        pen.lineWidth = isSelected ? 3 : 1.5;
        pen.strokeStyle = isSelected ? colours.chosenLine : status.stroke;
        pen.stroke();
        pen.fillStyle = status.stroke;
        pen.font = 'bold 12px sans-serif';
        pen.textAlign = 'center';
        pen.textBaseline = 'middle';
        pen.fillText(status.mark, x, y + 0.5);
    }

    arrow(pen, from, to, status) {
        const length = from ? Math.hypot(to[0] - from[0], to[1] - from[1]) : 0;
        if (length < 12) {
            return;
        }
        const [dx, dy] = [(to[0] - from[0]) / length, (to[1] - from[1]) / length];
        const end = this.showMarks ? [to[0] - 9 * dx, to[1] - 9 * dy] : to;
        pen.strokeStyle = status.stroke;
        pen.fillStyle = status.stroke;
        pen.lineWidth = 2;
        pen.setLineDash([5, 3]);
        pen.beginPath();
        pen.moveTo(from[0], from[1]);
        pen.lineTo(end[0] - 6 * dx, end[1] - 6 * dy);
        pen.stroke();
        pen.setLineDash([]);
        pen.beginPath();
        pen.moveTo(end[0], end[1]);
        pen.lineTo(end[0] - 9 * dx + 4 * dy, end[1] - 9 * dy - 4 * dx);
        pen.lineTo(end[0] - 9 * dx - 4 * dy, end[1] - 9 * dy + 4 * dx);
        pen.fill();
    }
}

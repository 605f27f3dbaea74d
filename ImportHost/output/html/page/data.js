/** The text of a block of data, which leaves the page to save memory. */
function takeBlock(id) {
    const block = document.getElementById(id);
    const text = block.textContent;
    block.remove();
    return text;
}

const noStorey = '(no storey)';

/** A number with at most so many decimals, and no zeros behind them. */
function short(value, decimals = 3) {
    return typeof value === 'number' && isFinite(value) ? String(Number(value.toFixed(decimals))) : '–';
}

/** A value of a property as people read it. */
function valueText(value) {
    return value === null || value === undefined ? '–' : String(value);
}

/** A name without its folders. */
function fileName(path) {
    return path.split(/[/\\]/).pop() || path;
}

/** A model and the time of its import; either may be unknown. */
function modelOf(path, time) {
    const date = new Date(time || NaN);
    return { name: path ? fileName(path) : 'a model', time: isNaN(date) ? '' : date.toLocaleString() };
}

function displacementText(displacement) {
    if (!displacement) {
        return '';
    }
    const parts = [];
    const [x, y, z] = displacement.shift || [0, 0, 0];
    if (x || y || z) {
        parts.push(`shifted by ${short(x)}, ${short(y)}, ${short(z)} m (x, y, z)`);
    }
    if (displacement.turn) {
        const axis = displacement.axis;
        const about = Array.isArray(axis) && (axis[0] || axis[1])
            ? `the axis ${axis.map((part) => short(part)).join(', ')}` : 'the vertical';
        parts.push(`turned by ${short(displacement.turn)}° about ${about}`);
    }
    return parts.length ? `The whole model was ${parts.join(' and ')}; what only followed counts as unchanged.` : '';
}

/** One line on what happened to an object. */
function summaryOf(object) {
    const parts = [];
    const before = object.before || {};
    if (object.previousIdentity) {
        const confidence = typeof object.confidence === 'number' ? ` (${Math.round(100 * object.confidence)} %)` : '';
        parts.push(`was ${object.previousIdentity}${confidence}`);
    }
    if (before.class && before.class !== object.class) {
        parts.push(`${before.class} → ${object.class}`);
    }
    if (object.changes.includes('moved')) {
        parts.push(`moved ${moveText(object)}`);
    }
    if (object.changes.includes('reshaped')) {
        const volumes = typeof before.volume === 'number' && typeof object.volume === 'number';
        parts.push(volumes ? `shape: ${short(before.volume)} → ${short(object.volume)} m³` : 'another shape');
    }
    const properties = object.properties;
    if (properties.length) {
        const first = properties[0];
        const more = properties.length > 1 ? `, ${properties.length - 1} more` : '';
        parts.push(`${first.name}: ${valueText(first.old)} → ${valueText(first.new)}${more}`);
    }
    if (object.perhaps) {
        parts.push(perhapsText(object));
    }
    return [...parts, ...object.notes].join('; ');
}

/** A hint: which object it may be the other side of. */
function perhapsText(object) {
    const { identity, class: className, name, confidence } = object.perhaps;
    return `perhaps ${object.status === 'removed' ? 'became' : 'was'} ${className} ${name} (${identity}, ` +
        `${Math.round(100 * confidence)} %)`;
}

function moveText(object) {
    const move = object.move || {};
    const length = typeof object.distance === 'number'
        ? object.distance : Math.hypot(move.dx || 0, move.dy || 0, move.dz || 0);
    return `${short(length)} m${move.angle ? `, turned ${short(move.angle)}°` : ''}`;
}

/** The report with what the page derives from it. */
class Report {
    constructor(report, time) {
        this.model = modelOf(report.model, time);
        this.previous = report.previous ? modelOf(report.previous.model, report.previous.time) : null;
        this.displacement = displacementText(report.displacement);
        this.counts = report.counts || {};
        this.objects = report.objects || [];
        this.isFirst = !this.previous; // all objects are new then, which is nothing to show in colours
        this.objects.forEach((object, index) => this.prepare(object, index));
        this.storeys = this.storeysByHeight();
        this.classes = [...new Set(this.objects.map((object) => object.class))].sort();
    }

    prepare(object, index) {
        object.index = index;
        object.properties = object.properties || [];
        object.notes = object.notes || [];
        object.storey = object.storey || noStorey;
        object.isSpace = object.class === 'IFCSPACE'; // no part of the fabric
        object.name = object.name || '';
        object.tag = object.tag || '';
        object.summary = this.isFirst ? '' : summaryOf(object);
        object.search = [object.name, object.class, object.identity, object.tag, object.previousIdentity || '',
            (object.before && object.before.name) || ''].join('\n').toLowerCase();
    }

    /** Storeys from the top down, each with the height of its floor: where a quarter of its objects begin. */
    storeysByHeight() {
        const lows = new Map();
        for (const object of this.objects) {
            if (!lows.has(object.storey)) {
                lows.set(object.storey, []);
            }
            if (object.box && object.status !== 'removed') {
                lows.get(object.storey).push(object.box[0][2]);
            }
        }
        const storeys = [...lows].map(([name, heights]) => {
            heights.sort((a, b) => a - b);
            return { name, floor: heights.length ? heights[Math.floor(heights.length / 4)] : NaN };
        });
        const height = (storey) => storey.name === noStorey || isNaN(storey.floor) ? -Infinity : storey.floor;
        return storeys.sort((a, b) => height(b) - height(a) || a.name.localeCompare(b.name));
    }
}

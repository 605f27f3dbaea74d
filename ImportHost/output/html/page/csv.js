/** A cell for a spreadsheet; a name that would be a formula there is a text with a quote before it. */
function csvCell(value) {
    let text = value === null || value === undefined ? '' : String(value);
    if (/^[=+\-@\t\r]/.test(text) && !/^-([0-9]+\.?[0-9]*|\.[0-9]+)(e[+-]?[0-9]+)?$/i.test(text)) {
        text = `'${text}`;
    }
    return `"${text.replace(/"/g, '""').replace(/\0/g, '')}"`;
}

const csvColumns = ['object', 'storey', 'status', 'attribute', 'old', 'new', 'class', 'name'];

function sizeCell(box) {
    return [0, 1, 2].map((axis) => (box[1][axis] - box[0][axis]).toFixed(3)).join(' x ');
}

function placeCell(box) {
    return [0, 1, 2].map((axis) => ((box[1][axis] + box[0][axis]) / 2).toFixed(3)).join(' ');
}

function volumeCell(volume) {
    return typeof volume === 'number' ? volume.toFixed(6) : '';
}

/** Each change of an object as attribute, old and new value, as in the table that import-host writes itself. */
function changesOf(object) {
    const before = { class: object.class, box: object.box, volume: object.volume, ...object.before };
    const rows = [];
    const add = (attribute, old = '', now = '') => rows.push([attribute, old, now]);
    for (const change of object.changes) {
        if (change === 'added' || change === 'removed') {
            add('');
        } else if (change === 'reidentified') {
            add('identity', object.previousIdentity, object.identity);
        } else if (change === 'reclassed') {
            add('class', before.class, object.class);
        } else if (change === 'moved') {
            add('position', placeCell(before.box), placeCell(object.box));
            if (object.move && object.move.angle) {
                add('turn', '', `${object.move.angle.toFixed(2)} degrees`);
            }
        } else if (change === 'reshaped') {
            const [oldSize, size] = [sizeCell(before.box), sizeCell(object.box)];
            const [oldVolume, volume] = [volumeCell(before.volume), volumeCell(object.volume)];
            if (oldSize !== size) {
                add('size', oldSize, size);
            }
            if (oldVolume !== volume) {
                add('volume', oldVolume, volume);
            }
            if (oldSize === size && oldVolume === volume) {
                add('shape');
            }
        }
    }
    for (const property of object.properties) {
        add(`${property.set}.${property.name}`, property.old, property.new);
    }
    if (object.perhaps) {
        const { identity, confidence } = object.perhaps;
        const isGone = object.status === 'removed';
        add(`perhaps, with confidence ${confidence.toFixed(2)}`, isGone ? '' : identity, isGone ? identity : '');
    }
    object.notes.forEach((note) => add('note', '', note));
    if (rows.length === 0) {
        add('');
    }
    return rows;
}

function csvText(objects) {
    const lines = [csvColumns];
    for (const object of objects) {
        for (const change of changesOf(object)) {
            lines.push([object.identity, object.storey === noStorey ? '' : object.storey, object.status, ...change,
                object.class, object.name]);
        }
    }
    return `\ufeff${lines.map((cells) => cells.map(csvCell).join(',')).join('\r\n')}\r\n`;
}

function saveCsv(objects, name) {
    const link = element('a');
    link.href = URL.createObjectURL(new Blob([csvText(objects)], { type: 'text/csv;charset=utf-8' }));
    link.download = name;
    link.click();
    setTimeout(() => URL.revokeObjectURL(link.href), 1000);
}

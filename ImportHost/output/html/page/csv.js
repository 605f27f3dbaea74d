/** A cell for a spreadsheet; a name that would be a formula there is a text with a quote before it. */
function csvCell(value) {
    let text = value === null || value === undefined ? '' : String(value);
    if (/^[=+\-@\t\r]/.test(text) && !/^[+-]?[0-9.]+(e[+-]?[0-9]+)?$/i.test(text)) {
        text = `'${text}`;
    }
    return `"${text.replace(/"/g, '""')}"`;
}

/** Each change of an object as attribute, old and new value; one without attribute where nothing can be said. */
function changesOf(object) {
    const before = object.before || {};
    const rows = [];
    const add = (attribute, old, now) => rows.push([attribute, old, now]);
    if (object.previousIdentity) {
        add('GlobalId', object.previousIdentity, object.identity);
    }
    if (before.class) {
        add('Class', before.class, object.class);
    }
    if (object.move) {
        const { dx, dy, dz, angle } = object.move;
        add('Place', '', `${short(dx)} ${short(dy)} ${short(dz)} m${angle ? `, ${short(angle)}°` : ''}`);
    }
    if (object.changes.includes('reshaped')) {
        add('Volume', before.volume === undefined ? object.volume : before.volume, object.volume);
    }
    for (const property of object.properties) {
        add(`${property.set}.${property.name}`, property.old, property.new);
    }
    return rows.length ? rows : [['', '', '']];
}

function csvText(objects) {
    const lines = [['Object', 'Class', 'Name', 'Tag', 'Storey', 'Status', 'Attribute', 'Old', 'New']];
    for (const object of objects) {
        for (const change of changesOf(object)) {
            lines.push([object.identity, object.class, object.name, object.tag,
                object.storey === noStorey ? '' : object.storey, object.status, ...change]);
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

/** A button that copies a text, and says so. */
function copyButton(label, text) {
    const button = element('button', 'copy', label);
    button.type = 'button';
    button.dataset.copy = text;
    button.addEventListener('click', (event) => {
        event.stopPropagation();
        copyText(text);
    });
    return button;
}

async function copyText(text) {
    let isCopied = false;
    try {
        await navigator.clipboard.writeText(text);
        isCopied = true;
    } catch (error) {
        // Pages from disk may not use the clipboard everywhere; the older way works there.
        const field = element('textarea');
        field.value = text;
        document.body.append(field);
        field.select();
        isCopied = document.execCommand('copy');
        field.remove();
    }
    say(isCopied ? `Copied ${text}` : 'The browser did not allow copying');
}

/** Shows a line for a moment. */
function say(text) {
    const message = document.getElementById('message');
    message.textContent = text;
    clearTimeout(message.pause);
    message.pause = setTimeout(() => {
        message.textContent = '';
    }, 2500);
}

/** Corners of a box and its size. */
function boxText(box) {
    if (!box) {
        return '–';
    }
    const size = [0, 1, 2].map((axis) => short(box[1][axis] - box[0][axis])).join(' × ');
    return `${size} m, from ${box[0].map((value) => short(value)).join(', ')} to ` +
        box[1].map((value) => short(value)).join(', ');
}

/** A value, and the one before where there is another. */
function pairOf(object, key, text) {
    const before = object.before || {};
    const now = text(object[key]);
    return key in before && text(before[key]) !== now ? [text(before[key]), now] : [null, now];
}

/** Everything known about an object: facts with their old values, and a table of what changed. */
class Details {
    constructor(report, statuses, actions) {
        this.report = report;
        this.statuses = statuses;
        this.actions = actions;
    }

    elementFor(object) {
        const panel = element('div', 'details');
        panel.append(this.buttons(object), this.facts(object));
        if (object.properties.length) {
            panel.append(this.properties(object));
        }
        return panel;
    }

    buttons(object) {
        const row = element('div', 'detail-buttons', [copyButton('Copy GlobalId', object.identity)]);
        if (object.tag) {
            row.append(copyButton('Copy Tag', object.tag));
        }
        if (object.previousIdentity) {
            row.append(copyButton('Copy former GlobalId', object.previousIdentity));
        }
        const show = element('button', '', 'Zoom to it');
        show.type = 'button';
        show.addEventListener('click', () => this.actions.zoom(object.index));
        row.append(show);
        return row;
    }

    facts(object) {
        const list = element('dl', 'facts');
        const add = (name, value, old) => {
            if (value !== '' && value !== '–' || old) {
                const cell = element('dd');
                if (old) {
                    cell.append(element('del', '', old), ' → ');
                }
                cell.append(old ? element('ins', '', value) : value);
                list.append(element('dt', '', name), cell);
            }
        };
        const changes = object.changes.filter((change) => change !== object.status);
        add('Status', [object.status, ...changes].join(', '));
        add('GlobalId', object.identity, object.previousIdentity);
        for (const [name, key] of [['Class', 'class'], ['Name', 'name'], ['Storey', 'storey']]) {
            const [old, now] = pairOf(object, key, (value) => value || '–');
            add(name, now, old);
        }
        add('Tag', object.tag);
        if (object.move || object.changes.includes('moved')) {
            add('Move', this.moveOf(object));
        }
        const [oldBox, box] = pairOf(object, 'box', boxText);
        add('Box', box, oldBox);
        const [oldVolume, volume] = pairOf(object, 'volume',
            (value) => typeof value === 'number' ? `${short(value)} m³` : '–');
        add('Volume', volume, oldVolume);
        if (typeof object.confidence === 'number') {
            add('Confidence', `${short(100 * object.confidence, 1)} %`);
        }
        if (object.perhaps) {
            add('Hint', perhapsText(object));
        }
        object.notes.forEach((note) => add('Note', note));
        return list;
    }

    moveOf(object) {
        const move = object.move || {};
        const shift = [move.dx, move.dy, move.dz].map((value) => short(value || 0)).join(', ');
        const axis = Array.isArray(move.axis) ? ` about ${move.axis.map((value) => short(value)).join(', ')}` : '';
        const turn = move.angle ? `, turned ${short(move.angle)}°${axis}` : '';
        const distance = typeof object.distance === 'number' ? ` (${short(object.distance)} m)` : '';
        return `${shift} m${distance}${turn}`;
    }

    properties(object) {
        const table = element('table', 'properties');
        table.append(element('thead', '', [element('tr', '',
            ['Set', 'Property', 'Old', 'New'].map((title) => element('th', '', title)))]));
        table.append(element('tbody', '', object.properties.map((property) => element('tr', '', [
            element('td', '', property.set), element('td', '', property.name),
            element('td', 'old', valueText(property.old)), element('td', 'new', valueText(property.new)),
        ]))));
        return table;
    }
}

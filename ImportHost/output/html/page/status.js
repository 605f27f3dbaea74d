/** Statuses by name, with their place in the order of the report. */
class Statuses {
    constructor(list) {
        this.list = list;
        this.byName = new Map(list.map((status, order) => [status.name, { ...status, order }]));
        for (const status of list) {
            document.documentElement.style.setProperty(`--${status.name}-fill`, status.fill);
            document.documentElement.style.setProperty(`--${status.name}-stroke`, status.stroke);
        }
    }

    /** A status that this page does not know looks like an unchanged object with a question mark. */
    of(name) {
        return this.byName.get(name) || { name, fill: '#e9e9e9', stroke: '#8f8f8f', mark: '?', order: 99 };
    }
}

/** An element with classes, text and children; text never becomes markup. */
function element(tag, classes, content) {
    const node = document.createElement(tag);
    if (classes) {
        node.className = classes;
    }
    if (typeof content === 'string') {
        node.textContent = content;
    } else if (content) {
        node.append(...content);
    }
    return node;
}

/** The sign of a status on its colour. */
function markOf(status) {
    const mark = element('span', 'mark', status.mark);
    mark.style.background = status.fill;
    mark.style.borderColor = status.stroke;
    mark.style.color = status.stroke;
    mark.setAttribute('aria-hidden', 'true');
    return mark;
}

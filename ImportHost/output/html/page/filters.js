/** What is shown: statuses, storey, class and text, and the controls for them. */
class Filters {
    constructor(report, statuses, changed) {
        this.report = report;
        this.statuses = statuses;
        this.changed = changed;
        this.storey = document.getElementById('storey-filter');
        this.classes = document.getElementById('class-filter');
        this.text = document.getElementById('text-filter');
        this.buttons = new Map();
        this.addStatuses();
        this.addOptions(this.storey, 'all', report.storeys.map((storey) => storey.name));
        this.addOptions(this.classes, 'all', report.classes);
        this.storey.addEventListener('change', () => this.changed());
        this.classes.addEventListener('change', () => this.changed());
        let pause = 0;
        this.text.addEventListener('input', () => {
            clearTimeout(pause);
            pause = setTimeout(() => this.changed(), 80);
        });
        document.getElementById('clear-filters').addEventListener('click', () => this.clear());
        this.clear();
    }

    addStatuses() {
        const group = document.getElementById('status-filters');
        for (const status of this.statuses.list) {
            const count = this.report.counts[status.name] || 0;
            const button = element('button', 'status', [markOf(status), element('span', '', status.name),
                element('span', 'count', String(count))]);
            button.type = 'button';
            button.dataset.status = status.name;
            button.disabled = count === 0;
            button.addEventListener('click', () => {
                button.setAttribute('aria-pressed', String(button.getAttribute('aria-pressed') !== 'true'));
                this.changed();
            });
            this.buttons.set(status.name, button);
            group.append(button);
        }
    }

    addOptions(select, first, names) {
        select.append(new Option(first, ''));
        names.forEach((name, index) => select.append(new Option(name || '(no name)', String(index))));
        select.names = names;
    }

    /** Everything that changed; everything at all where nothing did. */
    clear() {
        const somethingChanged = this.report.objects.some((object) => object.status !== 'unchanged');
        for (const [name, button] of this.buttons) {
            button.setAttribute('aria-pressed', String(name !== 'unchanged' || !somethingChanged));
        }
        this.storey.value = '';
        this.classes.value = '';
        this.text.value = '';
        this.changed();
    }

    /** The filters as plain values, read once for all objects. */
    current() {
        const chosen = (select) => select.value === '' ? null : select.names[Number(select.value)];
        return {
            statuses: new Set([...this.buttons].filter(([, button]) => button.getAttribute('aria-pressed') === 'true')
                .map(([name]) => name)),
            storey: chosen(this.storey),
            class: chosen(this.classes),
            text: this.text.value.trim().toLowerCase(),
        };
    }

    setStorey(name) {
        const index = this.storey.names.indexOf(name);
        this.storey.value = index < 0 ? '' : String(index);
        this.changed();
    }

    static isOnStorey(filter, object) {
        return filter.storey === null || object.storey === filter.storey ||
            (object.before && object.before.storey === filter.storey);
    }

    static matches(filter, object) {
        return filter.statuses.has(object.status) && Filters.isOnStorey(filter, object) &&
            (filter.class === null || object.class === filter.class) &&
            (filter.text === '' || object.search.includes(filter.text));
    }
}

const rowHeight = 30;

const columns = [
    { key: 'status', title: 'Status' },
    { key: 'class', title: 'Class' },
    { key: 'name', title: 'Name' },
    { key: 'storey', title: 'Storey' },
    { key: 'summary', title: 'What happened' },
];

/** The list of objects. Rows are made for what is seen of it alone, so its length costs nothing. */
class ObjectList {
    constructor(report, statuses, details, actions) {
        this.report = report;
        this.statuses = statuses;
        this.details = details;
        this.actions = actions;
        this.grid = document.getElementById('grid');
        this.body = document.getElementById('list-body');
        this.space = document.getElementById('list-space');
        this.rows = []; // the objects shown, in their order
        this.places = new Map(); // of objects by index
        this.sorting = { key: 'status', down: false };
        this.selected = -1;
        this.open = -1;
        this.openHeight = 0;
        this.storeyOrder = new Map(report.storeys.map((storey, order) => [storey.name, order]));
        this.collator = new Intl.Collator(undefined, { numeric: true });
        this.addHead();
        this.body.addEventListener('scroll', () => this.draw());
        this.grid.addEventListener('keydown', (event) => this.key(event));
        new ResizeObserver(() => this.draw()).observe(this.body);
    }

    addHead() {
        const head = document.getElementById('list-head');
        this.heads = new Map();
        for (const column of columns) {
            const button = element('button', '', column.title);
            button.type = 'button';
            button.addEventListener('click', () => this.sortBy(column.key));
            const cell = element('div', `cell ${column.key}`, [button]);
            cell.setAttribute('role', 'columnheader');
            this.heads.set(column.key, cell);
            head.append(cell);
        }
        this.showSorting();
    }

    sortBy(key) {
        this.sorting = { key, down: this.sorting.key === key && !this.sorting.down };
        this.showSorting();
        this.setRows(this.rows);
    }

    showSorting() {
        for (const [key, cell] of this.heads) {
            cell.setAttribute('aria-sort', key !== this.sorting.key ? 'none'
                : this.sorting.down ? 'descending' : 'ascending');
        }
    }

    /** Statuses in the order of the report but what stayed last, storeys from the top down, all else by the alphabet. */
    compare(a, b) {
        const rank = (object) => object.status === 'unchanged' ? 99 : -this.statuses.of(object.status).order;
        switch (this.sorting.key) {
        case 'status':
            return rank(a) - rank(b);
        case 'storey':
            return this.storeyOrder.get(a.storey) - this.storeyOrder.get(b.storey);
        default:
            return this.collator.compare(a[this.sorting.key], b[this.sorting.key]);
        }
    }

    setRows(objects) {
        const sign = this.sorting.down ? -1 : 1;
        this.rows = [...objects].sort((a, b) => sign * this.compare(a, b) || a.index - b.index);
        this.places = new Map(this.rows.map((object, place) => [object.index, place]));
        if (!this.places.has(this.open)) {
            this.close();
        }
        this.grid.setAttribute('aria-rowcount', String(this.rows.length + 1));
        this.draw();
    }

    close() {
        this.open = -1;
        this.openHeight = 0;
        if (this.panel) {
            this.panel.remove();
            this.panel = null;
        }
    }

    /** Opens the details of an object, which is among the rows. */
    openDetails(index) {
        this.close();
        this.open = index;
        this.panel = this.details.elementFor(this.report.objects[index]);
        this.space.append(this.panel);
        this.openHeight = this.panel.offsetHeight;
        this.draw();
    }

    toggle(index) {
        if (this.open === index) {
            this.close();
            this.draw();
        } else {
            this.openDetails(index);
        }
    }

    topOf(place) {
        const openPlace = this.places.has(this.open) ? this.places.get(this.open) : Infinity;
        return place * rowHeight + (place > openPlace ? this.openHeight : 0);
    }

    placeAt(height) {
        const openPlace = this.places.has(this.open) ? this.places.get(this.open) : Infinity;
        const place = Math.floor(height / rowHeight);
        return place <= openPlace ? place
            : Math.max(openPlace, Math.floor((height - this.openHeight) / rowHeight));
    }

    draw() {
        if (this.panel) {
            this.openHeight = this.panel.offsetHeight;
            this.panel.style.top = `${this.topOf(this.places.get(this.open)) + rowHeight}px`;
        }
        this.space.style.height = `${this.rows.length * rowHeight + this.openHeight}px`;
        const first = Math.max(0, this.placeAt(this.body.scrollTop) - 3);
        const last = Math.min(this.rows.length,
            this.placeAt(this.body.scrollTop + this.body.clientHeight) + 4);
        const rows = [];
        for (let place = first; place < last; ++place) {
            rows.push(this.rowFor(this.rows[place], place));
        }
        for (const row of this.drawn || []) {
            row.remove();
        }
        this.drawn = rows;
        this.space.prepend(...rows);
        const selectedRow = this.places.has(this.selected) ? `row-${this.selected}` : '';
        this.grid.setAttribute('aria-activedescendant', document.getElementById(selectedRow) ? selectedRow : '');
    }

    rowFor(object, place) {
        const status = this.statuses.of(object.status);
        const cells = columns.map((column) => {
            const text = object[column.key];
            const cell = element('div', `cell ${column.key}`, column.key === 'status'
                ? [markOf(status), element('span', '', text)] : text);
            cell.setAttribute('role', 'gridcell');
            cell.title = text;
            return cell;
        });
        const row = element('div', 'row', cells);
        row.id = `row-${object.index}`;
        row.setAttribute('role', 'row');
        row.setAttribute('aria-rowindex', String(place + 2));
        row.setAttribute('aria-selected', String(object.index === this.selected));
        row.setAttribute('aria-expanded', String(object.index === this.open));
        row.style.top = `${this.topOf(place)}px`;
        row.addEventListener('click', () => {
            this.toggle(object.index);
            this.actions.select(object.index);
        });
        row.addEventListener('dblclick', () => this.actions.zoom(object.index));
        return row;
    }

    /** Shows an object as the selected one and, when it is among the rows, where it is. */
    select(index) {
        this.selected = index;
        if (this.places.has(index)) {
            const top = this.topOf(this.places.get(index));
            const height = rowHeight + (index === this.open ? Math.min(this.openHeight, 200) : 0);
            if (top < this.body.scrollTop) {
                this.body.scrollTop = top;
            } else if (top + height > this.body.scrollTop + this.body.clientHeight) {
                this.body.scrollTop = top + height - this.body.clientHeight;
            }
        }
        this.draw();
    }

    key(event) {
        if (event.target !== this.grid || this.rows.length === 0 || event.ctrlKey || event.metaKey || event.altKey) {
            return;
        }
        const page = Math.max(1, Math.floor(this.body.clientHeight / rowHeight) - 1);
        const place = this.places.has(this.selected) ? this.places.get(this.selected) : -1;
        const steps = { ArrowDown: place + 1, ArrowUp: place - 1, PageDown: place + page, PageUp: place - page,
            Home: 0, End: this.rows.length - 1 };
        if (event.key in steps) {
            const next = Math.max(0, Math.min(this.rows.length - 1, steps[event.key]));
            this.actions.select(this.rows[next].index);
        } else if ((event.key === 'Enter' || event.key === ' ') && place >= 0) {
            this.toggle(this.selected);
            this.select(this.selected);
        } else if (event.key === 'ArrowRight' && place >= 0) {
            this.openDetails(this.selected);
        } else if (event.key === 'ArrowLeft') {
            this.close();
            this.draw();
        } else if (event.key === 'c' && place >= 0) {
            copyText(this.report.objects[this.selected].identity);
        } else if (event.key === 'z' && place >= 0) {
            this.actions.zoom(this.selected);
        } else {
            return;
        }
        event.preventDefault();
        event.stopPropagation();
    }
}

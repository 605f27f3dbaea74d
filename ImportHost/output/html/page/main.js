const keys = [
    ['Up, Down, Page Up, Page Down, Home, End', 'in the list: select another object'],
    ['Enter, Space', 'in the list: open or close its details'],
    ['C', 'in the list: copy its GlobalId'],
    ['Z', 'zoom to the selected object'],
    ['F', 'fit: the whole model in view'],
    ['0, 1, 2, 3, 4, 5', 'corner, top, front, back, left, right'],
    ['Arrow keys', 'in the model: turn; with Shift: move'],
    ['+ and −', 'in the model: zoom'],
    ['H', 'hide what stayed'],
    ['/', 'go to the search'],
    ['Escape', 'select nothing'],
    ['Mouse', 'drag turns, right button or Shift moves, wheel zooms, a click selects'],
];

const themes = {
    light: { background: '#ffffff', context: '#b4bcc6', contextLine: '#5f6b78', chosenLine: '#000000' },
    dark: { background: '#14181d', context: '#5d6875', contextLine: '#aab4c0', chosenLine: '#ffffff' },
};

/** Puts the parts of the page together. */
class Page {
    constructor() {
        this.report = new Report(JSON.parse(takeBlock('report-data')), JSON.parse(takeBlock('time-data')));
        this.statuses = new Statuses(JSON.parse(takeBlock('status-data')));
        this.selected = -1;
        const actions = { select: (index) => this.select(index), open: (index) => this.selectAndOpen(index),
            zoom: (index) => this.zoom(index) };
        this.showHead();
        this.list = new ObjectList(this.report, this.statuses, new Details(this.report, this.statuses, actions), actions);
        this.plans = new Plans(JSON.parse(takeBlock('plan-data')), actions);
        this.addControls();
        this.filters = new Filters(this.report, this.statuses, () => this.update());
        this.setTheme(window.matchMedia('(prefers-color-scheme: dark)').matches ? 'dark' : 'light');
        this.update();
        // The list can be used before the model is ready.
        requestAnimationFrame(() => setTimeout(() => {
            this.addScene(decodeBase64(takeBlock('shape-data')));
            this.update();
            this.isReady = true;
            setTimeout(() => this.scene && this.scene.adapt() && this.update(), 500);
        }));
    }

    showHead() {
        const { model, previous, isFirst } = this.report;
        const text = (entry) => entry.time ? `${entry.name} (${entry.time})` : entry.name;
        document.title = previous ? `${model.name} – compared with ${previous.name}` : model.name;
        document.getElementById('title').textContent = model.name;
        document.getElementById('subtitle').textContent = previous
            ? `${text(model)} compared with ${text(previous)}`
            : isFirst ? `${text(model)}: the first import, nothing to compare with` : text(model);
        const displacement = document.getElementById('displacement');
        displacement.textContent = this.report.displacement;
        displacement.hidden = this.report.displacement === '';
    }

    /** Without a way to draw, everything but the model still works. */
    addScene(bytes) {
        const frame = document.getElementById('canvas-frame');
        const message = document.getElementById('no-drawing');
        try {
            this.scene = new Scene(frame, new Shapes(bytes, this.report.objects), this.report, this.statuses);
        } catch (error) {
            message.textContent = `This browser can't draw the model: ${error.message}`;
            return;
        }
        message.hidden = true;
        this.scene.setTheme(themes[this.theme]);
        this.marks = new Marks(document.getElementById('marks'), this.scene, this.report, this.statuses);
        this.scene.afterDrawing = () => this.marks.draw(themes[this.theme]);
        this.addPicking(frame);
    }

    addPicking(frame) {
        const canvas = this.scene.canvas;
        const tooltip = document.getElementById('tooltip');
        let pressed = null;
        let pause = 0;
        canvas.addEventListener('pointerdown', (event) => {
            pressed = [event.offsetX, event.offsetY];
            tooltip.hidden = true;
            frame.focus({ preventScroll: true });
        });
        canvas.addEventListener('click', (event) => {
            if (pressed && Math.hypot(event.offsetX - pressed[0], event.offsetY - pressed[1]) < 4) {
                this.selectAndOpen(this.scene.pick(event.offsetX, event.offsetY));
            }
        });
        canvas.addEventListener('dblclick', (event) => {
            const index = this.scene.pick(event.offsetX, event.offsetY);
            if (index >= 0) {
                this.zoom(index);
            }
        });
        canvas.addEventListener('pointermove', (event) => {
            clearTimeout(pause);
            tooltip.hidden = true;
            if (event.buttons === 0) {
                pause = setTimeout(() => this.showTooltip(tooltip, event.offsetX, event.offsetY), 150);
            }
        });
        canvas.addEventListener('pointerleave', () => {
            clearTimeout(pause);
            tooltip.hidden = true;
        });
    }

    showTooltip(tooltip, x, y) {
        const index = this.scene.pick(x, y);
        tooltip.hidden = index < 0;
        if (index >= 0) {
            const object = this.report.objects[index];
            const status = this.report.isFirst ? '' : `${this.statuses.of(object.status).mark} ${object.status}`;
            tooltip.textContent = [`${object.class} ${object.name}`, `${object.identity}, ${object.storey}`, status,
                object.summary].filter((line) => line !== '').join('\n');
            const frame = this.scene.frame;
            tooltip.style.left = `${Math.max(0, Math.min(x + 14, frame.clientWidth - tooltip.offsetWidth - 4))}px`;
            tooltip.style.top = `${Math.max(0, Math.min(y + 14, frame.clientHeight - tooltip.offsetHeight - 4))}px`;
        }
    }

    addControls() {
        const on = (id, event, action) => document.getElementById(id).addEventListener(event, action);
        for (const button of document.querySelectorAll('[data-view]')) {
            button.addEventListener('click', () => this.view(button.dataset.view));
        }
        this.hideContext = document.getElementById('hide-context');
        this.showBefore = document.getElementById('show-before');
        this.showMarks = document.getElementById('show-marks');
        for (const box of [this.hideContext, this.showBefore, this.showMarks]) {
            box.addEventListener('change', () => this.update());
        }
        this.addCut();
        this.addTabs();
        this.addDivider();
        this.addHelp();
        on('theme-button', 'click', () => this.setTheme(this.theme === 'dark' ? 'light' : 'dark'));
        on('save-csv', 'click', () => {
            saveCsv(this.list.rows, `${this.report.model.name || 'comparison'}.csv`);
            say(`${this.list.rows.length} objects saved`);
        });
        document.addEventListener('keydown', (event) => this.key(event));
    }

    /** A cut through a storey, a little above its floor, and a slider to move it. */
    addCut() {
        const select = document.getElementById('cut-storey');
        const slider = document.getElementById('cut-height');
        const storeys = this.report.storeys.filter((storey) => !isNaN(storey.floor) && storey.name !== noStorey);
        select.append(new Option('nothing', ''));
        storeys.forEach((storey, index) => select.append(new Option(`above ${storey.name}`, String(index))));
        const cut = (height) => this.scene && this.scene.setCut(height);
        select.addEventListener('change', () => {
            slider.disabled = select.value === '';
            if (select.value === '') {
                cut(null);
                return;
            }
            const index = Number(select.value);
            const floor = storeys[index].floor;
            const ceiling = index > 0 ? storeys[index - 1].floor : floor + 3;
            const height = Math.max(ceiling - floor, 1.5);
            slider.min = String(floor - 0.1);
            slider.max = String(floor + height + 0.5);
            slider.value = String(floor + Math.min(1.2, 0.6 * height));
            cut(Number(slider.value));
        });
        slider.addEventListener('input', () => cut(Number(slider.value)));
    }

    addTabs() {
        const tabs = ['model', 'plans'].map((name) => document.getElementById(`${name}-tab`));
        tabs.forEach((tab, index) => {
            tab.addEventListener('click', () => this.showTab(index));
            tab.addEventListener('keydown', (event) => {
                if (event.key === 'ArrowLeft' || event.key === 'ArrowRight') {
                    this.showTab(1 - index);
                    tabs[1 - index].focus();
                }
            });
        });
    }

    showTab(number) {
        ['model', 'plans'].forEach((name, index) => {
            const tab = document.getElementById(`${name}-tab`);
            tab.setAttribute('aria-selected', String(index === number));
            tab.tabIndex = index === number ? 0 : -1;
            document.getElementById(`${name}-view`).hidden = index !== number;
        });
        if (number === 1) {
            this.plans.showStorey(this.filters.current().storey);
        }
    }

    addDivider() {
        const divider = document.getElementById('divider');
        const main = document.querySelector('main');
        const setShare = (share) => {
            this.share = Math.max(0.2, Math.min(0.85, share));
            main.style.setProperty('--share', `${100 * this.share}%`);
            divider.setAttribute('aria-valuenow', String(Math.round(100 * this.share)));
        };
        setShare(0.55);
        divider.addEventListener('pointerdown', (event) => {
            divider.setPointerCapture(event.pointerId);
            event.preventDefault();
        });
        divider.addEventListener('pointermove', (event) => {
            if (divider.hasPointerCapture(event.pointerId)) {
                setShare(event.clientX / main.clientWidth);
            }
        });
        divider.addEventListener('keydown', (event) => {
            if (event.key === 'ArrowLeft' || event.key === 'ArrowRight') {
                setShare(this.share + (event.key === 'ArrowLeft' ? -0.03 : 0.03));
                event.stopPropagation();
            }
        });
    }

    addHelp() {
        const dialog = document.getElementById('help');
        const list = document.getElementById('help-keys');
        for (const [key, meaning] of keys) {
            list.append(element('dt', '', key), element('dd', '', meaning));
        }
        document.getElementById('help-button').addEventListener('click', () => dialog.showModal());
        document.getElementById('help-close').addEventListener('click', () => dialog.close());
    }

    setTheme(name) {
        this.theme = name;
        document.documentElement.dataset.theme = name;
        document.getElementById('theme-button').textContent = name === 'dark' ? 'Light' : 'Dark';
        if (this.scene) {
            this.scene.setTheme(themes[name]);
        }
    }

    /** Shows what the filters leave, in the list and in the model. */
    update() {
        if (!this.filters) {
            return; // still being made
        }
        const filter = this.filters.current();
        const shown = this.report.objects.filter((object) => Filters.matches(filter, object));
        this.list.setRows(shown);
        document.getElementById('shown-count').textContent = `${shown.length} of ${this.report.objects.length} shown`;
        if (this.plans && filter.storey !== this.lastStorey) {
            this.lastStorey = filter.storey;
            this.plans.showStorey(filter.storey);
        }
        if (this.scene) {
            const isShown = new Uint8Array(this.report.objects.length);
            shown.forEach((object) => {
                isShown[object.index] = 1;
            });
            this.scene.show((piece) => this.stateOf(piece, filter, isShown), this.selected);
            this.marks.setObjects(this.report.isFirst ? [] : shown.filter((object) => object.status !== 'unchanged'));
            this.marks.showMarks = this.showMarks.checked;
            this.marks.showArrows = this.showBefore.checked;
            this.scene.draw();
            const note = document.getElementById('left-out');
            note.hidden = this.scene.leftOut === 0;
            note.textContent = `${this.scene.leftOut} small objects are not drawn; choose a storey to see them`;
        }
    }

    /**
     * How a piece is drawn: what the list leaves out is context, other storeys are not there at all, and rooms would
     * hide what is in them.
     */
    stateOf(piece, filter, isShown) {
        const object = this.report.objects[piece.object];
        if (!Filters.isOnStorey(filter, object)) {
            return hidden;
        }
        const isGone = object.status === 'removed';
        if (piece.role === roleBefore) {
            return isShown[piece.object] && (isGone || this.showBefore.checked) ? ghost : hidden;
        }
        const isSought = filter.class !== null || filter.text !== '' || this.report.isFirst;
        if (isShown[piece.object] && (object.status !== 'unchanged' || isSought)) {
            return !object.isSpace ? solid : this.report.isFirst && filter.class === null ? hidden : ghost;
        }
        return this.hideContext.checked || object.isSpace ? hidden : context;
    }

    view(name) {
        if (this.scene) {
            this.scene.isTouched = true;
            this.scene.fit(viewDirections[name]);
        }
    }

    select(index) {
        this.selected = index;
        this.list.select(index);
        this.plans.select(index);
        if (this.scene) {
            this.scene.select(index);
            this.marks.selected = index;
        }
    }

    /** What was clicked in a drawing shows its details; what the filters leave out is selected all the same. */
    selectAndOpen(index) {
        if (this.list.places.has(index)) {
            this.list.openDetails(index);
        } else {
            this.list.close();
        }
        this.select(index);
        if (index >= 0 && !this.list.places.has(index)) {
            const object = this.report.objects[index];
            say(`${object.class} ${object.name}: ${object.status}, not in the list as it is filtered`);
        }
    }

    zoom(index) {
        this.select(index);
        if (this.scene && index >= 0) {
            this.scene.isTouched = true;
            this.scene.fitObject(index);
        }
    }

    key(event) {
        const isTyping = /^(INPUT|SELECT|TEXTAREA)$/.test(event.target.tagName) && event.target.type !== 'checkbox';
        if (event.key === 'Escape') {
            this.select(-1);
            return;
        }
        if (isTyping || event.ctrlKey || event.metaKey || event.altKey || document.getElementById('help').open) {
            return;
        }
        const views = ['corner', 'top', 'front', 'back', 'left', 'right'];
        if (event.key >= '0' && event.key <= '5') {
            this.view(views[Number(event.key)]);
        } else if (event.key === 'f') {
            this.view('fit');
        } else if (event.key === 'z') {
            this.zoom(this.selected);
        } else if (event.key === 'h') {
            this.hideContext.click();
        } else if (event.key === '/') {
            document.getElementById('text-filter').focus();
        } else if (!this.turnByKey(event)) {
            return;
        }
        event.preventDefault();
    }

    /** Arrow keys and signs while the model has the focus. */
    turnByKey(event) {
        if (!this.scene || event.target !== this.scene.frame) {
            return false;
        }
        const camera = this.scene.camera;
        this.scene.isTouched = true;
        const arrows = { ArrowLeft: [-1, 0], ArrowRight: [1, 0], ArrowUp: [0, 1], ArrowDown: [0, -1] };
        if (event.key in arrows) {
            const [x, y] = arrows[event.key];
            if (event.shiftKey) {
                camera.pan(0.05 * x, 0.05 * y);
            } else {
                camera.turn(0.1 * x, 0.1 * y);
            }
        } else if (event.key === '+' || event.key === '=') {
            camera.zoom(0.85);
        } else if (event.key === '-') {
            camera.zoom(1 / 0.85);
        } else {
            return false;
        }
        return true;
    }
}

window.page = new Page();

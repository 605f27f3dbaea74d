const planElements = new Set(['svg', 'g', 'defs', 'clipPath', 'marker', 'path', 'rect', 'circle', 'ellipse', 'line',
    'polyline', 'polygon', 'text', 'tspan', 'title', 'desc']);

/** Takes from a drawing what is not drawn; the page has its own style. */
function cleanDrawing(node) {
    for (const child of [...node.children]) {
        if (planElements.has(child.localName)) {
            cleanDrawing(child);
        } else {
            child.remove();
        }
    }
    for (const attribute of [...node.attributes]) {
        if (/^(on|style$|href$|xlink:)/i.test(attribute.name)) {
            node.removeAttribute(attribute.name);
        }
    }
}

/** The plans of the storeys, each drawn when it comes into view, all of them for printing. */
class Plans {
    constructor(plans, report, statuses, actions) {
        this.plans = plans;
        this.report = report;
        this.frame = document.getElementById('plans');
        this.sections = plans.map((plan) => this.addSection(plan));
        if (plans.length === 0) {
            this.frame.append(element('p', 'hint', 'There are no plans of this model.'));
        }
        this.observer = new IntersectionObserver((entries) => {
            for (const entry of entries) {
                if (entry.isIntersecting) {
                    this.build(this.sections.indexOf(entry.target));
                }
            }
        }, { root: this.frame, rootMargin: '400px' });
        this.sections.forEach((section) => this.observer.observe(section));
        this.frame.addEventListener('click', (event) => {
            const shape = event.target.closest('[data-object]');
            if (shape) {
                actions.select(Number(shape.dataset.object));
            }
        });
        window.addEventListener('beforeprint', () => this.buildAll());
        document.getElementById('print-plans').addEventListener('click', () => {
            this.buildAll();
            window.print();
        });
    }

    addSection(plan) {
        const section = element('section', 'plan', [element('h2', '', plan.storey || noStorey)]);
        this.frame.append(section);
        return section;
    }

    build(number) {
        const section = this.sections[number];
        if (section.isBuilt) {
            return;
        }
        section.isBuilt = true;
        const drawing = new DOMParser().parseFromString(this.plans[number].svg, 'image/svg+xml').documentElement;
        if (drawing.localName !== 'svg') {
            section.append(element('p', 'hint', 'This plan can not be read.'));
            return;
        }
        cleanDrawing(drawing);
        drawing.setAttribute('role', 'img');
        drawing.setAttribute('aria-label', `Plan of ${this.plans[number].storey || noStorey}`);
        drawing.removeAttribute('width');
        drawing.removeAttribute('height');
        section.append(document.importNode(drawing, true));
        this.mark();
    }

    buildAll() {
        this.plans.forEach((plan, number) => this.build(number));
    }

    /** Goes to the plan of a storey. */
    showStorey(name) {
        const number = this.plans.findIndex((plan) => (plan.storey || noStorey) === name);
        if (number >= 0) {
            this.build(number);
            this.sections[number].scrollIntoView({ block: 'start' });
        }
    }

    select(index) {
        this.selected = index;
        this.mark();
    }

    mark() {
        for (const shape of this.frame.querySelectorAll('.selected')) {
            shape.classList.remove('selected');
        }
        for (const shape of this.frame.querySelectorAll(`[data-object="${Number(this.selected)}"]`)) {
            shape.classList.add('selected');
        }
    }
}

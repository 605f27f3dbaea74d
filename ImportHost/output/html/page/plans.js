/** What the page adds to the style of a plan. */
const planStyle = `
[data-object] { cursor: pointer; }
.selected { stroke: #000; stroke-width: 3.5; }
@media screen { svg { display: block; width: 100%; height: auto; max-height: 88vh; } }
@media print { svg { display: block; max-width: 100%; print-color-adjust: exact; -webkit-print-color-adjust: exact; } }
`;

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
    constructor(plans, actions) {
        this.plans = plans;
        this.actions = actions;
        this.frame = document.getElementById('plans');
        this.sections = plans.map((plan) => this.addSection(plan));
        if (plans.length === 0) {
            this.frame.append(element('p', 'hint', 'There are no plans of this model.'));
        }
        const observer = new IntersectionObserver((entries) => {
            for (const entry of entries) {
                if (entry.isIntersecting) {
                    this.build(this.sections.indexOf(entry.target));
                }
            }
        }, { root: this.frame, rootMargin: '400px' });
        this.sections.forEach((section) => observer.observe(section));
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

    /** The drawing goes to a tree of its own, where its style and that of the page don't meet. */
    build(number) {
        const section = this.sections[number];
        if (section.drawing) {
            return;
        }
        let ownStyle = ''; // taken out of the text, since the page allows no other style elements than its own
        const text = this.plans[number].svg.replace(/<style>([^<]*)<\/style>/g, (whole, style) => {
            ownStyle += style;
            return '';
        });
        const drawing = new DOMParser().parseFromString(text, 'image/svg+xml').documentElement;
        const sheet = new CSSStyleSheet();
        sheet.replaceSync(ownStyle.replace(/@page[^}]*}/g, '') + planStyle);
        cleanDrawing(drawing);
        drawing.setAttribute('role', 'img');
        drawing.setAttribute('aria-label', `Plan of ${this.plans[number].storey || noStorey}`);
        const [, , width, height] = (drawing.getAttribute('viewBox') || '0 0 1 1').split(' ').map(Number);
        section.classList.add(width > height ? 'landscape' : 'portrait');
        const frame = element('div', 'sheet');
        section.drawing = frame.attachShadow({ mode: 'open' });
        section.drawing.adoptedStyleSheets = [sheet];
        section.drawing.append(document.importNode(drawing, true));
        section.drawing.addEventListener('click', (event) => {
            const shape = event.target.closest('[data-object]');
            if (shape) {
                this.actions.open(Number(shape.dataset.object));
            }
        });
        section.append(frame);
        this.mark(section);
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
        this.sections.forEach((section) => this.mark(section));
    }

    mark(section) {
        if (!section.drawing) {
            return;
        }
        for (const shape of section.drawing.querySelectorAll('.selected')) {
            shape.classList.remove('selected');
        }
        for (const shape of section.drawing.querySelectorAll(`path[data-object="${Number(this.selected)}"]:not(.old)`)) {
            shape.classList.add('selected');
        }
    }
}

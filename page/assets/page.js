/*
 * The inventory as the server has it, live. Below stand, each on those before it: texts, columns, the filter, a row,
 * the table, the summary, the details of a device, and the connection that feeds them.
 *
 * What devices say of themselves is hostile. It gets into the page as text nodes only, isolated from the direction of
 * the text around it, and with characters made visible that would hide or rearrange it.
 */

const byId = (id) => document.getElementById(id);

/* Texts */

const Invisible = /[\p{Cc}\p{Cf}\p{Co}\p{Cs}\p{Zl}\p{Zp}]/gu;
const LongestText = 256; // of a cell; the details have all of it

/** Shows any value of a JSON document as one line in which nothing is hidden. */
function visible(value) {
    const text = typeof value === "string" ? value : (JSON.stringify(value) ?? "");
    const numberOf = (character) => character.codePointAt(0).toString(16).toUpperCase().padStart(4, "0");
    return text.replace(Invisible, (each) => `[U+${numberOf(each)}]`);
}

function shortened(value) {
    const short = typeof value === "string" ? value.slice(0, LongestText) : value;
    return visible(short).slice(0, LongestText);
}

const AgeUnits = [[86400, "d"], [3600, "h"], [60, "min"], [0, "s"]];

/** The age in words: 59 s, 59 min, 23 h, 2 d. */
function ageText(milliseconds) {
    const seconds = Math.max(0, Math.floor(milliseconds / 1000));
    const [size, unit] = AgeUnits.find(([each]) => seconds >= each);
    return `${Math.floor(seconds / (size || 1))} ${unit}`;
}

const timeFormat = new Intl.DateTimeFormat(undefined, { dateStyle: "medium", timeStyle: "medium" });
const timeText = (time) => (Number.isNaN(time) ? "" : timeFormat.format(time));

/** @returns {HTMLElement} with the children; texts among them become text nodes. */
function element(name, ...children) {
    const result = document.createElement(name);
    result.append(...children);
    return result;
}

const isObject = (value) => typeof value === "object" && value !== null && !Array.isArray(value);

/** The objects of an array; none when the device sent something else in its place. */
const objectsOf = (value) => (Array.isArray(value) ? value.filter(isObject) : []);

/* Columns */

const ConflictKinds = { ip: "IP", mac: "MAC", name: "name" };

/** "IP 10.0.0.5" of the conflict "ip:10.0.0.5". */
function conflictText({ Conflict }) {
    const [, kind, value] = /^(\w+):(.*)$/su.exec(Conflict?.Details?.Conflict) ?? [];
    return Conflict && `${ConflictKinds[kind] ?? ""} ${value ?? ""}`.trim();
}

const productText = ({ ProductName, ProductVersion }) => [ProductName, ProductVersion].filter(Boolean).join(" ");

const changesOf = ({ Changed }) => objectsOf(Changed?.Details?.Changes);

/** What was before and what is after a change, which may be nothing. */
const sidesOf = ({ Before, After }) => [Before ?? "(nothing)", After ?? "(nothing)"];
const changeText = (change) => `${change.Property}: ${sidesOf(change).join(" \u2192 ")}`;

/** The same without the property, each side isolated. */
function changeParts(change) {
    const [before, after] = sidesOf(change).map((each) => element("bdi", shortened(each)));
    return [before, " \u2192 ", after];
}

function summaryOfChanges([first, ...others]) {
    const more = others.length > 0 ? ` and ${others.length} more` : "";
    return first ? [element("bdi", shortened(first.Property)), ": ", ...changeParts(first), more] : [];
}

/** What each column says of a device: a list, since it may say several things. */
const columns = {
    state: ({ State }) => [State],
    name: ({ Host }) => [Host.HostName || "(no name)"],
    site: ({ Site }) => [Site],
    type: ({ Host }) => [Host.DeviceType],
    family: ({ Host }) => [Host.DeviceFamily],
    serial: ({ Host }) => [Host.SerialNumber],
    products: ({ Host }) => objectsOf(Host.Products).map(productText),
    ip: ({ Host }) => objectsOf(Host.NICs).map((each) => each.IPAddress),
    mac: ({ Host }) => objectsOf(Host.NICs).map((each) => each.MACAddress),
    conflict: (device) => [conflictText(device)],
    changed: (device) => changesOf(device).map(changeText),
};

/** What to sort by where it is not the text: less comes first. Worst states first, youngest changes first. */
const StateOrder = ["gone", "flapping", "unknown", "left", "present"];
const sortKeys = {
    state: ({ State }) => StateOrder.indexOf(State),
    age: ({ Since }) => -Date.parse(Since),
    mac: ({ Host }) => numberOfMac(objectsOf(Host.NICs)[0]?.MACAddress),
    changed: ({ Changed }) => (Changed ? -Date.parse(Changed.Time) : ""),
};

/** Hexadecimal digits are no text in which decimal numbers are told apart. */
function numberOfMac(mac) {
    return parseInt(shortened(mac).replaceAll(/[:-]/gu, ""), 16) || "";
}

const collator = new Intl.Collator("en", { numeric: true, sensitivity: "base" });

/** Orders numbers and texts, with the empty ones last whatever the direction, 1 or -1. */
function compareKeys(left, right, direction) {
    if (left === "" || right === "") {
        return (left === "") - (right === "");
    }
    return direction * (typeof left === "number" ? left - right : collator.compare(left, right));
}

/* The filter */

function wildcard(pattern) {
    const escaped = pattern.replace(/[\\^$.+()[\]{}|]/gu, "\\$&");
    return new RegExp(`^${escaped.replace(/\*+/gu, ".*").replace(/\?/gu, ".")}$`, "isu");
}

/** @returns {(texts: Object<string, string[]>) => boolean} whether a device meets one condition of the filter. */
function condition(word) {
    const [, name, negation, pattern] = /^([^=!]*)(!?)=(.*)$/su.exec(word) ?? [];
    if (name === undefined) {
        const wanted = word.toLowerCase();
        return (texts) => Object.values(texts).some((each) => each.some((text) => text.toLowerCase().includes(wanted)));
    }
    if (!Object.hasOwn(columns, name)) {
        throw new Error(`"${name}" is not a column; the columns are ${Object.keys(columns).join(", ")}`);
    }
    const expression = wildcard(pattern);
    return (texts) => {
        const values = texts[name].length === 0 ? [""] : texts[name];
        return values.some((each) => expression.test(each)) !== (negation === "!");
    };
}

/**
 * The filter of a line: words, of which "two words" are one, and all of which a device must have.
 * @throws {Error} that says which column there is not.
 */
function parseFilter(line) {
    const words = line.match(/(?:[^\s"]|"[^"]*"?)+/gu) ?? [];
    const conditions = words.map((each) => condition(each.replaceAll('"', "")));
    return (texts) => conditions.every((each) => each(texts));
}

/* A row */

const rowsOfElements = new WeakMap();

/** A device in the table. */
class Row {
    constructor(key) {
        this.key = key;
        this.element = byId("row").content.firstElementChild.cloneNode(true);
        this.cells = Object.fromEntries([...this.element.children].map((each) => [each.dataset.column, each]));
        this.button = this.cells.name.firstElementChild;
        this.cells.name = this.button;
        rowsOfElements.set(this.element, this);
    }

    show(device) {
        this.device = device;
        this.since = Date.parse(device.Since);
        const before = this.texts;
        this.texts = {};
        for (const [name, textsOf] of Object.entries(columns)) {
            this.texts[name] = textsOf(device).map(shortened);
            if (this.cells[name] && this.texts[name].join() !== before?.[name].join()) {
                this.cells[name].replaceChildren(...this.#partsOf(name));
            }
        }
        this.element.dataset.state = device.State;
        this.cells.age.title = `since ${timeText(this.since)}`;
        this.cells.changed.title = timeText(Date.parse(device.Changed?.Time));
    }

    #partsOf(name) {
        if (name === "changed") {
            return summaryOfChanges(changesOf(this.device));
        }
        return this.texts[name].filter(Boolean).flatMap((text) => [", ", element("bdi", text)]).slice(1);
    }

    /** Lets the age go on. */
    tick(now) {
        const text = ageText(now - this.since);
        if (this.age !== text) {
            this.age = text;
            this.cells.age.textContent = text;
        }
    }

    /** Makes it ready to be sorted by this column. */
    rank(column) {
        this.sortKey = sortKeys[column]?.(this.device) ?? this.texts[column].join(", ");
    }

    isInState(name) {
        return name === "all" || (name === "conflict" ? Boolean(this.device.Conflict) : this.device.State === name);
    }
}

/* The table */

/** So few that the page answers its user while thousands come; more in a large table, whose frames cost more. */
const rowsPerFrame = (count) => Math.max(500, count / 10);

/**
 * All devices, in the wanted order, those hidden that are not wanted. All are in the page: only so the browser's own
 * search and screen readers find them; style keeps those cheap that are out of sight. What comes is shown once a frame.
 */
class DeviceTable {
    constructor(body) {
        this.body = body;
        this.rows = new Map(); // by key
        this.order = []; // the same as they are sorted
        this.news = new Map(); // devices by key, null when removed: not shown yet, the newest of each
        this.column = "name";
        this.direction = 1;
        this.state = "all";
        this.filter = () => true;
        this.clock = () => Date.now();
        this.onshown = () => {}; // called after each frame in which something has changed
    }

    static keyOf = ({ Site, Device }) => `${Site}/${Device}`;

    set(device) {
        this.#take(DeviceTable.keyOf(device), { ...device, Host: isObject(device.Host) ? device.Host : {} });
    }

    remove(device) {
        this.#take(DeviceTable.keyOf(device), null);
    }

    /** Takes these for all devices that there are. */
    replace(devices) {
        const kept = new Set(devices.map(DeviceTable.keyOf));
        for (const key of [...this.rows.keys(), ...this.news.keys()]) {
            if (!kept.has(key)) {
                this.#take(key, null);
            }
        }
        devices.forEach((each) => this.set(each));
    }

    sort(column, direction) {
        [this.column, this.direction] = [column, direction];
        this.order.forEach((row) => row.rank(column));
        this.#place([...this.order]);
    }

    /** Shows those that are in the state and meet the filter. */
    choose(state, filter) {
        [this.state, this.filter] = [state, filter];
        this.order.forEach((row) => this.#hideOrShow(row));
        this.#keepReachable();
        this.onshown();
    }

    tick() {
        const now = this.clock();
        this.order.forEach((row) => row.tick(now));
    }

    /** The row that is shown next in this direction, 1 or -1, so many further; the last one when there are less. */
    neighbour(row, direction, distance = 1) {
        let found = row;
        for (let at = this.order.indexOf(row) + direction; distance > 0 && this.order[at]; at += direction) {
            if (!this.order[at].element.hidden) {
                found = this.order[at];
                distance -= 1;
            }
        }
        return found;
    }

    /** Makes it the one that the Tab key leads to. */
    rove(row) {
        if (this.current) {
            this.current.button.tabIndex = -1;
        }
        this.current = row;
        row.button.tabIndex = 0;
    }

    #take(key, device) {
        if (this.news.size === 0) {
            requestAnimationFrame(() => this.#showNews());
        }
        this.news.set(key, device);
    }

    #showNews() {
        const changed = [];
        for (const [key, device] of [...this.news].slice(0, rowsPerFrame(this.rows.size))) {
            this.news.delete(key);
            const row = device ? (this.rows.get(key) ?? this.#add(key)) : this.rows.get(key);
            if (device) {
                row.show(device);
                row.tick(this.clock());
                row.rank(this.column);
                this.#hideOrShow(row);
                changed.push(row);
            } else if (row) {
                this.#drop(row);
            }
        }
        this.order = this.order.filter((row) => this.rows.has(row.key));
        this.#place(changed);
        if (this.news.size > 0) {
            requestAnimationFrame(() => this.#showNews());
        }
        this.onshown();
    }

    #add(key) {
        const row = new Row(key);
        this.rows.set(key, row);
        this.order.push(row);
        return row;
    }

    #drop(row) {
        const hadFocus = row.element.contains(document.activeElement);
        const next = [this.neighbour(row, 1), this.neighbour(row, -1)].find((each) => each !== row);
        this.rows.delete(row.key);
        row.element.remove();
        row.isRemoved = true;
        if (hadFocus) {
            next?.button.focus();
        }
    }

    #hideOrShow(row) {
        row.element.hidden = !row.isInState(this.state) || !this.filter(row.texts);
    }

    /** Puts all rows in their order; only the changed ones may be out of it. */
    #place(changed) {
        const before = [...this.order];
        this.order.sort((left, right) =>
            compareKeys(left.sortKey, right.sortKey, this.direction) || (left.key < right.key ? -1 : 1));
        if (this.order.some((row, index) => row !== before[index]) || changed.some((row) => !row.element.isConnected)) {
            this.#move(changed);
        }
        this.#keepReachable();
    }

    /** Takes the moved rows out first, so that those that stay are passed and not touched. */
    #move(moved) {
        const focused = document.activeElement;
        moved.forEach((row) => row.element.remove());
        let next = this.body.firstElementChild;
        for (const row of this.order) {
            if (row.element === next) {
                next = next.nextElementSibling;
            } else {
                this.body.insertBefore(row.element, next);
            }
        }
        if (focused !== document.activeElement && focused.isConnected) {
            focused.focus({ preventScroll: true });
        }
    }

    /** Lets the Tab key lead to a row that is shown. */
    #keepReachable() {
        if (!this.current?.element.isConnected || this.current.element.hidden) {
            const first = this.order.find((row) => !row.element.hidden);
            if (first) {
                this.rove(first);
            }
        }
    }
}

/* The summary */

const counted = (count, noun) => `${count} ${noun}${count === 1 ? "" : "s"}`;

/** What there is above the table: how many devices are in each state, what the sites say of themselves. */
class Summary {
    constructor(table) {
        this.table = table;
        this.sites = null; // by name; null until the server has told of them
        this.spokenAt = 0;
    }

    show() {
        const rows = this.table.order;
        const counts = [];
        for (const label of byId("states").querySelectorAll("label")) {
            const { value } = label.control;
            const count = rows.reduce((sum, row) => sum + row.isInState(value), 0);
            label.querySelector("b").textContent = count;
            label.classList.toggle("none", count === 0);
            if (count > 0 && value !== "all") {
                counts.push(`${count} ${value === "conflict" ? "in conflict" : value}`);
            }
        }
        const shown = rows.reduce((sum, row) => sum + !row.element.hidden, 0);
        byId("shown").textContent = shown === rows.length ? "" : `${shown} of ${rows.length} shown`;
        byId("empty").hidden = shown > 0;
        byId("empty").textContent = this.#reasonForNone(rows.length);
        this.text = [counted(rows.length, "device"), ...counts, byId("shown").textContent].filter(Boolean).join(", ");
    }

    #reasonForNone(count) {
        if (this.sites === null) {
            return "Waiting for the server.";
        }
        return count === 0 ? "No device is known." : "No device meets the filter.";
    }

    setSite(site) {
        this.sites.set(site.Site, site);
        this.showSites();
    }

    removeSite({ Site }) {
        this.sites.delete(Site);
        this.showSites();
    }

    replaceSites(sites) {
        this.sites = new Map(sites.map((each) => [each.Site, each]));
        this.showSites();
        this.show();
    }

    showSites() {
        const all = [...this.sites.values()].sort((left, right) => collator.compare(left.Site, right.Site));
        const told = all.filter(({ State, Text }) => State !== "ready" || Text);
        const lineOf = ({ Site, State, Text }) => visible(`Site ${Site}: ${State}${Text ? `, ${Text}` : ""}`);
        byId("title").textContent = `Devices of ${all.length === 1 ? all[0].Site : counted(all.length, "site")}`;
        document.title = byId("title").textContent;
        document.querySelector("table").classList.toggle("several", all.length > 1);
        byId("sites").hidden = told.length === 0;
        byId("sites").classList.toggle("notice", all.length > 1 || all.some(({ State }) => State !== "ready"));
        byId("sites").replaceChildren(...told.map((each) => element("li", lineOf(each))));
    }

    /** Tells screen readers of the counts, every ten seconds at most: a storm of changes would leave them no rest. */
    speak() {
        const now = Date.now();
        if (this.sites !== null && byId("spoken").textContent !== this.text && now - this.spokenAt > 10_000) {
            byId("spoken").textContent = this.text;
            this.spokenAt = now;
        }
    }
}

/* The details of a device */

/** Any value of a JSON document as nested lists. */
function valueElement(value) {
    if (Array.isArray(value)) {
        return element("ol", ...value.map((each) => element("li", valueElement(each))));
    }
    if (isObject(value)) {
        return definitions(Object.entries(value).map(([name, each]) => [name, valueElement(each)]));
    }
    return element("bdi", visible(value));
}

function definitions(entries) {
    return element("dl", ...entries.flatMap(([name, value]) =>
        [element("dt", element("bdi", visible(name))), element("dd", value)]));
}

function section(title, ...children) {
    return element("section", element("h3", title), ...children);
}

/** A dialog with all that is known of one device, which goes on while the device changes. */
class Details {
    constructor(dialog) {
        this.dialog = dialog;
    }

    open(row) {
        this.row = row;
        this.shown = null;
        row.button.focus(); // where the browser goes back to
        this.refresh();
        this.dialog.showModal();
        this.dialog.scrollTop = 0;
    }

    /** Shows what has changed of the device since. */
    refresh() {
        const device = this.row?.isRemoved ? "removed" : this.row?.device;
        if (!device || device === this.shown) {
            return;
        }
        this.shown = device;
        byId("details-title").textContent = this.row.button.textContent;
        const notice = element("p", "This device is not in the inventory any more.");
        notice.className = "notice";
        this.dialog.lastElementChild.replaceChildren(...(this.row.isRemoved ? [notice] : []), ...this.#sections());
    }

    #sections() {
        const { Site, Device, State, Since, Conflict, Changed, Host } = this.row.device;
        const known = [["Site", Site], ["Device", Device], ["State", State], ["Since", timeText(Date.parse(Since))]];
        const details = [section("Inventory", definitions(known))];
        if (Conflict) {
            details.push(section("Conflict", definitions([
                ["Time", timeText(Date.parse(Conflict.Time))],
                ...Object.entries(Conflict.Details ?? {}).map(([name, value]) => [name, valueElement(value)]),
            ])));
        }
        if (Changed) {
            details.push(section("Last change", definitions([
                ["Time", timeText(Date.parse(Changed.Time))],
                ...changesOf(this.row.device).map((each) => [each.Property, element("div", ...changeParts(each))]),
            ])));
        }
        return [...details, section("What it says of itself", valueElement(Host))];
    }
}

/* The connection */

const FirstRetryAfter = 3000; // milliseconds, and twice as many each time after that
const LastRetryAfter = 60_000;
const AskEvery = 20_000;

/**
 * Feeds table and summary: first with all, then with what changes. While the server does not answer, what it has told
 * last stays, and the page says how old it is.
 */
class Connection {
    constructor(table, summary) {
        this.table = table;
        this.summary = summary;
        this.heard = Date.now();
        this.retryAfter = FirstRetryAfter;
        setInterval(() => this.#ask(), AskEvery);
        // Browsers open few connections to one server: hidden pages leave theirs to the others.
        document.addEventListener("visibilitychange", () => {
            if (document.hidden) {
                this.source?.close();
            } else if (this.last !== undefined) {
                this.#follow();
            }
        });
    }

    async start() {
        try {
            const answer = await fetch("devices.json", { signal: AbortSignal.timeout(60_000) });
            if (answer.status === 401) {
                location.reload(); // asks for the token
                return;
            }
            if (!answer.ok) {
                throw new Error(answer.statusText);
            }
            const all = await answer.json();
            const offset = Date.parse(all.Now) - Date.now();
            this.table.clock = () => Date.now() + offset; // ages are the server's, whatever this machine's clock says
            this.table.replace(all.Devices);
            this.summary.replaceSites(all.Sites);
            this.last = all.Event;
            this.#follow();
        } catch {
            this.#retry();
        }
    }

    #follow() {
        this.source?.close();
        if (document.hidden) {
            return; // goes on once it is seen
        }
        const source = new EventSource(`events?after=${encodeURIComponent(this.last)}`);
        this.source = source;
        const on = (kind, take) =>
            source.addEventListener(kind, (event) => {
                this.last = event.lastEventId || this.last;
                this.heard = Date.now();
                take(JSON.parse(event.data));
            });
        on("device", (device) => this.table.set(device));
        on("removed", (device) => this.table.remove(device));
        on("site", (site) => this.summary.setSite(site));
        on("removed-site", (site) => this.summary.removeSite(site));
        on("reset", () => {
            source.close();
            this.start();
        });
        source.onopen = () => this.#show(true);
        source.onerror = () => (source.readyState === EventSource.CLOSED ? this.#retry() : this.#show(false));
    }

    #retry() {
        this.source?.close();
        this.#show(false);
        clearTimeout(this.retrying);
        this.retrying = setTimeout(() => this.start(), this.retryAfter);
        this.retryAfter = Math.min(2 * this.retryAfter, LastRetryAfter);
    }

    /** A server that is cut off closes no connection; only a question tells. */
    async #ask() {
        if (document.hidden || this.source?.readyState !== EventSource.OPEN) {
            return;
        }
        try {
            await fetch("healthz", { cache: "no-store", signal: AbortSignal.timeout(AskEvery / 2) });
            this.heard = Date.now();
        } catch {
            this.#retry();
        }
    }

    #show(isConnected) {
        document.body.classList.toggle("old", !isConnected);
        byId("lost").hidden = isConnected;
        if (isConnected) {
            this.heard = Date.now();
            this.retryAfter = FirstRetryAfter;
        } else {
            byId("lost").textContent =
                `The connection to the server is lost. What is shown is as it was at ${timeText(this.heard)}.`;
        }
    }
}

/* What the user does */

function sortOnClick(table) {
    const heads = [...document.querySelectorAll("thead th")];
    document.querySelector("thead").addEventListener("click", ({ target }) => {
        const head = target.closest("button")?.parentElement;
        if (head) {
            const descending = head.ariaSort === "ascending";
            heads.forEach((each) => each.removeAttribute("aria-sort"));
            head.ariaSort = descending ? "descending" : "ascending";
            table.sort(head.dataset.column, descending ? -1 : 1);
        }
    });
}

function filterOnInput(table, summary) {
    const field = byId("filter");
    const error = byId("filter-error");
    const apply = () => {
        try {
            table.choose(byId("states").querySelector(":checked").value, parseFilter(field.value));
            error.hidden = true;
            summary.spokenAt = 0;
        } catch ({ message }) {
            error.textContent = message;
            error.hidden = false;
        }
        field.setAttribute("aria-invalid", !error.hidden);
    };
    field.addEventListener("input", apply);
    byId("states").addEventListener("change", apply);
    apply(); // browsers restore what was in the fields
}

/** By key: in which direction, and how many rows further. */
const Steps = {
    ArrowDown: [1, 1],
    ArrowUp: [-1, 1],
    PageDown: [1, 20],
    PageUp: [-1, 20],
    End: [1, Infinity],
    Home: [-1, Infinity],
};

function moveAndOpenRows(table, details) {
    const rowOf = (target) => rowsOfElements.get(target.closest("tr"));
    document.querySelector(".skip").addEventListener("click", (event) => {
        event.preventDefault();
        table.current?.button.focus();
    });
    table.body.addEventListener("click", ({ target }) => {
        if (getSelection().isCollapsed) { // otherwise somebody marks a text to copy it
            details.open(rowOf(target));
        }
    });
    details.dialog.addEventListener("close", () => {
        if (details.row.isRemoved) { // and cannot have the focus back
            table.current?.button.focus();
        }
    });
    table.body.addEventListener("focusin", ({ target }) => table.rove(rowOf(target)));
    table.body.addEventListener("keydown", (event) => {
        if (Steps[event.key]) {
            event.preventDefault();
            table.neighbour(rowOf(event.target), ...Steps[event.key]).button.focus();
        }
    });
}

if (location.hash) {
    history.replaceState(null, "", location.pathname); // the form for the token has left its mark
}
const table = new DeviceTable(document.querySelector("tbody"));
const summary = new Summary(table);
const details = new Details(byId("details"));
table.onshown = () => {
    summary.show();
    details.refresh();
};
sortOnClick(table);
filterOnInput(table, summary);
moveAndOpenRows(table, details);
setInterval(() => {
    table.tick();
    summary.speak();
}, 1000);
new Connection(table, summary).start();

"use strict";
// What the page shows of its rows, whose form explorer_rows.hpp tells. Metamodels and versions are numbers here, their
// places in the lists of the rows; `name` and `version` stand for these.
(() => {
  const rows = JSON.parse(document.getElementById("rows").textContent);
  const id = (wanted) => document.getElementById(wanted);
  const all = (selector, from = document) => [...from.querySelectorAll(selector)];

  // ---- Texts ----

  /** With an escape for each character that would not show or would turn what stands around it. */
  const visible = (text) => text.replace(/(?![\u200C\u200D])[\p{Cc}\p{Cf}\p{Cs}\p{Zl}\p{Zp}]/gu,
    (character) => `\\u{${character.codePointAt(0).toString(16)}}`);
  const plain = (text) => text.normalize("NFKC").toLowerCase();
  const counted = (number, noun) => `${number} ${noun}${number === 1 ? "" : "s"}`;
  const nameText = (name) => rows.names[name];
  const versionText = ([name, version]) => rows.versions[name][version];

  const expensiveWeight = 1e9;
  function weightText(weight) {
    const expensive = Math.floor(weight / expensiveWeight);
    const rest = weight % expensiveWeight;
    if (expensive === 0) return `${rest}`;
    return `${expensive} expensive${rest === 0 ? "" : `, ${rest}`}`;
  }

  /** A range as a catalogue writes it. */
  function rangeText(range) {
    if (Array.isArray(range)) return `[${range[0]}, ${range[1]})`;
    return typeof range === "object" ? range.anyOf.map(rangeText).join(" or ") : range;
  }

  // ---- Elements ----

  function element(tag, properties = {}, ...children) {
    const made = Object.assign(document.createElement(tag), properties);
    made.append(...children);
    return made;
  }
  const text = (shown) => element("bdi", { textContent: visible(shown) });
  const quiet = (shown) => element("span", { className: "quiet", textContent: shown });
  const note = (told) => element("p", { className: "note", dir: "auto",
                                        textContent: told.split("\n").map(visible).join("\n") });
  const item = (...children) => element("li", {}, ...children);

  function button(children, act, className = "") {
    const made = element("button", { type: "button", className }, ...children);
    made.addEventListener("click", act);
    return made;
  }

  /** A heading and a list of items; nothing when there are none. */
  function titledList(title, items) {
    if (items.length === 0) return [];
    return [element("h3", { textContent: title }), element("ul", {}, ...items)];
  }

  /** Opens a version of a metamodel. */
  const link = (place, shown = [text(versionText(place))]) =>
    button(shown, () => { open(...place); id("version").focus(); }, "link");

  // ---- What the rows tell ----

  const keyOf = (...numbers) => numbers.join(" ");
  const tableOf = (told) => new Map(told.map((entry) => [keyOf(...entry.slice(0, -1)), entry.at(-1)]));
  const equivalents = tableOf(rows.semver);
  const unlinked = tableOf(rows.unlinked);
  const versionNotes = tableOf(rows.notes.versions);
  const needNotes = tableOf(rows.notes.needs);
  const hopNotes = tableOf(rows.notes.hops);

  const rangesOf = rows.names.map(() => []);  // on a metamodel
  rows.ranges.forEach(([name], range) => rangesOf[name].push(range));
  const dependants = rows.ranges.map(() => []);  // of a range
  rows.needs.forEach((versions, name) => versions.forEach((ranges, version) =>
    ranges.forEach((range) => dependants[range].push([name, version]))));

  function admits(range, version) {
    const runs = rows.ranges[range][2];
    for (let i = 0; i < runs.length; i += 2) if (runs[i] <= version && version <= runs[i + 1]) return true;
    return false;
  }

  /** The hops of a version as [other version, whether it is expensive, place]. */
  function hopsOf(name, version, isInto) {
    const hops = rows.hops[name];
    const found = [];
    for (let i = 0; i < hops.length; i += 3) {
      const [own, other] = isInto ? [hops[i + 1], hops[i]] : [hops[i], hops[i + 1]];
      if (own === version) found.push([other, hops[i + 2] === 1, i / 3]);
    }
    return found;
  }

  // ---- Lists that keys walk through ----

  const shownButtons = (list) => all("li:not([hidden]) > button", list);

  /** One button of a list can be reached by the tabulator: the current one, or else the first. */
  function settle(list) {
    const buttons = shownButtons(list);
    for (const each of all("button", list)) each.tabIndex = -1;
    const reached = buttons.find((each) => each.hasAttribute("aria-current")) ?? buttons[0];
    if (reached) reached.tabIndex = 0;
  }

  function mark(list, isCurrent) {
    all("li > button", list).forEach((each, i) => {
      if (isCurrent(i)) each.setAttribute("aria-current", "true");
      else each.removeAttribute("aria-current");
    });
    settle(list);
    list.querySelector("[aria-current]")?.scrollIntoView({ block: "nearest" });
  }

  function focusIn(list) {
    const target = list.querySelector("button[tabindex='0']");
    target?.focus();
    return target != null;
  }

  function walk(list, key) {
    const buttons = shownButtons(list);
    const at = buttons.indexOf(document.activeElement);
    const to = { ArrowDown: at + 1, ArrowUp: at - 1, Home: 0, End: buttons.length - 1,
                 PageDown: at + 10, PageUp: at - 10 }[key];
    if (to === undefined || at < 0) return false;
    if (to < 0 && list.id === "names" && key === "ArrowUp") id("search").focus();
    else buttons[Math.min(Math.max(to, 0), buttons.length - 1)].focus();
    return true;
  }

  // ---- Metamodels ----

  let chosen = null;  // [name, version]

  function listNames() {
    id("names").append(...rows.names.map((shown, name) =>
      item(button([text(shown), " ", quiet(String(rows.versions[name].length))],
                  () => { open(name); focusIn(id("versions")); }))));
    settle(id("names"));
  }

  function filterNames() {
    const wanted = plain(id("search").value.trim());
    const items = [...id("names").children];
    let shown = 0;
    items.forEach((each, name) => {
      each.hidden = !plain(nameText(name)).includes(wanted);
      if (!each.hidden) ++shown;
    });
    id("matches").textContent = shown === items.length ? "" : `${shown} of ${items.length} shown`;
    settle(id("names"));
    filterQuestions(items);
  }

  /** Shows the questions about metamodels that are shown. */
  function filterQuestions(names) {
    [...id("questions").children].forEach((each, i) => {
      const { from, to } = rows.questions[i];
      each.hidden = isPicked({ from, to }) && [...from, ...to].every(([name]) => names[name].hidden);
    });
    settle(id("questions"));
  }

  const newestOf = (name) => rows.versions[name].length - 1;

  function open(name, version = newestOf(name)) {
    if (chosen?.[0] !== name) listVersions(name);
    chosen = [name, version];
    mark(id("names"), (i) => i === name);
    mark(id("versions"), (i) => i === newestOf(name) - version);
    showVersion(name, version);
  }

  function listVersions(name) {
    id("name").replaceChildren(text(nameText(name)));
    id("versions").replaceChildren(...rows.versions[name].map((shown, version) =>
      item(button([text(shown)], () => open(name, version)))).reverse());
  }

  function showVersion(name, version) {
    const place = [name, version];
    const heading = element("h2", { id: "version-name" }, text(nameText(name)), " ", text(versionText(place)));
    const equivalent = equivalents.get(keyOf(...place));
    if (equivalent !== undefined) heading.append(" ", quiet(`= ${equivalent}`));
    const told = versionNotes.get(keyOf(...place));
    id("version").replaceChildren(
      heading, ...(told === undefined ? [] : [note(told)]),
      element("p", { className: "tools" },
              button(["From here"], () => pick("from", place), "pick-from"),
              button(["To here"], () => pick("to", place), "pick-to")),
      ...titledList("Needs", rows.needs[name][version].map((range, i) => showNeed(place, range, i))),
      ...titledList("Needed by", showDependants(name, version)),
      ...titledList("Hops from here", showHops(place, false)),
      ...titledList("Hops to here", showHops(place, true)));
  }

  function showNeed(place, range, i) {
    const [name, shown, runs] = rows.ranges[range];
    const told = needNotes.get(keyOf(...place, i));
    const newest = runs.length === 0 ? newestOf(name) : runs.at(-1);
    const admitted = runs.reduce((sum, end, at) => (at % 2 === 1 ? sum + end - runs[at - 1] + 1 : sum), 0);
    const why = unlinked.get(keyOf(...place, i));
    return item(link([name, newest], [text(nameText(name))]), " ", text(shown), " ",
                ...(why === undefined ? [] : [quiet(why), " "]),
                quiet(admitted === 0 ? "no version fits" : `${counted(admitted, "version")}`),
                ...(told === undefined ? [] : [note(told)]));
  }

  /** An item for each metamodel with versions that need this one, by name. */
  function showDependants(name, version) {
    const byName = new Map();
    for (const range of rangesOf[name]) {
      if (!admits(range, version)) continue;
      for (const [dependant, its] of dependants[range]) {
        if (!byName.has(dependant)) byName.set(dependant, new Set());
        byName.get(dependant).add(its);
      }
    }
    return [...byName].sort(([one], [other]) => one - other).map(([dependant, versions]) => {
      const places = [...versions].sort((one, other) => other - one).map((its) => [dependant, its]);
      const runs = element("div", { className: "runs" }, ...places.map((each) => link(each)));
      const few = 12;
      const summary = [text(nameText(dependant)), " ", quiet(counted(places.length, "version"))];
      return places.length <= few
        ? item(...summary, runs)
        : item(element("details", {}, element("summary", {}, ...summary), runs));
    });
  }

  function showHops([name, version], isInto) {
    return hopsOf(name, version, isInto).sort(([one], [other]) => other - one).map(([other, isExpensive, place]) => {
      const told = hopNotes.get(keyOf(name, place));
      return item(link([name, other]),
                  ...(isExpensive ? [" ", element("span", { className: "dear", textContent: "expensive" })] : []),
                  ...(told === undefined ? [] : [note(told)]));
    });
  }

  // ---- The way ----

  const ends = { from: new Map(), to: new Map() };  // version by name
  const selectionKey = (entries) => entries.map(([name, version]) => keyOf(name, version)).sort().join();
  const questionKey = (from, to) => `${selectionKey(from)}/${selectionKey(to)}`;
  /** Whether it can be picked: it is a question, of versions that are there. */
  const isPicked = ({ from, to }) => from?.length > 0 && to?.length > 0;
  const answered = new Map();  // the first answer counts
  rows.questions.forEach((question, i) => {
    if (!isPicked(question)) return;
    const key = questionKey(question.from, question.to);
    if (!answered.has(key)) answered.set(key, i);
  });

  function pick(end, [name, version]) {
    ends[end].set(name, version);
    showWay();
  }

  function showWay() {
    for (const end of ["from", "to"]) showEnd(end);
    const [from, to] = [[...ends.from], [...ends.to]];
    const isWhole = from.length > 0 && to.length > 0;
    const found = isWhole ? answered.get(questionKey(from, to)) : undefined;
    mark(id("questions"), (i) => i === found);
    id("asking").hidden = !isWhole;
    id("copied").textContent = "";
    if (isWhole) id("command").textContent = commandFor(from, to);
    id("verdict").classList.toggle("hint", !isWhole);
    showVerdict(isWhole ? verdict(found) : hint(from, to));
    showPath(found);
    id("clear").disabled = from.length + to.length === 0;
    id("swap").disabled = id("clear").disabled;
  }

  function hint(from, to) {
    if (from.length > 0) return "Pick a version to go to.";
    return to.length > 0 ? "Pick a version to start from." : "Pick versions, or one of the questions below.";
  }

  function showEnd(end) {
    const places = [...ends[end]].sort(([one], [other]) => one - other);
    id(end).replaceChildren(...places.map((place) => {
      const remove = button(["×"], () => { ends[end].delete(place[0]); showWay(); }, "link");
      remove.setAttribute("aria-label", `Remove ${visible(nameText(place[0]))}`);
      return item(link(place, [text(nameText(place[0])), " ", text(versionText(place))]), remove);
    }));
    if (places.length === 0) id(end).append(element("li", { className: "none", textContent: "nothing picked" }));
  }

  /** Replaced only where it changes, for it is read aloud then. */
  function showVerdict(shown) {
    if (id("verdict").textContent !== shown) id("verdict").textContent = shown;
  }

  function verdict(number) {
    if (number === undefined) return "This page does not know. Ask on the command line:";
    const { answer } = rows.questions[number];
    if (answer.error !== undefined) return `No answer: ${answer.error.split("\n").map(visible).join(" ")}`;
    if (answer.open !== undefined) {
      const limit = answer.open === "time" ? "time" : "memory";
      return `Not known within the limit of ${limit}; no path weighs less than ${weightText(answer.leastProven)}.`;
    }
    if (!answer.found) return "There is no path. The command explain, with the same options, tells why.";
    return `${counted(answer.steps.length, "step")}, weight ${weightText(answer.weight)}`;
  }

  function showPath(number) {
    const answer = rows.questions[number]?.answer;
    id("answer").replaceChildren(...(answer?.found !== true ? [] : [
      showMembers("Start", answer.start), element("ol", {}, ...answer.steps.map(showStep)),
      showMembers("End", answer.end)]));
  }

  function showMembers(title, members) {
    return element("details", {}, element("summary", { textContent: title }),
                   element("ul", {}, ...Object.entries(members).map(([name, version]) =>
                     item(text(name), " ", text(version)))));
  }

  function showStep(step, i) {
    const moves = step.hops.map((hop) => item(
      text(hop.name), " ", text(hop.from), " → ", text(hop.to),
      ...(hop.expensive ? [" ", element("span", { className: "dear", textContent: "expensive" })] : []),
      ...(hop.notes ?? []).map(note)));
    const entering = step.broughtIn.map((entry) => item(
      text(entry.name), " ", text(entry.version), " ",
      element("span", { className: "enter", textContent: "brought in" }), ...(entry.notes ?? []).map(note)));
    const made = item(
      element("b", {}, `Step ${i + 1} `, element("small", { textContent: `weight ${weightText(step.weight)}` })),
      element("ul", {}, ...moves, ...entering));
    if (step.ties.length > 0) {
      made.append(element("details", {}, element("summary", { textContent: "Why together" }),
                          element("ul", {}, ...step.ties.map(showTie))));
    }
    return made;
  }

  function showTie({ dependent, needs, refused }) {
    return item(text(dependent.name), " ", text(dependent.version), " needs ", text(needs.name), " ",
                text(rangeText(needs.range)), ...(refused === null ? [] : [", not ", text(refused)]));
  }

  // ---- The command line ----

  const quoted = (word) => (/^[\w.+:@%\/,=-]+$/.test(word) ? word : `'${word.replaceAll("'", "'\\''")}'`);
  const isPlain = (word) => /^[\p{L}\p{N}_.][\p{L}\p{N}\p{M}_.+:~\/@()<>!-]*$/u.test(word);

  /** Options where these can say it; otherwise a line for batch, which takes any name and version. */
  function commandFor(from, to) {
    const places = [...from, ...to];
    const canBeOptions = places.every((place) => isPlain(nameText(place[0])) && isPlain(versionText(place)));
    if (!canBeOptions) return batchCommandFor(from, to);
    const option = (end) => (place) =>
      `    --${end} ${quoted(`${nameText(place[0])}=${versionText(place)}`)}`;
    return [`evopath path ${quoted(rows.catalogue)}`, ...from.map(option("from")), ...to.map(option("to"))].join(" \\\n");
  }

  function batchCommandFor(from, to) {
    const selection = (places) =>
      Object.fromEntries(places.map((place) => [nameText(place[0]), versionText(place)]));
    const line = JSON.stringify({ from: selection(from), to: selection(to) })
      .replace(/[^ -~]|'/g, (unit) => `\\u${unit.charCodeAt(0).toString(16).padStart(4, "0")}`);
    return `printf '%s\\n' '${line}' |\n    evopath batch ${quoted(rows.catalogue)} -`;
  }

  async function copy() {
    const command = id("command").textContent;
    try {
      await navigator.clipboard.writeText(command);
    } catch {
      getSelection().selectAllChildren(id("command"));
      if (!document.execCommand("copy")) {
        id("copied").textContent = "Selected, but not copied";
        return;
      }
    }
    id("copied").textContent = "Copied";
  }

  // ---- Questions ----

  function listQuestions() {
    id("questions").append(...rows.questions.map((question, i) => item(
      isPicked(question)
        ? button([...selectionTexts(question.from), " → ", ...selectionTexts(question.to), " ", outcome(question.answer)],
                 () => ask(question))
        : button([`Line ${question.answer.line}: `, text(question.answer.error ?? "names nothing to start from or to reach")],
                 () => showUnasked(i)))));
    settle(id("questions"));
    if (rows.questions.length === 0) id("left-out").textContent = "None.";
    if (rows.leftOut > 0) id("left-out").textContent = `${counted(rows.leftOut, "answer")} left out for size.`;
  }

  function selectionTexts(places) {
    const few = 2;
    const shown = places.slice(0, few).flatMap((place, i) =>
      [...(i > 0 ? [", "] : []), text(nameText(place[0])), " ", text(versionText(place))]);
    return places.length > few ? [...shown, ` and ${places.length - few} more`] : shown;
  }

  function outcome(answer) {
    if (answer.error !== undefined) return quiet("no answer");
    if (answer.open !== undefined) return quiet("not known within the limits");
    return quiet(answer.found ? counted(answer.steps.length, "step") : "no path");
  }

  function ask(question) {
    ends.from = new Map(question.from);
    ends.to = new Map(question.to);
    showWay();
  }

  function showUnasked(number) {
    ends.from.clear();
    ends.to.clear();
    showWay();
    mark(id("questions"), (i) => i === number);
    id("verdict").classList.remove("hint");
    showVerdict(verdict(number));
  }

  // ---- Colours ----

  const wantsDark = matchMedia("(prefers-color-scheme: dark)");
  const themes = ["system", "light", "dark"];
  let theme = themes[0];

  function paint() {
    const isDark = theme === "dark" || (theme === "system" && wantsDark.matches);
    document.documentElement.dataset.theme = isDark ? "dark" : "light";
    id("theme").textContent = `Colours: ${theme}`;
  }

  // ---- Keys ----

  const listAround = (target) => target.closest?.(".list");

  function goBack(target) {
    if (target === id("search") && target.value !== "") {
      target.value = "";
      filterNames();
    } else if (listAround(target)?.id === "versions") {
      focusIn(id("names"));
    } else if (id("metamodel").contains(target)) {
      focusIn(id("versions"));
    } else {
      document.activeElement.blur();
    }
  }

  /** What a key does where nothing is typed; whether it does anything. */
  function act(key, target) {
    const list = listAround(target);
    if (list && walk(list, key)) return true;
    if (key === "/") {
      id("search").focus();
      id("search").select();
    } else if (key === "ArrowRight" && list?.id === "names") {
      target.click();
    } else if (key === "ArrowRight" && list?.id === "versions") {
      id("version").focus();
    } else if (key === "ArrowLeft" && id("metamodel").contains(target)) {
      goBack(target);
    } else if ((key === "f" || key === "t") && chosen) {
      pick(key === "f" ? "from" : "to", chosen);
    } else {
      return false;
    }
    return true;
  }

  function actInSearch(key) {
    const first = shownButtons(id("names"))[0];
    if (key === "ArrowDown") first?.focus();
    else if (key === "Enter") first?.click();
    return key === "ArrowDown" || key === "Enter";
  }

  document.addEventListener("keydown", (event) => {
    if (event.ctrlKey || event.altKey || event.metaKey) return;
    const { key, target } = event;
    if (key === "Escape") goBack(target);
    else if (!(target === id("search") ? actInSearch(key) : act(key, target))) return;
    event.preventDefault();
  });
  for (const list of all(".list")) {
    list.addEventListener("focusin", (event) => {
      for (const each of all("button", list)) each.tabIndex = each === event.target ? 0 : -1;
      if (list.id === "versions") open(chosen[0], newestOf(chosen[0]) - shownButtons(list).indexOf(event.target));
    });
  }
  id("search").addEventListener("input", filterNames);
  id("copy").addEventListener("click", copy);
  id("clear").addEventListener("click", () => { ends.from.clear(); ends.to.clear(); showWay(); });
  id("swap").addEventListener("click", () => { [ends.from, ends.to] = [ends.to, ends.from]; showWay(); });
  id("theme").addEventListener("click", () => {
    theme = themes[(themes.indexOf(theme) + 1) % themes.length];
    paint();
  });
  wantsDark.addEventListener("change", paint);

  const versions = rows.versions.reduce((sum, each) => sum + each.length, 0);
  const hops = rows.hops.reduce((sum, each) => sum + each.length / 3, 0);
  id("summary").append(text(rows.catalogue), `: ${counted(rows.names.length, "metamodel")}, `,
                       `${counted(versions, "version")}, ${counted(hops, "hop")}`);
  paint();
  listNames();
  listQuestions();
  if (rows.names.length > 0) open(0);
  else id("name").textContent = "The catalogue is empty.";
  showWay();
})();

"use strict";
(() => {
  const all = (selector, from = document) => [...from.querySelectorAll(selector)];
  const search = document.getElementById("search");
  const movedOnly = document.getElementById("moved-only");
  const matches = document.getElementById("matches");
  const picture = document.getElementById("picture");
  const entries = all("#steps > li");
  const lanes = all("#picture tbody tr");
  let chosen = 0;  // the step, counted from 1; 0 for none

  const plain = (text) => text.normalize("NFKC").toLowerCase();

  function filter() {
    const wanted = plain(search.value.trim());
    const isFound = (element) => plain(element.dataset.name).includes(wanted);
    let shown = 0;
    for (const lane of lanes) {
      lane.hidden = !isFound(lane) || (movedOnly.checked && lane.classList.contains("unmoved"));
      if (!lane.hidden) ++shown;
    }
    for (const entry of entries) {
      const moves = all("li", entry);
      for (const move of moves) move.classList.toggle("found", wanted !== "" && isFound(move));
      entry.classList.toggle("missed", !moves.some(isFound));
    }
    matches.textContent = shown === lanes.length ? "" : `${shown} of ${lanes.length} shown`;
  }

  /** Scrolls the picture sideways so that the column stands free of the names. */
  function reveal(heading) {
    const names = heading.parentElement.cells[0].offsetWidth;
    const left = heading.offsetLeft - names;
    const right = heading.offsetLeft + heading.offsetWidth - picture.clientWidth;
    if (picture.scrollLeft > left) picture.scrollLeft = left;
    if (picture.scrollLeft < right) picture.scrollLeft = right;
  }

  /** Tells beside each name what the lane holds at the first column in sight, if its box is not. */
  function tellHeld() {
    const headings = [...document.querySelector("thead tr").cells];
    const edge = picture.scrollLeft + headings[0].offsetWidth;
    const column = headings.findIndex((cell, i) => i > 0 && cell.offsetLeft + cell.offsetWidth > edge);
    for (const lane of lanes) {
      let from = column;
      while (from > 0 && !lane.cells[from].querySelector(".box")) --from;
      const isSeen = from <= 0 || (from === column && lane.cells[from].offsetLeft >= edge);
      const text = isSeen ? "" : lane.cells[from].querySelector(".box bdi").textContent;
      const now = lane.querySelector(".now");
      if (now.textContent !== text) now.textContent = text;
    }
  }

  function choose(step) {
    chosen = step;
    for (const cell of all(".chosen")) cell.classList.remove("chosen");
    for (const button of all("#steps button")) {
      button.removeAttribute("aria-current");
      button.tabIndex = -1;
    }
    const button = all("#steps button")[Math.max(step, 1) - 1];
    if (button) button.tabIndex = 0;
    if (step === 0) return;
    for (const row of all("#picture tr")) row.cells[step + 1].classList.add("chosen");
    entries[step - 1].classList.add("chosen");
    button.setAttribute("aria-current", "step");
    reveal(document.querySelector("thead tr").cells[step + 1]);
    entries[step - 1].scrollIntoView({ block: "nearest" });
  }

  function chooseAndFocus(step) {
    choose(Math.min(Math.max(step, 1), entries.length));
    const button = all("#steps button")[chosen - 1];
    if (button) button.focus({ preventScroll: true });
  }

  function leave() {
    if (search.value !== "") {
      search.value = "";
      filter();
    } else {
      choose(0);
    }
    if (document.activeElement !== document.body) document.activeElement.blur();
  }

  document.addEventListener("keydown", (event) => {
    if (event.ctrlKey || event.altKey || event.metaKey) return;
    const isTyping = event.target === search;
    const inList = event.target.closest && event.target.closest("#steps") !== null;
    const step = {
      ArrowRight: chosen + 1, ArrowLeft: chosen - 1,
      ...(inList && { ArrowDown: chosen + 1, ArrowUp: chosen - 1, Home: 1, End: entries.length }),
    }[event.key];
    if (event.key === "Escape") {
      leave();
    } else if (event.key === "/" && !isTyping) {
      search.focus();
      search.select();
    } else if (step !== undefined && !isTyping && entries.length > 0) {
      chooseAndFocus(step);
    } else {
      return;
    }
    event.preventDefault();
  });
  let isDue = false;
  picture.addEventListener("scroll", () => {
    if (isDue) return;
    isDue = true;
    requestAnimationFrame(() => { isDue = false; tellHeld(); });
  });
  search.addEventListener("input", filter);
  movedOnly.addEventListener("change", filter);
  entries.forEach((entry, i) => entry.addEventListener("click", () => choose(i + 1)));
  all("thead button").forEach((button, i) => button.addEventListener("click", () => choose(i + 1)));
  all("tbody td").forEach((cell) =>
    cell.addEventListener("click", () => { if (cell.cellIndex > 1) choose(cell.cellIndex - 1); }));
  filter();
  choose(0);
})();

// What evopath draws, seen by a browser: every text can be read, every control works.
import assert from "node:assert/strict";
import { join } from "node:path";
import { after, before, test } from "node:test";

import { Browser } from "./browser.mjs";
import { leastContrast } from "./contrast.mjs";
import { draw } from "./drawn_path.mjs";

const sizes = [{ lanes: 5, steps: 3 }, { lanes: 60, steps: 40 }];
const schemes = ["light", "dark"];

let browser;
before(() => { browser = new Browser(); });
after(() => browser.close());

async function picture(page, name) {
  if (process.env.SCREENSHOTS) await page.screenshot(join(process.env.SCREENSHOTS, `${name}.png`));
}

/** Runs in the page: pairs of elements whose boxes overlap, and texts that their box cuts. */
function findCollisions(selector) {
  const boxes = [...document.querySelectorAll(selector)]
    .map((element) => ({ text: element.textContent, box: element.getBoundingClientRect() }))
    .filter(({ box }) => box.width > 0);
  const overlap = (a, b) => a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
  return boxes.flatMap((one, i) =>
    boxes.slice(i + 1).filter((other) => overlap(one.box, other.box))
      .map((other) => `"${one.text}" meets "${other.text}"`));
}

/** Runs in the page: cut texts of which nothing shows the whole. */
function findCutTexts() {
  return [...document.querySelectorAll("th, .box bdi, .printed td, aside li, header *")]
    .filter((element) => element.scrollWidth > element.clientWidth + 1 && element.clientWidth > 1)
    .filter((element) => !element.closest("[title]")?.title.includes(element.textContent))
    .map((element) => element.textContent);
}

for (const { lanes, steps } of sizes) {
  for (const scheme of schemes) {
    test(`page of ${lanes} metamodels, ${scheme}`, async () => {
      const file = draw(lanes, steps, "html");
      const page = await browser.open(file, scheme);
      await picture(page, `page-${lanes}-${scheme}`);
      assert.deepEqual(page.requests, [`file://${file}`]);
      assert.deepEqual(page.complaints, []);
      assert.equal(await page.evaluate(() => document.querySelectorAll("#picture tbody tr").length), lanes);
      assert.equal(await page.evaluate(() => document.querySelectorAll("#steps > li").length), steps);
      assert.deepEqual(await page.evaluate(findCollisions, ".box"), []);
      assert.deepEqual(await page.evaluate(findCollisions, "thead button"), []);
      assert.deepEqual(await page.evaluate(findCollisions, "header label, header p, .key span, #search"), []);
      assert.deepEqual(await page.evaluate(findCutTexts), []);
      const dark = await page.evaluate(() => getComputedStyle(document.body).backgroundColor);
      assert.equal(dark === "rgb(255, 255, 255)", scheme === "light");
      const grounds = ["--paper", "--stripe", "--band", "--chosen"];
      const pairs = grounds.flatMap((ground) => [["--ink", ground], ["--quiet", ground]]);
      pairs.push(["--dear", "--paper"], ["--dear", "--chosen"], ["--enter", "--paper"],
                 ["--enter", "--chosen"], ["--ink", "--found"]);
      assert.ok(await page.evaluate(leastContrast, pairs) >= 4.5);
    });

    test(`SVG of ${lanes} metamodels, ${scheme}`, async () => {
      const file = draw(lanes, steps, "svg");
      const page = await browser.open(file, scheme, { width: 1900, height: 1200 });
      await picture(page, `svg-${lanes}-${scheme}`);
      assert.deepEqual(page.requests, [`file://${file}`]);
      assert.deepEqual(page.complaints, []);
      assert.deepEqual(await page.evaluate(findCollisions, "text"), []);
      const outside = await page.evaluate(() => {
        const within = (inner, outer) => inner.left >= outer.left && inner.right <= outer.right &&
          inner.top >= outer.top && inner.bottom <= outer.bottom;
        const whole = document.documentElement.getBoundingClientRect();
        return [...document.querySelectorAll("text")].filter((text) =>
          !within(text.getBoundingClientRect(),
                  (text.parentNode.querySelector(":scope > .box") ?? { getBoundingClientRect: () => whole })
                    .getBoundingClientRect()))
          .map((text) => text.textContent);
      });
      assert.deepEqual(outside, []);
      const pairs = [".paper", ".stripe", ".band"].flatMap(
        (ground) => [[".summary", ground], [".weight", ground]]);
      assert.ok(await page.evaluate(leastContrast, pairs) >= 4.5);
    });
  }
}

test("search filters lanes and marks steps; Escape clears", async () => {
  const page = await browser.open(draw(60, 40, "html"), "light");
  const shownLanes = () => page.evaluate(() =>
    [...document.querySelectorAll("tbody tr")].filter((row) => row.offsetHeight > 0)
      .map((row) => row.dataset.name));
  await page.press("/", "/");
  await page.type("PACKAGE-1");
  const found = await shownLanes();
  assert.deepEqual(found, Array.from({ length: 10 }, (_, i) => `package-1${i}`));
  assert.equal(await page.evaluate(() => document.getElementById("matches").textContent), "10 of 60 shown");
  const marked = await page.evaluate(() =>
    [...document.querySelectorAll("#steps .found")].map((move) => move.dataset.name));
  assert.ok(marked.length > 0 && marked.every((name) => found.includes(name)), marked.join());
  await picture(page, "search");
  await page.press("Escape");
  assert.equal((await shownLanes()).length, 60);
  assert.equal(await page.evaluate(() => document.activeElement.id), "");
  await page.click("#moved-only");
  const moved = await shownLanes();
  assert.ok(moved.length < 60 && moved.includes("package-00") && !moved.includes("package-58"));
});

test("keys and clicks move between steps, and the step stays in sight", async () => {
  const page = await browser.open(draw(60, 40, "html"), "light");
  const state = () => page.evaluate(() => {
    const current = document.querySelectorAll("#steps [aria-current=step]");
    const heading = document.querySelector("thead .chosen");
    const names = document.querySelector("thead th").getBoundingClientRect();
    const sight = document.getElementById("picture").getBoundingClientRect();
    const box = heading?.getBoundingClientRect();
    return {
      step: [...current].map((button) => parseInt(button.textContent.slice(5))).join(),
      column: heading ? parseInt(heading.textContent.slice(5)) : 0,
      inSight: !box || (box.left >= names.right - 1 && box.right <= sight.right + 1),
      namesStay: names.left === sight.left,
      focused: document.activeElement.tagName,
    };
  });
  const expectStep = async (step, focused = "BUTTON") =>
    assert.deepEqual(await state(), { step: step ? String(step) : "", column: step, inSight: true,
                                      namesStay: true, focused });
  await expectStep(0, "BODY");
  for (const [key, step] of [["ArrowRight", 1], ["ArrowRight", 2], ["ArrowDown", 3], ["ArrowLeft", 2],
                             ["End", 40], ["ArrowRight", 40], ["ArrowUp", 39]]) {
    await page.press(key);
    await expectStep(step);
  }
  await picture(page, "chosen");
  assert.notEqual(await page.evaluate(() => getComputedStyle(document.activeElement).outlineStyle), "none");
  await page.press("Home");
  await expectStep(1);
  await page.press("Escape");
  await expectStep(0, "BODY");
  await page.click("#steps > li:nth-child(2) ul");
  assert.equal((await state()).step, "2");
  await page.click("thead th:nth-child(5) button");
  assert.equal((await state()).column, 3);
});

test("what a lane holds stays in sight when its box has scrolled away", async () => {
  const page = await browser.open(draw(60, 40, "html"), "light");
  const told = () => page.evaluate(() =>
    [...document.querySelectorAll("#picture .now")].map((now) => now.textContent));
  assert.ok((await told()).every((text) => text === ""));
  const held = await page.evaluate(() => {
    const picture = document.getElementById("picture");
    picture.scrollLeft = picture.scrollWidth;
    return [...document.querySelectorAll("#picture tbody tr")].map((row) =>
      [...row.querySelectorAll(".box bdi")].map((version) => version.textContent));
  });
  while ((await told()).every((text) => text === "")) await new Promise((next) => { setTimeout(next, 20); });
  (await told()).forEach((text, lane) => assert.ok(text === "" || held[lane].includes(text), text));
  assert.ok((await told()).filter((text) => text !== "").length > 30);
});

test("printed, a page of 50 metamodels and 60 steps is whole, and nothing lies over anything else", async () => {
  const [lanes, steps, width] = [50, 60, 1047];  // the width of A4 between the margins
  const page = await browser.open(draw(lanes, steps, "html"), "light", { width, height: 718 });
  await page.call("Emulation.setEmulatedMedia", { media: "print" });
  assert.deepEqual(await page.evaluate(findCutTexts), []);
  assert.deepEqual(await page.evaluate(findCollisions, ".printed bdi"), []);
  assert.ok(await page.evaluate(() => document.documentElement.scrollWidth) <= width);
  const sheets = await page.printedSheets();
  for (const { words, box } of sheets) {
    const margin = 28;  // points, almost the 10 mm that the page asks for
    for (const word of words) {
      assert.ok(word.left >= margin && word.top >= margin, word.text);
      assert.ok(word.right <= box.right - margin && word.bottom <= box.bottom - margin, word.text);
    }
    const apart = (a, b) => a.right < b.left + 1 || b.right < a.left + 1 || a.bottom < b.top + 2 || b.bottom < a.top + 2;
    words.forEach((one, i) => words.slice(i + 1).forEach((other) =>
      assert.ok(apart(one, other), `"${one.text}" meets "${other.text}"`)));
  }
  const text = sheets.map(({ words }) => words.map((word) => word.text).join("")).join("");
  const tables = Math.ceil((steps + 1) / 8);
  for (let lane = 5; lane < lanes; ++lane) {
    const name = `package-${String(lane).padStart(2, "0")}`;
    assert.ok(text.split(name).length > tables, name);
  }
  for (let step = 1; step <= steps; ++step) assert.ok(text.split(`Step${step}`).length > 2, `Step ${step}`);
});

test("names and versions are text, whatever they hold", async () => {
  const page = await browser.open(draw(5, 3, "html"), "light");
  assert.deepEqual(await page.evaluate(() => [
    document.querySelectorAll("b, td i:not([class])").length,
    [...document.querySelectorAll("tbody th")].some(
      (cell) => cell.textContent === '<b>&"quoted"</b>\\u{a}\\u{202e}turned'),
  ]), [0, true]);
});

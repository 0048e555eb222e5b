// The explorer of a catalogue, by keys and by pointer.
import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import { mkdtempSync, rmSync, statSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { after, before, test } from "node:test";
import { fileURLToPath } from "node:url";

import { Browser } from "./browser.mjs";
import { leastContrast } from "./contrast.mjs";

const folder = mkdtempSync(join(tmpdir(), "evopath-explorer-"));
const operators = fileURLToPath(new URL("../../data/operators.json", import.meta.url));
let browser;
before(() => { browser = new Browser(); });
after(async () => {
  await browser.close();
  rmSync(folder, { recursive: true });
});

/** The page of a catalogue, a file or what one holds. */
function explore(catalogue, ...options) {
  const page = join(folder, "explorer.html");
  const file = typeof catalogue === "string" ? catalogue : join(folder, "catalogue.json");
  if (file !== catalogue) writeFileSync(file, JSON.stringify(catalogue));
  execFileSync(process.env.EVOPATH, ["explore", file, "--output", page, ...options]);
  return page;
}

/** Odd names and versions, a note, an expensive hop, and a text version with an equivalent. */
const odd = '</script><b>\u2028"it\'s", \u202Eturned = 1';
const oddCatalogue = {
  metamodels: [
    { name: odd, version: "1.0.0", dependencies: [{ name: "base", range: ["1.0.0", "2.0.0"] }] },
    { name: odd, version: "2.0.0", dependencies: [{ name: "base", range: "spring", note: "see <i>there</i>" }] },
    { name: "base", version: "1.0.0", dependencies: [] },
    { name: "base", version: "1.1.0", dependencies: [], note: "first line\nsecond" },
    { name: "base", version: "spring", semver: "3.0.0", dependencies: [] },
  ],
  hops: [{ name: odd, from: "1.0.0", to: "2.0.0", expensive: true },
         { name: "base", from: "1.0.0", to: "1.1.0", expensive: false },
         { name: "base", from: "1.1.0", to: "spring", expensive: false }],
};

const textOf = (page, selector) =>
  page.evaluate((wanted) => document.querySelector(wanted)?.innerText ?? null, selector);
const textsOf = (page, selector) =>
  page.evaluate((wanted) => [...document.querySelectorAll(wanted)]
    .filter((element) => element.offsetHeight > 0).map((element) => element.innerText), selector);
const focused = (page) => page.evaluate(() => document.activeElement.innerText || document.activeElement.id);

async function open(file, scheme, options) {
  const page = await browser.open(file, scheme, options);
  assert.deepEqual(page.requests, [`file://${file}`]);
  assert.deepEqual(page.complaints, []);
  return page;
}

async function picture(page, name) {
  if (process.env.SCREENSHOTS) await page.screenshot(join(process.env.SCREENSHOTS, `${name}.png`));
}

/** What the command line that the page shows prints, as a shell understands it. */
async function runCommand(page) {
  const command = (await textOf(page, "#command")).replace(/\bevopath (?=path|batch)/, '"$EVOPATH" ');
  return execFileSync("sh", ["-c", command], { encoding: "utf8" });
}

for (const scheme of ["light", "dark"]) {
  test(`by keys: search, versions, source, target and path, ${scheme}`, async () => {
    const page = await open(explore(operators), scheme);
    assert.equal((await textsOf(page, "#names button")).length, 64);
    await page.press("/", "/");
    await page.type("DNS");
    assert.deepEqual((await textsOf(page, "#names button bdi")), ["dns-operator"]);
    assert.equal(await textOf(page, "#matches"), "1 of 64 shown");
    assert.equal((await textsOf(page, "#questions button")).length, 2);  // the catalogue's own one, and this
    await page.press("Enter");
    assert.equal(await focused(page), "0.6.0");
    await page.press("t", "t");
    await page.press("End");
    assert.equal(await textOf(page, "#version-name"), "dns-operator 0.1.0");
    await page.press("f", "f");
    assert.match(await textOf(page, "#verdict"), /^2 steps, weight 4$/);
    assert.deepEqual(await textsOf(page, "#answer ol ul li"),
                     ["dns-operator 0.1.0 → 0.2.0", "dns-operator 0.2.0 → 0.6.0"]);
    assert.match(await runCommand(page), /2 steps, weight 4\n$/);
    await picture(page, `explorer-${scheme}`);
    await page.press("Home");
    assert.equal(await textOf(page, "#version-name"), "dns-operator 0.6.0");
    assert.deepEqual(await textsOf(page, "#version .runs button"), ["0.11.1", "0.11.0", "0.10.0"]);
    await page.press("ArrowLeft");
    assert.match(await focused(page), /^dns-operator/);
    await page.press("ArrowUp");
    assert.equal(await focused(page), "search");
    await page.press("Escape");
    assert.equal((await textsOf(page, "#names button")).length, 64);
    await page.press("ArrowDown");
    await page.press("ArrowDown");
    assert.match(await focused(page), /^alloydb-omni-operator/);
    assert.ok(await page.evaluate(() => getComputedStyle(document.activeElement).outlineWidth) === "3px");
  });

  test(`colours that can be read, ${scheme}, whatever the system prefers`, async () => {
    const page = await open(explore(oddCatalogue), scheme);
    const ground = () => page.evaluate(() => getComputedStyle(document.body).backgroundColor);
    const inks = ["--ink", "--quiet", "--move", "--dear", "--enter"];
    const pairs = ["--paper", "--stripe", "--chosen"].flatMap((on) => inks.map((ink) => [ink, on]));
    const grounds = [await ground()];
    for (let i = 0; i < 3; ++i) {
      assert.ok(await page.evaluate(leastContrast, pairs) >= 4.5);
      await page.click("#theme");
      grounds.push(await ground());
    }
    const [light, dark] = ["rgb(255, 255, 255)", "rgb(20, 25, 31)"];
    assert.deepEqual(grounds, [scheme === "light" ? light : dark, light, dark, scheme === "light" ? light : dark]);
  });
}

test("by pointer: links, picks, questions, and the command of what is not answered", async () => {
  const page = await open(explore(operators), "light");
  await page.click("#questions button");
  assert.equal(await textOf(page, "#verdict"), "9 steps, weight 27");
  assert.equal((await textsOf(page, "#answer ol > li")).length, 9);
  assert.match((await textsOf(page, "#from li"))[0], /^authorino-operator 0\.9\.0/);
  await page.click("#to li:first-child button:last-child");
  assert.match(await textOf(page, "#verdict"), /does not know/);
  assert.match(await runCommand(page), /steps, weight \d+\n$/);
  await page.click("#copy");
  assert.equal(await page.settled("#copied"), "Copied");
  await page.click("#from li:first-child button");
  assert.equal(await textOf(page, "#version-name"), "authorino-operator 0.9.0");
  await page.click("#version .runs button");
  assert.match(await textOf(page, "#version-name"), /^kuadrant-operator/);
  await page.click("#swap");
  assert.match((await textsOf(page, "#to li"))[0], /^authorino-operator 0\.9\.0/);
  await page.click("#clear");
  assert.deepEqual(await textsOf(page, ".ends li"), ["nothing picked", "nothing picked"]);
  assert.equal(await page.evaluate(() => document.querySelector("#asking").offsetHeight), 0);
});

test("odd names and versions are texts, also in commands", async () => {
  const questions = join(folder, "questions.jsonl");
  const lines = [{ from: { [odd]: "1.0.0" }, to: { [odd]: "2.0.0" } }, { from: {}, to: { base: "spring" } },
                 { from: { base: "9.0.0" }, to: {} }];
  writeFileSync(questions, lines.map((line) => `${JSON.stringify(line)}\n`).join(""));
  let page;
  try {
    page = explore(oddCatalogue, "--questions", questions);
  } catch (error) {
    assert.equal(error.status, 2);  // the last line
    page = join(folder, "explorer.html");
  }
  page = await open(page, "light");
  assert.equal(await page.evaluate(() => document.querySelectorAll("b b, i").length), 0);
  const shown = odd.replace("\u2028", "\\u{2028}").replace("\u202E", "\\u{202e}");
  assert.deepEqual(await textsOf(page, "#names button bdi"), [shown, "base"]);
  assert.match(await textOf(page, "#version"), /see <i>there<\/i>/);
  await page.click("#names li:last-child button");
  assert.deepEqual(await textsOf(page, "#versions button"), ["spring", "1.1.0", "1.0.0"]);
  assert.equal(await textOf(page, "#version-name"), "base spring = 3.0.0");
  assert.ok((await textOf(page, "#version")).includes(shown));
  await page.click("#versions li:nth-child(2) button");
  assert.equal(await textOf(page, "#version .note"), "first line\nsecond");
  await page.click("#questions button");
  const answer = JSON.parse(await runCommand(page));
  assert.equal(answer.found, true);
  assert.match(await textOf(page, "#verdict"), new RegExp(`^${answer.steps.length} steps?, weight 1 expensive`));
  await page.click("#questions li:last-child button");
  assert.match(await textOf(page, "#verdict"), /^No answer: .*9\.0\.0/);
});

test("fits narrow windows and paper", async () => {
  for (const catalogue of [operators, oddCatalogue]) {
    const page = await open(explore(catalogue), "dark", { width: 360, height: 740 });
    await page.click("#questions button");
    assert.equal(await page.evaluate(() => document.documentElement.scrollWidth), 360);
    assert.deepEqual(await page.evaluate(() => [...document.querySelectorAll("body *")]
      .filter((element) => element.getBoundingClientRect().right > 361).map((element) => element.outerHTML)), []);
    await picture(page, "explorer-narrow");
    await page.call("Emulation.setEmulatedMedia", { media: "print" });
    assert.equal(await page.evaluate(() => document.querySelector("nav").offsetHeight), 0);
    assert.equal(await page.evaluate(() => getComputedStyle(document.body).backgroundColor), "rgb(255, 255, 255)");
    assert.ok(await page.evaluate(() => document.querySelector("#answer").offsetHeight) > 0);
  }
});

test("hundreds of metamodels with a hundred thousand hops stay small", async () => {
  const metamodels = [];
  const hops = [];
  for (let name = 0; name < 650; ++name) {
    for (let version = 0; version < 20; ++version) {
      const dependencies = name === 0 ? [] : [{ name: `package-${name - 1}`, range: ["1.0.0", `1.${version + 1}.0`] }];
      metamodels.push({ name: `package-${name}`, version: `1.${version}.0`, dependencies: name % 2 ? dependencies : [] });
      for (let from = 0; from < version; ++from) {
        hops.push({ name: `package-${name}`, from: `1.${from}.0`, to: `1.${version}.0`, expensive: false });
      }
    }
  }
  const file = explore({ metamodels, hops });
  assert.ok(statSync(file).size < 10e6, `${statSync(file).size}`);
  const page = await open(file, "light");
  await page.press("/", "/");
  await page.type("package-649");
  await page.press("Enter");
  assert.equal(await textOf(page, "#version-name"), "package-649 1.19.0");
});

test("an empty catalogue says so", async () => {
  const page = await open(explore({ metamodels: [], hops: [] }), "light");
  assert.equal(await textOf(page, "#name"), "The catalogue is empty.");
  await page.press("/", "/");
  await page.press("Enter");
  await page.press("f", "f");
  assert.deepEqual(page.complaints, []);
});

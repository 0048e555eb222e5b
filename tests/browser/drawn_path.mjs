// Catalogues whose question has a path of a known size, and what evopath draws of it.
import { execFileSync } from "node:child_process";
import { mkdtempSync, rmSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";

const version = (number) => `${1 + Math.floor(number / 3)}.${number % 3}.0`;

/** Names as people use them, but for a few that no layout should stumble over. */
function nameOf(number) {
  return {
    1: "a-metamodel-with-a-name-that-goes-on-and-on-beyond-the-width-of-any-column",
    2: '<b>&"quoted"</b>\n\u202Eturned',
    3: "مخطط-البيانات",
    4: "図形モデル 👩‍🔧",
  }[number] ?? `package-${String(number).padStart(2, "0")}`;
}

/** The versions are semantic but for those of two metamodels, whose texts are long and odd. */
function versionOf(lane, number) {
  if (lane === 3) return `release-${number}-of-the-year-with-a-long-text`;
  if (lane === 4) return `第${number}版<i>`;
  return version(number);
}

/**
 * The first metamodel moves in every step and needs the others at exactly one version each. In each
 * step some of them move along, chosen by a fixed rule; the last one is brought in half-way.
 */
function makeCatalogue(lanes, steps) {
  const metamodels = [];
  const hops = [];
  const held = Array(lanes - 1).fill(0);
  const add = (lane, number, dependencies) => {
    const name = nameOf(lane);
    metamodels.push({ name, version: versionOf(lane, number), dependencies });
    if (number > 0) {
      hops.push({ name, from: versionOf(lane, number - 1), to: versionOf(lane, number),
                  expensive: (lane + number) % 11 === 3 });
    }
  };
  const need = (lane, number) => ({ name: nameOf(lane), range: versionOf(lane, number) });
  for (let lane = 1; lane < lanes; ++lane) add(lane, 0, []);
  for (let step = 0; step <= steps; ++step) {
    for (let lane = 1; step > 0 && lane < 0.8 * (lanes - 1); ++lane) {
      if ((lane * 7 + step * 5) % (lanes < 10 ? 3 : 13) === 0) add(lane, ++held[lane], []);
    }
    const needed = held.map((number, lane) => need(lane, number)).slice(1);
    if (step > steps / 2) needed.push(need(lanes - 1, 0));
    add(0, step, needed);
  }
  const from = Object.fromEntries(held.map((_, lane) => [nameOf(lane), versionOf(lane, 0)]));
  return { metamodels, hops, question: { from, to: { [nameOf(0)]: version(steps) } } };
}

const folder = mkdtempSync(join(tmpdir(), "evopath-pages-"));
process.on("exit", () => rmSync(folder, { recursive: true }));

/** The file that evopath writes for a path of so many metamodels and steps. */
export function draw(lanes, steps, format) {
  const catalogue = join(folder, `${lanes}.json`);
  const file = join(folder, `${lanes}.${format}`);
  writeFileSync(catalogue, JSON.stringify(makeCatalogue(lanes, steps)));
  execFileSync(process.env.EVOPATH,
               ["path", catalogue, "--question", "--format", format, "--output", file]);
  return file;
}

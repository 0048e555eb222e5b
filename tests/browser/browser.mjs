// Drives headless Chromium through its debugging pipe: Node's own modules suffice.
import { execFileSync, spawn } from "node:child_process";
import { mkdtempSync, rmSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";

const flags = [
  "--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
  "--disable-background-networking", "--disable-component-update", "--disable-sync",
  "--hide-scrollbars", "--remote-debugging-pipe",
];

export class Browser {
  #profile = mkdtempSync(join(tmpdir(), "evopath-browser-"));
  #process;
  #received = "";
  #calls = new Map();
  #listeners = new Set();

  constructor() {
    this.#process = spawn("chromium", [...flags, `--user-data-dir=${this.#profile}`], {
      stdio: ["ignore", "ignore", "ignore", "pipe", "pipe"],
    });
    this.#process.stdio[4].setEncoding("utf8").on("data", (text) => this.#receive(text));
    this.#process.on("exit", () => {
      for (const { reject } of this.#calls.values()) reject(new Error("Chromium has ended"));
    });
  }

  /** Messages end with NUL; answers carry the number of their call, events do not. */
  #receive(text) {
    const messages = (this.#received + text).split("\0");
    this.#received = messages.pop();
    for (const message of messages.map((part) => JSON.parse(part))) {
      const call = this.#calls.get(message.id);
      this.#calls.delete(message.id);
      if (!call) this.#listeners.forEach((listener) => listener(message));
      else if (message.error) call.reject(new Error(message.error.message));
      else call.resolve(message.result);
    }
  }

  #lastId = 0;
  call(method, params = {}, sessionId = undefined) {
    const id = ++this.#lastId;
    this.#process.stdio[3].write(JSON.stringify({ id, method, params, sessionId }) + "\0");
    return new Promise((resolve, reject) => this.#calls.set(id, { resolve, reject }));
  }

  /** Opens a file; what it asks of the network and complains about is noted from the first moment. */
  async open(file, scheme, { width = 1400, height = 900 } = {}) {
    const { targetId } = await this.call("Target.createTarget", { url: "about:blank" });
    const { sessionId } = await this.call("Target.attachToTarget", { targetId, flatten: true });
    const page = new Page(this, sessionId);
    this.#listeners.add((message) => message.sessionId === sessionId && page.note(message));
    for (const domain of ["Page", "Network", "Runtime", "Log"]) await page.call(`${domain}.enable`);
    await page.call("Emulation.setDeviceMetricsOverride",
                    { width, height, deviceScaleFactor: 1, mobile: false });
    await page.call("Emulation.setEmulatedMedia",
                    { features: [{ name: "prefers-color-scheme", value: scheme }] });
    const loaded = page.next("Page.loadEventFired");
    await page.call("Page.navigate", { url: `file://${file}` });
    await loaded;
    return page;
  }

  async close() {
    const ended = new Promise((resolve) => this.#process.on("exit", resolve));
    await this.call("Browser.close");
    await ended;
    rmSync(this.#profile, { recursive: true, force: true });
  }
}

class Page {
  requests = [];
  complaints = [];
  #waiting = new Map();

  constructor(browser, session) {
    this.call = (method, params) => browser.call(method, params, session);
  }

  note({ method, params }) {
    this.#waiting.get(method)?.(params);
    if (method === "Network.requestWillBeSent") this.requests.push(params.request.url);
    if (method === "Runtime.exceptionThrown") this.complaints.push(params.exceptionDetails);
    if (method === "Runtime.consoleAPICalled") this.complaints.push(params.args);
    if (method === "Log.entryAdded") this.complaints.push(params.entry);
  }

  next(method) {
    return new Promise((resolve) => this.#waiting.set(method, resolve));
  }

  /** What a function gives that runs in the page with the arguments. */
  async evaluate(code, ...parameters) {
    const expression = `(${code})(...${JSON.stringify(parameters)})`;
    const { result, exceptionDetails } =
      await this.call("Runtime.evaluate", { expression, returnByValue: true });
    if (exceptionDetails) throw new Error(exceptionDetails.exception.description);
    return result.value;
  }

  async press(key, text = undefined) {
    await this.call("Input.dispatchKeyEvent", { type: "keyDown", key, text });
    await this.call("Input.dispatchKeyEvent", { type: "keyUp", key });
  }

  async type(text) {
    for (const character of text) await this.press(character, character);
  }

  async click(selector) {
    const { x, y } = await this.evaluate((wanted) => {
      const element = document.querySelector(wanted);
      element.scrollIntoView({ block: "nearest" });
      const box = element.getBoundingClientRect();
      return { x: box.x + box.width / 2, y: box.y + box.height / 2 };
    }, selector);
    for (const type of ["mousePressed", "mouseReleased"]) {
      await this.call("Input.dispatchMouseEvent", { type, x, y, button: "left", clickCount: 1 });
    }
  }

  /** The text of an element once there is one. */
  async settled(selector) {
    const { result } = await this.call("Runtime.evaluate", {
      awaitPromise: true,
      expression: `new Promise((resolve) => {
        const element = document.querySelector(${JSON.stringify(selector)});
        const look = () => (element.textContent ? resolve(element.textContent) : requestAnimationFrame(look));
        look();
      })`,
    });
    return result.value;
  }

  /** The sheets of paper that the page takes, each with its words and where they stand, in points. */
  async printedSheets() {
    const { data } = await this.call("Page.printToPDF", { preferCSSPageSize: true, paperWidth: 8.27, paperHeight: 11.69 });
    const boxes = execFileSync("pdftotext", ["-bbox", "-", "-"],
                               { input: Buffer.from(data, "base64"), encoding: "utf8", maxBuffer: 1 << 28 });
    return boxes.split("<page ").slice(1).map((sheet) => {
      const [right, bottom] = sheet.match(/width="([^"]+)" height="([^"]+)"/).slice(1).map(Number);
      const words = [...sheet.matchAll(/<word xMin="(.+?)" yMin="(.+?)" xMax="(.+?)" yMax="(.+?)">(.*?)<\/word>/g)]
        .map(([, ...parts]) => {
          const [left, top, wordRight, wordBottom] = parts.map(Number);
          return { left, top, right: wordRight, bottom: wordBottom, text: parts[4] };
        });
      return { box: { right, bottom }, words };
    });
  }

  async screenshot(file) {
    const { data } = await this.call("Page.captureScreenshot");
    writeFileSync(file, Buffer.from(data, "base64"));
  }
}

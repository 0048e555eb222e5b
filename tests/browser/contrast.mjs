/**
 * Runs in the page: the least contrast of text colours on the backgrounds that they stand on. Of
 * pages, colours are given as the names of variables, of pictures as what is filled with them.
 */
export function leastContrast(pairs) {
  const styles = getComputedStyle(document.documentElement);
  const partsOf = (name) => {
    if (!name.startsWith("--")) {
      return getComputedStyle(document.querySelector(name)).fill.match(/\d+/g).map(Number);
    }
    const hex = styles.getPropertyValue(name).trim().replace(/^#(.)(.)(.)$/, "#$1$1$2$2$3$3");
    return [1, 3, 5].map((at) => parseInt(hex.slice(at, at + 2), 16));
  };
  const luminance = (name) => {
    const [red, green, blue] = partsOf(name).map((part) => part / 255)
      .map((part) => (part <= 0.04045 ? part / 12.92 : ((part + 0.055) / 1.055) ** 2.4));
    return 0.2126 * red + 0.7152 * green + 0.0722 * blue;
  };
  return Math.min(...pairs.map((pair) => {
    const [dark, light] = pair.map(luminance).sort((a, b) => a - b);
    return (light + 0.05) / (dark + 0.05);
  }));
}

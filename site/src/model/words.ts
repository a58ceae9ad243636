/** `theColor` as people write it: "The color". */
export function wordsOf(name: string): string {
    const words = name.replace(/(Int|Float)$/, "").replaceAll("_", " ").replace(/([A-Z]{2,})(to|with)(?=[A-Z])/g, "$1 $2 ")
        .replace(/([a-z\d])([A-Z])/g, "$1 $2").replace(/([A-Z]+)([A-Z][a-z])/g, "$1 $2");
    const lower = words.split(" ").map((word) => /^[A-Z]{2,}$/.test(word) ? word : word.toLowerCase()).join(" ");
    return lower[0]!.toUpperCase() + lower.slice(1);
}

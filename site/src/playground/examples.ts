import brighten from "../../../examples/brighten.ls";
import greenscreen from "../../../examples/greenscreen.ls";
import sunset from "../../../examples/sunset-flare.ls";

export interface Example {
    readonly title: string;
    readonly source: string;
}

/** A script for files, on pictures of the page: its list of names is this one. */
function onPictures(source: string, names: readonly string[]): string {
    const [head, list] = /^on main (\w+)\n/m.exec(source)!;
    return source.replace(/: krlimage run.*$/m, ".").replace(/^krlimage run.*\n/m, "")
        .replace(head, `on main\n  ${list} = [${names.map((name) => `"${name}"`).join(", ")}]\n`);
}

export const EXAMPLES: readonly Example[] = [
    { title: "Brighten a picture", source: onPictures(brighten, ["landscape.png", "bright.png"]) },
    { title: "A lens flare at sunset", source: onPictures(sunset, ["landscape.png", "flare.png"]) },
    { title: "Six keys for a green screen", source: onPictures(greenscreen, ["greenscreen.png", "landscape.png", "keys.png"]) },
];

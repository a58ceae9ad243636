import { useEffect, useRef } from "preact/hooks";
import type { Picture } from "krlimage";
import { rendered, source } from "../store.js";

const COLOURS = ["#e5484d", "#30a46c", "#3e7bfa"];
/** Pixels that are counted at most. */
const COUNTED = 200_000;

function countsOf({ data }: Picture): Uint32Array[] {
    const counts = COLOURS.map(() => new Uint32Array(256));
    const step = 4 * Math.max(1, Math.floor(data.length / 4 / COUNTED));
    for (let at = 0; at < data.length; at += step)
        counts.forEach((count, channel) => { count[data[at + channel]!]! += 1; });
    return counts;
}

/** How often each level of red, green and blue comes, by the square root, so that rare ones are seen. */
export function Histogram() {
    const canvas = useRef<HTMLCanvasElement>(null);
    const picture = rendered.value?.picture ?? source.value?.picture;
    useEffect(() => {
        if (!picture) return;
        const context = canvas.current!.getContext("2d")!;
        const { width, height } = canvas.current!;
        const counts = countsOf(picture);
        // The ends are often clipped and would flatten all else.
        const highest = Math.max(...counts.flatMap((count) => [...count.subarray(1, 255)]), 1);
        context.clearRect(0, 0, width, height);
        context.globalCompositeOperation = "source-over";
        counts.forEach((count, channel) => {
            context.fillStyle = COLOURS[channel]!;
            context.globalAlpha = 0.55;
            context.beginPath();
            context.moveTo(0, height);
            count.forEach((value, level) => context.lineTo(level * width / 255, height * (1 - Math.sqrt(Math.min(1, value / highest)))));
            context.lineTo(width, height);
            context.fill();
        });
    }, [picture]);
    return <canvas ref={canvas} class="histogram" width={256} height={64} role="img" aria-label="Histogram of red, green and blue" />;
}

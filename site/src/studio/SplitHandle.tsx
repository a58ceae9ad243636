import { signal } from "@preact/signals";
import { Icon } from "./Icon.js";

/** Where the picture before ends and the result begins, in percent of the width. */
export const split = signal(0);

const within = (percent: number) => Math.min(100, Math.max(0, percent));

/** The line between the picture before and the result. */
export function SplitHandle({ frame }: { frame: { current: HTMLElement | null } }) {
    const move = (event: PointerEvent) => {
        const { left, width } = frame.current!.getBoundingClientRect();
        split.value = within(100 * (event.clientX - left) / width);
    };
    const onKey = (event: KeyboardEvent) => {
        const by = { ArrowLeft: -2, ArrowDown: -2, ArrowRight: 2, ArrowUp: 2, Home: -100, End: 100 }[event.key];
        if (by === undefined) return;
        split.value = within(split.value + by);
        event.preventDefault();
    };
    return <div class="split" role="slider" tabIndex={0} aria-label="Before and after" aria-valuemin={0} aria-valuemax={100}
        aria-valuenow={Math.round(split.value)} aria-valuetext={`${Math.round(split.value)} percent before`}
        style={{ left: `${split.value}%` }} onKeyDown={onKey}
        onPointerDown={(event) => {
            event.stopPropagation();
            event.currentTarget.setPointerCapture(event.pointerId);
        }}
        onPointerMove={(event) => { if (event.currentTarget.hasPointerCapture(event.pointerId)) move(event); }}>
        <span><Icon name="split" /></span>
    </div>;
}

/** Drawn on a square of 16, with lines of the text's colour. */
const PATHS = {
    up: "M8 12.5v-9M4 7.5l4-4 4 4",
    down: "M8 3.5v9M4 8.5l4 4 4-4",
    remove: "M4 4l8 8M12 4l-8 8",
    undo: "M6 3L2.5 6.5 6 10M2.5 6.5H10a3.5 3.5 0 010 7H7",
    redo: "M10 3l3.5 3.5L10 10M13.5 6.5H6a3.5 3.5 0 000 7h3",
    open: "M2 12.5v-9h4l1.5 2H14v7z",
    fit: "M2.5 6V2.5H6M10 2.5h3.5V6M13.5 10v3.5H10M6 13.5H2.5V10",
    plus: "M8 3v10M3 8h10",
    minus: "M3 8h10",
    share: "M6.5 9.5l3-3M7 5l1.6-1.6a2.8 2.8 0 014 4L11 9M9 11l-1.6 1.6a2.8 2.8 0 01-4-4L5 7",
    save: "M8 2.5v8M4.5 7L8 10.5 11.5 7M2.5 13.5h11",
    copy: "M5.5 5.5v-3h8v8h-3M2.5 5.5h8v8h-8z",
    split: "M8 2v12M5 6L2.5 8 5 10M11 6l2.5 2-2.5 2",
    play: "M5 3l8 5-8 5z",
} as const;
export type IconName = keyof typeof PATHS;

export function Icon({ name }: { name: IconName }) {
    return <svg class="icon" viewBox="0 0 16 16" width="16" height="16" aria-hidden="true">
        <path d={PATHS[name]} fill="none" stroke="currentColor" stroke-width="1.5" stroke-linecap="round" stroke-linejoin="round" />
    </svg>;
}

import { render } from "preact";
import { useEffect } from "preact/hooks";
import { Playground } from "./playground/Playground.js";
import { begin, complain, effects, fullResult, message, openFile, redo, start, undo } from "./store.js";
import { ChainPanel } from "./studio/ChainPanel.js";
import { Header, tab } from "./studio/Header.js";
import { Histogram } from "./studio/Histogram.js";
import { Library } from "./studio/Library.js";
import { Stage } from "./studio/Stage.js";

/** Fields keep their own undo. */
const isTyping = (target: EventTarget | null) =>
    target instanceof HTMLElement && target.matches("textarea, input[type=text], input[type=search], input[type=number], [contenteditable=true]");

function onKey(event: KeyboardEvent): void {
    if (!(event.ctrlKey || event.metaKey) || event.key.toLowerCase() !== "z" || isTyping(event.target)) return;
    event.preventDefault();
    if (event.shiftKey) redo();
    else undo();
}

function onPaste(event: ClipboardEvent): void {
    const file = [...event.clipboardData?.files ?? []].find(({ type }) => type.startsWith("image/"));
    if (file) openFile(file).catch(complain);
}

/** Ways past the many effects, for those who use keys. */
function SkipLinks() {
    const link = (label: string, target: string) =>
        <button type="button" onClick={() => document.querySelector<HTMLElement>(target)?.focus()}>{label}</button>;
    return <nav class="skip" aria-label="Skip">{link("Skip to the picture", ".view")}{link("Skip to the chain", ".chain")}</nav>;
}

function App() {
    useEffect(() => {
        document.addEventListener("keydown", onKey);
        document.addEventListener("paste", onPaste);
        return () => {
            document.removeEventListener("keydown", onKey);
            document.removeEventListener("paste", onPaste);
        };
    }, []);
    const { text, isProblem } = message.value;
    return <>
        {start.value && tab.value === "studio" && <SkipLinks />}
        <Header />
        <main id="main" role="tabpanel" aria-labelledby={`tab-${tab.value}`}>
            {!start.value && !isProblem && <p class="loading">Loading the effects…</p>}
            {start.value && (tab.value === "studio"
                ? <div class="studio"><Library /><Stage /><aside class="side" aria-label="Settings"><Histogram /><ChainPanel /></aside></div>
                : <Playground />)}
        </main>
        <footer class="status">
            <p role={isProblem ? "alert" : "status"} class={isProblem ? "problem" : ""}>{text}</p>
            <p class="promise">Pictures stay on this machine.</p>
        </footer>
    </>;
}

/** For tests, and for consoles. */
Object.assign(globalThis, {
    krlStudio: {
        fullResult,
        effects: () => [...effects.value.values()].map(({ name, scriptName, inert, arguments: taken }) =>
            ({
                name, scriptName, inert, kinds: taken.map(({ kind }) => kind), meanings: taken.map(({ meaning }) => meaning),
            })),
    },
});

const root = document.getElementById("page")!;
if (typeof WebAssembly !== "object" || typeof OffscreenCanvas === "undefined") {
    root.textContent = "This page needs a browser with WebAssembly and OffscreenCanvas: a current Chrome, Edge, Firefox or Safari.";
} else {
    root.textContent = "";
    render(<App />, root);
    begin().catch(complain);
    // Without one the page works too, only not offline.
    navigator.serviceWorker?.register("service-worker.js").catch(() => {});
}

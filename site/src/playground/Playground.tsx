import { defaultKeymap, history, historyKeymap } from "@codemirror/commands";
import { lintGutter, setDiagnostics } from "@codemirror/lint";
import { EditorState } from "@codemirror/state";
import { drawSelection, EditorView, highlightActiveLine, keymap, lineNumbers } from "@codemirror/view";
import { signal } from "@preact/signals";
import type { Picture } from "krlimage";
import { useEffect, useRef } from "preact/hooks";
import { EngineError } from "../engine/client.js";
import type { Printed } from "../engine/protocol.js";
import { asImageData, download, encoded, SAMPLES } from "../pictures.js";
import { complain, engine, openSecond, pictures, say } from "../store.js";
import { Icon } from "../studio/Icon.js";
import { EXAMPLES } from "./examples.js";
import { lingo } from "./lingo.js";

const outcome = signal<Partial<Printed> & { readonly problem?: string }>({});
const isRunning = signal(false);
let script = EXAMPLES[0]!.source;
let editor: EditorView | undefined;

/** Marks the line that failed. */
function markProblem({ message, line, column }: { message: string; line: number; column: number }): void {
    const { doc } = editor!.state;
    const place = doc.line(Math.min(Math.max(line, 1), doc.lines));
    const from = Math.min(place.from + Math.max(0, column - 1), place.to);
    editor!.dispatch(setDiagnostics(editor!.state, [{ from, to: place.to, severity: "error", message }]));
    editor!.dispatch({ selection: { anchor: from }, scrollIntoView: true });
}

/** Pictures that the script names: samples are loaded, others are those that were opened. */
async function picturesOf(source: string): Promise<string[]> {
    const names = [...new Set([...Object.keys(SAMPLES), ...pictures.value.keys()])].filter((name) => source.includes(name));
    await Promise.all(names.map(openSecond));
    return names;
}

async function run(): Promise<void> {
    isRunning.value = true;
    editor!.dispatch(setDiagnostics(editor!.state, []));
    try {
        outcome.value = await engine.ask("runLingo", script, await picturesOf(script));
        const made = Object.keys(outcome.value.images ?? {}).length;
        say(`The script ended; it saved ${made} ${made === 1 ? "picture" : "pictures"}`);
    } catch (problem) {
        if (!(problem instanceof EngineError) || problem.failure.line === undefined) return complain(problem);
        const { message, line, column = 0, output = "" } = problem.failure;
        outcome.value = { output, problem: line > 0 ? `Line ${line}: ${message}` : message };
        markProblem({ message, line, column });
    } finally {
        isRunning.value = false;
    }
}

const extensions = [
    lineNumbers(), history(), drawSelection(), highlightActiveLine(), lintGutter(), lingo(),
    EditorView.contentAttributes.of({ "aria-label": "Script" }),
    EditorView.updateListener.of(({ state, docChanged }) => { if (docChanged) script = state.doc.toString(); }),
    keymap.of([{ key: "Mod-Enter", run: () => { run().catch(complain); return true; } }, ...historyKeymap, ...defaultKeymap]),
];

function setScript(source: string): void {
    editor!.dispatch({ changes: { from: 0, to: editor!.state.doc.length, insert: source } });
}

function Made({ name, picture }: { name: string; picture: Picture }) {
    const canvas = useRef<HTMLCanvasElement>(null);
    useEffect(() => {
        canvas.current!.width = picture.width;
        canvas.current!.height = picture.height;
        canvas.current!.getContext("2d")!.putImageData(asImageData(picture), 0, 0);
    }, [picture]);
    const save = async () => download(await encoded(picture, "png"), name.replace(/\.\w+$/, ".png"));
    return <figure>
        <canvas ref={canvas} role="img" aria-label={name} />
        <figcaption>{name} <span class="hint">{picture.width} × {picture.height}</span>
            <button type="button" class="quiet" onClick={() => { save().catch(complain); }}>Download</button></figcaption>
    </figure>;
}

/** A script beside what it prints and makes. */
export function Playground() {
    const place = useRef<HTMLDivElement>(null);
    useEffect(() => {
        editor = new EditorView({ parent: place.current!, state: EditorState.create({ doc: script, extensions }) });
        return () => editor!.destroy();
    }, []);
    const { output, images = {}, problem, milliseconds } = outcome.value;
    return <div class="playground">
        <section class="script" aria-label="Script">
            <header>
                <select aria-label="Example" onChange={(event) => setScript(EXAMPLES[Number(event.currentTarget.value)]!.source)}>
                    {EXAMPLES.map(({ title }, index) => <option key={title} value={index}>{title}</option>)}
                </select>
                <button type="button" class="button main" disabled={isRunning.value} title="Run (Ctrl+Enter)"
                    onClick={() => { run().catch(complain); }}><Icon name="play" /><span>Run</span></button>
            </header>
            <div class="editor" ref={place} />
        </section>
        <section class="outcome" aria-label="Outcome">
            <h2>Output {milliseconds !== undefined && <span class="hint">{Math.round(milliseconds)} ms</span>}</h2>
            <pre tabIndex={0} role="region" aria-label="What the script printed" aria-live="polite">{output}</pre>
            {problem && <p class="problem" role="alert">{problem}</p>}
            {Object.entries(images).map(([name, picture]) => <Made key={name} name={name} picture={picture} />)}
            {output === undefined && !problem && <p class="empty">Run the script to see what it prints and the pictures that it saves. Pictures
                are those of the page, such as <code>member("landscape").image</code>.</p>}
        </section>
    </div>;
}

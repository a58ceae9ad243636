import { signal } from "@preact/signals";
import type { ComponentChildren } from "preact";
import { useEffect, useRef } from "preact/hooks";
import { download, encoded, FORMATS, SAMPLES, type Format, type SampleName } from "../pictures.js";
import {
    canRedo, canUndo, chain, complain, fullResult, lookText, openFile, openLook, openSample, redo, say, source, start, undo,
} from "../store.js";
import { CopyDialog, isCopying } from "./CopyDialog.js";
import { Icon, type IconName } from "./Icon.js";

export type Tab = "studio" | "playground";
export const tab = signal<Tab>("studio");

/** A button that opens a list under it; closes when the focus leaves or with Escape. */
function Menu({ label, icon, children }: { label: string; icon: IconName; children: ComponentChildren }) {
    const menu = useRef<HTMLDetailsElement>(null);
    useEffect(() => {
        const close = (event: Event) => {
            if (event.target instanceof Node && !menu.current!.contains(event.target)) menu.current!.open = false;
        };
        document.addEventListener("pointerdown", close);
        document.addEventListener("focusin", close);
        return () => {
            document.removeEventListener("pointerdown", close);
            document.removeEventListener("focusin", close);
        };
    }, []);
    return <details class="menu" ref={menu}
        onKeyDown={(event) => {
            if (event.key !== "Escape" || !menu.current!.open) return;
            menu.current!.open = false;
            menu.current!.querySelector("summary")!.focus();
        }}
        onClick={(event) => { if ((event.target as Element).closest("button")) menu.current!.open = false; }}>
        <summary class="button"><Icon name={icon} /><span>{label}</span></summary>
        <div class="list">{children}</div>
    </details>;
}

function FileItem({ label, accept, use }: { label: string; accept: string; use: (file: File) => Promise<void> }) {
    const input = useRef<HTMLInputElement>(null);
    return <>
        <button type="button" onClick={() => input.current!.click()}>{label}</button>
        <input ref={input} type="file" accept={accept} class="hidden-file" tabIndex={-1} aria-label={label}
            onChange={async (event) => {
                const [file] = event.currentTarget.files ?? [];
                event.currentTarget.value = "";
                if (file) await use(file).catch(complain);
            }} />
    </>;
}

async function downloadResult(format: Format): Promise<void> {
    const picture = await fullResult();
    const name = `${source.value!.name}-edited.${format}`;
    download(await encoded(picture, format), name);
    say(`${name} saved, ${picture.width} by ${picture.height} pixels`);
}

async function saveLook(): Promise<void> {
    const name = source.value?.name ?? "picture";
    download(new Blob([await lookText(`Look of ${name}`)], { type: "text/plain" }), "look.krl");
    say("look.krl saved; krlimage apply --look look.krl reads it");
}

async function copyLink(): Promise<void> {
    await navigator.clipboard.writeText(location.href);
    say("Link copied: it holds the chain, not the picture");
}

const attempt = (work: () => Promise<void>) => () => { work().catch(complain); };

export function Header() {
    const isEmpty = chain.value.steps.length === 0;
    return <header class="top">
        <h1>KRLImage <span>Studio</span></h1>
        <div class="tabs" role="tablist" aria-label="Parts of the page">
            {(["studio", "playground"] as const).map((name) =>
                <button key={name} type="button" role="tab" id={`tab-${name}`} aria-selected={tab.value === name} aria-controls="main"
                    onClick={() => { tab.value = name; }}>{name === "studio" ? "Studio" : "Lingo"}</button>)}
        </div>
        {tab.value === "studio" && <div class="tools">
            <Menu label="Open" icon="open">
                <FileItem label="Picture…" accept="image/*,.pam" use={openFile} />
                <FileItem label="Look…" accept=".krl,text/plain" use={async (file) => openLook(await file.text())} />
                <h2>Samples</h2>
                {(Object.keys(SAMPLES) as SampleName[]).map((name) =>
                    <button key={name} type="button" onClick={attempt(() => openSample(name))}>{SAMPLES[name]}</button>)}
                <h2>Looks</h2>
                {start.value?.looks.map(({ name, title, text, description }) =>
                    <button key={name} type="button" title={description} onClick={attempt(() => openLook(text))}>{title}</button>)}
            </Menu>
            <button type="button" class="tool" aria-label="Undo" title="Undo (Ctrl+Z)" disabled={!canUndo.value} onClick={undo}><Icon name="undo" /></button>
            <button type="button" class="tool" aria-label="Redo" title="Redo (Ctrl+Shift+Z)" disabled={!canRedo.value} onClick={redo}><Icon name="redo" /></button>
            <Menu label="Share" icon="share">
                <button type="button" disabled={isEmpty} onClick={attempt(copyLink)}>Copy link</button>
                <button type="button" disabled={isEmpty} onClick={() => { isCopying.value = true; }}>Copy as a program…</button>
                <button type="button" disabled={isEmpty} onClick={attempt(saveLook)}>Save look</button>
            </Menu>
            <Menu label="Download" icon="save">
                {(Object.keys(FORMATS) as Format[]).map((format) =>
                    <button key={format} type="button" onClick={attempt(() => downloadResult(format))}>
                        {{ png: "PNG, without loss", jpg: "JPEG, small", webp: "WebP, smaller" }[format]}</button>)}
            </Menu>
        </div>}
        <CopyDialog />
    </header>;
}

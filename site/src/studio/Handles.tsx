import type { Value } from "krlimage";
import { isPoint, type Size } from "../model/document.js";
import { chain, effects, selected, setValue, settle } from "../store.js";
import { wordsOf } from "../controls/Labelled.js";

type Point = { readonly x: number; readonly y: number };

/** A point within a value, and how to get the value with another one in its place. */
interface Found {
    readonly point: Point;
    readonly name: string;
    readonly replaced: (point: Point) => Value;
}

/** Every point within a value, such as the corners of a shape. */
function pointsIn(value: Value, name: string): Found[] {
    if (isPoint(value)) return [{ point: value, name, replaced: (point) => point }];
    if (Array.isArray(value))
        return value.flatMap((item: Value, index) => pointsIn(item, `${name} ${index + 1}`).map((found) => ({
            ...found, replaced: (point: Point): Value => value.map((other: Value, at) => at === index ? found.replaced(point) : other),
        })));
    if (typeof value !== "object" || value === null) return [];
    return Object.entries(value as Record<string, Value>).flatMap(([key, item]) => pointsIn(item, `${name} ${key}`).map((found) => ({
        ...found, replaced: (point: Point): Value => ({ ...value as Record<string, Value>, [key]: found.replaced(point) }),
    })));
}

function Handle({ found, size, change }: { found: Found; size: Size; change: (value: Value) => void }) {
    const { x, y } = found.point;
    const move = (to: Point) => change(found.replaced({ x: Math.round(to.x), y: Math.round(to.y) }));
    const onKey = (event: KeyboardEvent) => {
        const by = event.shiftKey ? 10 : 1;
        const [dx, dy] = ({ ArrowLeft: [-by, 0], ArrowRight: [by, 0], ArrowUp: [0, -by], ArrowDown: [0, by] } as Record<string, [number, number]>)[event.key] ?? [0, 0];
        if (dx === 0 && dy === 0) return;
        move({ x: x + dx, y: y + dy });
        event.preventDefault();
    };
    const onMove = (event: PointerEvent & { currentTarget: HTMLElement }) => {
        if (!event.currentTarget.hasPointerCapture(event.pointerId)) return;
        event.stopPropagation();
        const box = event.currentTarget.parentElement!.getBoundingClientRect();
        move({ x: (event.clientX - box.left) * size.width / box.width, y: (event.clientY - box.top) * size.height / box.height });
    };
    return <button type="button" class="handle" aria-label={`${found.name}: ${x}, ${y}. Move with the arrow keys`} title={found.name}
        style={{ left: `${100 * x / size.width}%`, top: `${100 * y / size.height}%` }} onKeyDown={onKey}
        onPointerDown={(event) => { event.stopPropagation(); event.currentTarget.setPointerCapture(event.pointerId); }}
        onPointerMove={onMove} onPointerUp={settle} />;
}

/** A handle for every point of the selected effect. */
export function Handles({ size }: { size: Size }) {
    const step = chain.value.steps.find(({ id }) => id === selected.value);
    const effect = step && effects.value.get(step.effect);
    if (!step || !effect) return null;
    return <>{effect.arguments.filter(({ kind }) => kind === "point" || kind === "tree").flatMap(({ name }) =>
        pointsIn(step.values[name] ?? null, wordsOf(name)).map((found) =>
            <Handle key={found.name} found={found} size={size} change={(value) => setValue(step.id, name, value)} />))}</>;
}

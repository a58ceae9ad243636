/** A module of Node's own, which bundlers for browsers must not look for. */
export async function nodeModule<Module>(name: string): Promise<Module> {
    return await import(/* @vite-ignore */ /* webpackIgnore: true */ name) as Module;
}

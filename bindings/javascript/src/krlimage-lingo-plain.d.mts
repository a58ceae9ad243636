import type { Factory } from "./load.js";

/** Written by the compiler. */
declare const factory: Factory;
export default factory;

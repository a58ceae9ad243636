/** Numbers of the C interface, which keep their meaning for good. */
export const Code = { ok: 0, methodFailed: 12, outOfMemory: 13, badLook: 15 } as const;

export const Kind = {
    nothing: 0, integer: 1, real: 2, symbol: 3, text: 4, colour: 5, point: 6, list: 7, propertyList: 8,
    picture: 9, pictureName: 10, colourList: 11, any: 12,
} as const;

export const Flag = {
    rewritesPicture: 1, makesPicture: 2, makesPictureList: 4, needsSecondPicture: 8, dependsOnBands: 16,
    managesEngine: 32, inert: 64, worksWithoutEngine: 128, changesSecondPicture: 256, worksPerPixel: 512,
} as const;

/** The order of bytes in a pixel that JavaScript has. */
export const RGBA = 1;

#pragma once

#include <cstdint>

#include "krlimage/engine.h"
#include "krlimage/pixel.h"

/// Colour effects: the three colour bytes of a pixel are mixed or scaled together. Alpha is never
/// touched.
///
/// - `ambientLight`, `blurColourReplace`, `colourBalance`, `colourTemperature`: a curve for each channel
/// - `desaturate`, `desaturatePro`, `sepia`: towards grey, or a tint of it
/// - `rgbChannelSwap`: channels exchanged
/// - `saturation`: more or less colour, by hue, saturation and value
///
/// Unless noted otherwise the effects return the engine's `imageStatus`, or `kStatusNoTaskMemory` or
/// `kStatusThreadFailed` where a band could not be started.
namespace krl {

/// Lights the picture by `myColor` alone: takes from each channel what the light lacks.
/// `intensity`, limited to 0..255, is added to every channel of the light.
Status ambientLight(ImageEngine& engine, Colour myColor, int32_t intensity);

/// Multiplies the picture by `colour`; in spite of its name it blurs nothing. Runs on the calling thread
/// alone; `kStatusRefused` where no image is loaded.
Status blurColourReplace(ImageEngine& engine, Colour colour);

/// Multiplies each channel by its own factor; 1.0 changes nothing.
Status colourBalance(ImageEngine& engine, float redVal, float greenVal, float blueVal);

/// Multiplies the channels by the light of a black body of `tempShift` kelvin.
Status colourTemperature(ImageEngine& engine, float tempShift);

/// Replaces colour by the plain mean of its channels.
Status desaturate(ImageEngine& engine);

/// Mixes colour with its sum weighted by `red`, `green` and `blue`. At `opacity` 256 the grey
/// replaces the colour; `equalise` divides by the sum of the weights.
Status desaturatePro(ImageEngine& engine, float red, float green, float blue, int32_t opacity, bool equalise);

/// Which channels replace red, green and blue, in this order.
enum class ChannelOrder : int32_t { RGB = 73, RBG = 74, GBR = 75, GRB = 76, BRG = 77, BGR = 78 };

/// Mixes the channels with the same channels in another order; at `opacity` 256 they are exchanged.
Status rgbChannelSwap(ImageEngine& engine, ChannelOrder channel, int32_t opacity);

/// Multiplies the saturation of every pixel, limited to 0..1, keeping hue and value; 0 gives the
/// grey of the brightest channel.
Status saturation(ImageEngine& engine, float saturation);

/// Tints the mean of the channels brown, shadows most.
Status sepia(ImageEngine& engine);

}  // namespace krl

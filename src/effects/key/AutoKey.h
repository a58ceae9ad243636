#pragma once

#include <cstddef>
#include <functional>

#include "catalogue/Catalogue.h"
#include "krlimage/key.h"

/// What the automatic keys share.
namespace krl {

/// Works the mattes of `count` pixels into their alpha; the two keys differ in this alone.
using MatteFold = std::function<void(Pixel* pixels, const uint8_t* mattes, size_t count)>;

/// A key whose stretch comes from the picture: one pass maps the differences, faded toward grey, and learns
/// their range; another stretches them to mattes for `fold`. `used` is the colour that was keyed.
Status keyAutomatically(ImageEngine& engine, const AutoKeySettings& settings, KeyColour& used,
                        const MatteFold& fold);

inline constexpr const char* kAutoColourMeaning = "the backing that was found or given, #green or #blue";

/// Adds the arguments with which both keys begin, and what they give.
Method& addAutoKeySettings(Method& entry, const char* badColour);
/// Those arguments of a call.
AutoKeySettings autoKeySettings(const Call& call);
/// Ends a call, giving the colour that it used beside its success.
Outcome giveColour(Call& call, Status status, KeyColour used);

}  // namespace krl

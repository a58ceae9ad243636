#include "catalogue/Catalogue.h"
#include "catalogue/Choices.h"
#include "effects/composite/Composite.h"

/// Binding of the blend compositor.
namespace krl {

void describeCompositeMethods(Catalogue& catalogue) {
    catalogue.add(
        method("krlImageComposite", composite)
            .summary("Lays a second picture over this one in any of the blend modes.")
            .image("foreground", kCompositeSizes, "logo.png", "the picture on top, of this one's size")
            .symbol("blendMethod", compositeBlends(), refused("Composite invalid input blendMethod (Image)"),
                    "how the two colours meet")
            .showing("screen")
            .thenCompare()
            .symbol("backgroundAlpha",
                    {{"background_alpha_yes", AlphaRule::BackgroundAlphaYes},
                     {"background_alpha_no", AlphaRule::BackgroundAlphaNo}},
                    refused("Unknown #background_alpha method (Image)"),
                    "whether this picture's own transparency counts and grows, or stays as it is")
            .inputFailure("Composite input failure (Image)")
            .failed("Failed Composite function (Image)")
            .asksPlayer()
            .keepsLocksOnFailure());
}

}  // namespace krl

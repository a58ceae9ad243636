#include "catalogue/Catalogue.h"

namespace krl {

void describeEngineMethods(Catalogue& catalogue) {
    catalogue.add("krlImageStartTimer")
        .summary("Starts the stop-watch.")
        .managesEngine()
        .worksWithoutEngine()
        .silent();
    catalogue.add("krlImageStopTimer")
        .summary("Prints the milliseconds since the stop-watch was started.")
        .managesEngine()
        .worksWithoutEngine()
        .silent();
    catalogue.add("krlImageCreateLookupTables")
        .summary("Makes the engine and its tables; call it once, before any picture is loaded.")
        .symbol("mtOption", {{"mt", 0}, {"st", 1}}, refused("Create Lookup Tables invalid MT input (Image)"),
                "one band of work for each processor, or a single one")
        .failed("Failed Create Lookup Tables function (Image)")
        .managesEngine()
        .worksWithoutEngine()
        .asksPlayer()
        .readsItself();
    catalogue.add("krlImageDestroyLookupTables")
        .summary("Frees the engine and its tables; without an engine nothing happens.")
        .failed("Failed Destroy Lookup Tables function (Image)")
        .managesEngine()
        .worksWithoutEngine();
    catalogue.add("krlImageLoad")
        .summary("Takes the picture that the following effects rewrite in place.")
        .value("srcCMem", "image(\"picture.png\")", "the picture; it stays locked until krlImageQuit")
        .failed("Failed Load function (Image)")
        .managesEngine()
        .needsEngine()
        .asksPlayer();
    catalogue.add("krlImageQuit")
        .summary("Lets go of the loaded picture; engine and tables stay for the next one.")
        .failed("Failed Quit function (Image)")
        .managesEngine()
        .needsEngine();
}

}  // namespace krl

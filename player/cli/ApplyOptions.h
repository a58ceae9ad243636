#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "player/lingo/Session.h"
#include "player/pictures/Delivery.h"

namespace krl::player {

struct ApplyOptions {
    /// Pictures, folders of pictures, and calls, in any order.
    std::vector<std::string> words;
    std::string output;
    /// Names or files of looks, and values for their parameters, `soft=80`.
    std::vector<std::string> looks, settings;
    /// Extension of the output format, without the dot; empty to keep each picture's own.
    std::string format;
    int quality = 90;
    /// Bits of a sample, 8 or 16.
    int depth = 8;
    /// As in `WriteOptions`.
    std::string compression, chroma, profile;
    /// Writes no metadata but the colour profile.
    bool strip = false;
    /// What becomes of the finished pictures.
    Delivery delivery;
    /// Leaves out all pages or frames but the first.
    bool firstFrame = false;
    /// Pictures processed in parallel; 0 for one per processor.
    unsigned jobs = 0;
    bool json = false;
    /// Name of each output in the folder, such as `{folder}/{stem}_small.{ext}`; empty for the input's own.
    std::string nameTemplate;
    /// A file with one input in each line.
    std::filesystem::path inputList;
    /// Also takes the pictures in folders within folders.
    bool recursive = false;
    /// Lets an output replace its input.
    bool inPlace = false;
    /// Leaves out pictures whose output exists, or exists and is newer.
    bool skipExisting = false, newer = false;
    /// Prints what would be written, and writes nothing.
    bool dryRun = false;
    /// `lingo` to print the chain as a script instead of running it.
    std::string print;
    /// Seconds after which the program ends; 0 for no limit.
    double timeout = 0;
    SessionOptions session;
    std::string threads;  ///< as given
};

}  // namespace krl::player

#pragma once

#include <cstdint>
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
    /// Size and order of raw frames in a pipe, `WIDTHxHEIGHT[:bgra|rgba]`; empty for pictures.
    std::string raw;
    /// Frames in a second, and for a pipe how many there are; 0 where it is unknown.
    double fps = 0;
    size_t frames = 0;
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
    /// Prints results as JSON, and how long each step takes.
    bool json = false, timings = false;
    /// Name of each output in the folder, such as `{folder}/{stem}_small.{ext}`; empty for the input's own.
    std::string nameTemplate;
    /// A file with one input in each line, or `-` for standard input.
    std::filesystem::path inputList;
    /// Where to list the inputs that failed, in the same way; empty for nowhere.
    std::filesystem::path failures;
    /// A folder whose pictures are taken as they appear.
    std::filesystem::path watch;
    /// Whether names in the list end with a zero byte instead of a line's end.
    bool endsWithZero = false;
    /// Outputs are placed in the output folder as their inputs are in this one; empty for by their names.
    std::filesystem::path root;
    /// The share of the pictures to process, `K/N` or `auto`; empty for all.
    std::string shard;
    /// Records what becomes of every picture in the output folder, and leaves out what is recorded there.
    bool ledger = false, resume = false;
    /// How often a picture that cannot be read is tried again.
    unsigned retries = 0;
    /// Failures after which no further picture is started; 0 for no limit.
    size_t mostFailures = 0;
    /// Bytes of memory that pictures in progress may take together; 0 for most of what is available.
    uint64_t memory = 0;
    /// Prints how much work there is, from the headers of the pictures, and does none.
    bool plan = false;
    /// Also takes the pictures in folders within folders.
    bool recursive = false;
    /// Lets an output replace its input.
    bool inPlace = false;
    /// Leaves out pictures whose output exists, or exists and is newer.
    bool skipExisting = false, newer = false;
    /// Asks for what happens otherwise.
    bool overwrite = false;
    /// Prints what would be written, and writes nothing.
    bool dryRun = false;
    /// Refuses calls that would only be noted as unusual.
    bool strict = false;
    /// `lingo` to print the chain as a script instead of running it.
    std::string print;
    /// Seconds after which the program ends; 0 for no limit.
    double timeout = 0;
    SessionOptions session;
    std::string threads;  ///< as given

    bool keepsLedger() const { return ledger || resume; }
};

}  // namespace krl::player

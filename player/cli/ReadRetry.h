#pragma once

#include <filesystem>

#include "player/pictures/Picture.h"

namespace krl::player {

/// Decides whether to read a picture again that could not be read: file servers fail for moments.
class ReadRetry {
public:
    ReadRetry(const std::filesystem::path& file, unsigned retries) : file_(file), left_(retries) {}

    /// Whether another try makes sense, after a pause that grows from try to try. A file that can be read is
    /// tried once more, since its server may have recovered meanwhile.
    bool again();

private:
    const std::filesystem::path& file_;
    unsigned left_;
    unsigned pauses_ = 0;
    bool couldBeRead_ = false;
};

/// Calls `read`, and again as long as the file's system fails and there are retries left.
template <class Read>
auto readPatiently(const std::filesystem::path& file, unsigned retries, const Read& read) {
    for (ReadRetry retry(file, retries);;) try {
            return read();
        } catch (const PictureError&) {
            if (!retry.again()) throw;
        }
}

}  // namespace krl::player

#include "player/cli/InputList.h"

#include <cerrno>
#include <cstring>
#include <utility>

#include "player/cli/Batch.h"
#include "player/cli/Commands.h"

namespace krl::player {

namespace {

constexpr size_t kPiece = 65536;  ///< read at a time; longer than any name of a file

}  // namespace

InputList::InputList(const std::filesystem::path& file, char separator) : file_(file), separator_(separator) {
    std::error_code unreadable;
    if (std::filesystem::is_directory(file, unreadable))
        throw CommandError("cannot read " + file.string() + ": is a folder");
    stream_ = isStandardStream(file) ? stdin : std::fopen(file.string().c_str(), "rb");
    if (!stream_) throw CommandError("cannot read " + file.string() + ": " + std::strerror(errno));
    // The place of the descriptor is the end of the buffer then, also for a program that replaces this one.
    std::setvbuf(stream_, nullptr, _IONBF, 0);
    start_ = std::ftell(stream_);
}

InputList::~InputList() {
    if (stream_ != stdin) std::fclose(stream_);
}

bool InputList::fill() {
    if (start_ >= 0) start_ += static_cast<int64_t>(taken_);
    buffer_.erase(0, std::exchange(taken_, 0));
    if (buffer_.size() > kPiece)
        throw CommandError(file_.string() + " has a name of more than " + std::to_string(kPiece) +
                           " bytes; use -0 if its names end with zero bytes");
    const size_t before = buffer_.size();
    buffer_.resize(before + kPiece);
    const size_t count = std::fread(buffer_.data() + before, 1, kPiece, stream_);
    buffer_.resize(before + count);
    if (count == 0 && std::ferror(stream_))
        throw CommandError("cannot read " + file_.string() + ": " + std::strerror(errno));
    return count > 0;
}

std::optional<std::string> InputList::next() {
    for (size_t searched = taken_;;) {
        const size_t end = buffer_.find(separator_, searched);
        if (end != std::string::npos) {
            std::string name = buffer_.substr(taken_, end - taken_);
            searched = taken_ = end + 1;
            if (!name.empty()) return name;
            continue;
        }
        searched = buffer_.size() - taken_;
        if (fill()) continue;
        // The last name needs no separator.
        std::string name = buffer_.substr(std::exchange(taken_, buffer_.size()));
        return name.empty() ? std::nullopt : std::optional(name);
    }
}

InputList::Place InputList::place() const {
    if (start_ >= 0) return {start_ + static_cast<int64_t>(taken_), ""};
    return {-1, buffer_.substr(taken_)};
}

void InputList::continueAt(const Place& place) {
    buffer_ = place.unread;
    taken_ = 0;
    start_ = place.offset;
    if (start_ >= 0 && std::fseek(stream_, static_cast<long>(start_), SEEK_SET) != 0)
        throw CommandError("cannot read " + file_.string() + ": " + std::strerror(errno));
}

}  // namespace krl::player

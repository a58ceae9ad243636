#include "player/cli/PlainOutput.h"

namespace krl::player {

namespace {

constexpr unsigned char kDelete = 0x7F;
/// First byte of the control characters U+0080 to U+009F in UTF-8, and the range of the second.
constexpr unsigned char kLead = 0xC2, kFirstSecond = 0x80, kLastSecond = 0x9F;

bool isControl(unsigned char letter) {
    return (letter < ' ' && letter != '\n' && letter != '\t') || letter == kDelete;
}

}  // namespace

PlainOutput::PlainOutput(std::ostream& target) : std::ostream(nullptr), buffer_(target) {
    rdbuf(&buffer_);
    setf(target.flags() & std::ios::unitbuf, std::ios::unitbuf);
}

std::streamsize PlainOutput::Buffer::xsputn(const char* text, std::streamsize count) {
    // Without memory of its own, of which a message may say that there is no more.
    const char* written = text;
    for (const char* next = text; next != text + count; ++next) {
        const auto letter = static_cast<unsigned char>(*next);
        const bool isSecond = isLead_ && letter >= kFirstSecond && letter <= kLastSecond;
        isLead_ = letter == kLead;
        if (!isControl(letter) && !isSecond) continue;
        target.write(written, next - written);
        if (isSecond)
            target << '?';
        else
            target << '^' << static_cast<char>(letter ^ 0x40);
        written = next + 1;
    }
    target.write(written, text + count - written);
    return target ? count : 0;
}

PlainOutput::Buffer::int_type PlainOutput::Buffer::overflow(int_type letter) {
    if (traits_type::eq_int_type(letter, traits_type::eof())) return traits_type::not_eof(letter);
    const char one = traits_type::to_char_type(letter);
    return xsputn(&one, 1) == 1 ? letter : traits_type::eof();
}

int PlainOutput::Buffer::sync() { return target.flush() ? 0 : -1; }

std::ostream& unfiltered(std::ostream& stream) {
    auto* plain = dynamic_cast<PlainOutput*>(&stream);
    return plain ? plain->buffer_.target : stream;
}

}  // namespace krl::player

#include "player/lingo/Members.h"

#include <algorithm>

#include "catalogue/NearestName.h"
#include "player/host/HostError.h"
#include "player/lingo/Runtime.h"

namespace krl::player {

namespace {

constexpr int32_t kMostMembers = 32000;

const MemberObject& memberOf(const Value& value) { return *value.as<MemberObject>(); }

bool isEmpty(const Value& slot) {
    if (slot.isVoid()) return true;
    const MemberObject& member = memberOf(slot);
    return member.name.empty() && member.image.isVoid() && member.text.isVoid();
}

}  // namespace

/// A member may have got another name since it was looked up.
Value Members::named(const std::string& name) {
    const std::string key = folded(name);
    Value& known = named_[key];
    if (!known.isVoid() && folded(memberOf(known).name) == key) return known;
    const auto made = std::find_if(numbered_.begin(), numbered_.end(), [&](const Value& slot) {
        return !slot.isVoid() && folded(memberOf(slot).name) == key;
    });
    known = made != numbered_.end() ? Value(*made) : heap_.make<MemberObject>(name);
    return known;
}

void Members::listFiles() {
    std::vector<std::string> extensions = pictureExtensions();
    extensions.push_back(".txt");
    std::vector<std::string> names = sandbox_.memberNames(extensions);
    std::sort(names.begin(), names.end());
    for (const std::string& name : names)
        if (listed_.insert(folded(name)).second) numbered_.push_back(named(name));
}

Value Members::numbered(int32_t number) {
    listFiles();
    if (number < 1 || number > kMostMembers)
        throw HostError("expected the name of a member, or a number from 1 to " +
                        std::to_string(kMostMembers) + ", not " + std::to_string(number));
    const auto place = static_cast<size_t>(number - 1);
    if (place >= numbered_.size()) numbered_.resize(place + 1);
    if (numbered_[place].isVoid()) {
        numbered_[place] = heap_.make<MemberObject>("");
        numbered_[place].as<MemberObject>()->number = number;
    }
    return numbered_[place];
}

int32_t Members::numberOf(const Value& member) {
    listFiles();
    const auto found = std::find_if(numbered_.begin(), numbered_.end(),
                                    [&](const Value& slot) { return slot.sameWords(member); });
    return found == numbered_.end() ? -1 : static_cast<int32_t>(found - numbered_.begin()) + 1;
}

int32_t Members::count() {
    listFiles();
    const auto last = std::find_if_not(numbered_.rbegin(), numbered_.rend(), isEmpty);
    return static_cast<int32_t>(numbered_.rend() - last);
}

int32_t Members::nextEmpty(const Value& member) {
    auto place = static_cast<size_t>(std::max(numberOf(member), 1) - 1);
    while (place < numbered_.size() && !isEmpty(numbered_[place])) ++place;
    return static_cast<int32_t>(place) + 1;
}

void Members::add(const Value& member) {
    const int32_t number = count() + 1;
    const auto place = static_cast<size_t>(number - 1);
    if (place >= numbered_.size()) numbered_.resize(place + 1);
    numbered_[place] = member;
    member.as<MemberObject>()->number = number;
}

void Members::clear() {
    named_.clear();
    numbered_.clear();
    listed_.clear();
}

}  // namespace krl::player

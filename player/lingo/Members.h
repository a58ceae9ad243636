#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "player/host/Value.h"
#include "player/lingo/Sandbox.h"

namespace krl::player {

/// The members of the cast: those in files, by their names, and those that scripts make.
class Members {
public:
    Members(Heap& heap, const Sandbox& sandbox) : heap_(heap), sandbox_(sandbox) {}

    /// The member of that name, whether there is anything in it or not.
    Value named(const std::string& name);
    /// The member of that number, which is empty where there was none. Members in files come first, in the
    /// order of their names. Throws `HostError` for a number that no member can have.
    Value numbered(int32_t number);
    /// The number of a member; -1 for a name without one.
    int32_t numberOf(const Value& member);
    /// The highest number of a member that is not empty.
    int32_t count();
    /// The number of the first empty member from `member` on.
    int32_t nextEmpty(const Value& member);
    /// Gives a member that a script has made the next number.
    void add(const Value& member);
    void clear();

private:
    void listFiles();

    Heap& heap_;
    const Sandbox& sandbox_;
    std::map<std::string, Value> named_;  ///< by their folded names when they were looked up
    std::vector<Value> numbered_;         ///< from 1; VOID where nothing is
    std::set<std::string> listed_;        ///< the names of files with a number
};

}  // namespace krl::player

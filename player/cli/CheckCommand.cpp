#include <algorithm>
#include <ostream>
#include <unordered_set>

#include "catalogue/Arguments.h"
#include "player/cli/ArgumentCheck.h"
#include "player/cli/CallWalk.h"
#include "player/cli/Commands.h"
#include "player/cli/MethodFacts.h"
#include "player/cli/NameCheck.h"
#include "player/cli/TextFile.h"
#include "player/lingo/Parser.h"

namespace krl::player {

namespace {

std::shared_ptr<const Source> sourceOf(const std::filesystem::path& path) {
    return std::make_shared<Source>(Source{path.string(), readText(path)});
}

/// Checks one script and reports all of its mistakes in order.
class Check {
public:
    Check(std::shared_ptr<const Source> source, bool names, const Terminal& terminal)
        : source_(std::move(source)), names_(names), terminal_(terminal) {}

    size_t mistakes() {
        const auto script = parseScript(source_, symbols_, mistakes_);
        std::unordered_set<SymbolId> handlers;
        for (const auto& handler : script->handlers) handlers.insert(handler->name);
        visitCalls(*script, [&](const CallExpression& call) {
            if (!handlers.contains(call.name)) check(call);
        });
        if (names_)
            checkNames(*script, symbols_,
                       [this](Place place, const std::string& message) { complain(place, message); });
        std::stable_sort(mistakes_.begin(), mistakes_.end(), [](const ScriptError& a, const ScriptError& b) {
            return std::pair(a.place().line, a.place().column) < std::pair(b.place().line, b.place().column);
        });
        for (const ScriptError& mistake : mistakes_)
            terminal_.err << mistake.what() << '\n' << mistake.excerpt() << '\n';
        return mistakes_.size();
    }

private:
    void check(const CallExpression& call) {
        const std::string name = symbols_.spelling(call.name);
        if (folded(name).rfind("krlimage", 0) != 0) return;
        try {
            check(call, requireMethod(name));
        } catch (const CommandError& unknown) {
            complain(call.place, unknown.what());
        }
    }

    void check(const CallExpression& call, const Method& method) {
        // In the form krlImageLoad(x, image), the first argument is the instance.
        const size_t instance = call.kind == ExpressionKind::Call ? 1 : 0;
        if (call.arguments.size() < instance)
            return complain(call.place, "expected an instance of the plug-in as the first argument");
        const size_t given = call.arguments.size() - instance;
        const std::string miscounted = countComplaint(method, given);
        if (!miscounted.empty()) complain(call.place, miscounted);
        for (size_t i = 0; i < std::min(given, method.arguments().size()); ++i) {
            const Expression& argument = *call.arguments[i + instance];
            const std::string complaint = complaintAbout(method.arguments()[i], argument, symbols_);
            if (!complaint.empty()) complain(argument.place, complaint);
        }
    }

    void complain(Place place, const std::string& message) {
        mistakes_.push_back(source_->error(place, message));
    }

    std::shared_ptr<const Source> source_;
    const bool names_;
    const Terminal& terminal_;
    SymbolTable symbols_;
    std::vector<ScriptError> mistakes_;
};

}  // namespace

int checkScripts(const CheckOptions& options, const Terminal& terminal) {
    size_t mistakes = 0;
    for (const std::filesystem::path& script : options.scripts)
        mistakes += Check(sourceOf(script), options.names, terminal).mistakes();
    return mistakes > 0 ? 1 : 0;
}

}  // namespace krl::player

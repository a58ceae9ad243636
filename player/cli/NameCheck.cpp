#include "player/cli/NameCheck.h"

#include <set>

#include "catalogue/NearestName.h"
#include "host/MessageTable.h"
#include "player/cli/CallWalk.h"
#include "player/host/MessageTableReader.h"
#include "player/host/SymbolTable.h"
#include "player/lingo/ImageTools.h"
#include "player/lingo/Runtime.h"
#include "player/lingo/StageNames.h"

namespace krl::player {

namespace {

/// Names without case, with their spellings for suggestions.
class NameSet {
public:
    void add(const std::string& name) {
        if (folded_.insert(folded(name)).second) spellings_.push_back(name);
    }
    bool holds(const std::string& name) const { return folded_.count(folded(name)) > 0; }
    std::string suggestion(const std::string& name) const { return didYouMean(name, spellings_); }

private:
    std::set<std::string> folded_;
    std::vector<std::string> spellings_;
};

class NameCheck {
public:
    NameCheck(const Script& script, const SymbolTable& symbols,
              const std::function<void(Place, const std::string&)>& report)
        : script_(script), symbols_(symbols), report_(report) {
        for (const auto& family : builtinFamilies())
            for (const Builtin& entry : family) functions_.add(entry.name);
        for (const auto& family : propertyFamilies())
            for (const PropertyEntry& entry : family)
                (entry.kind == Kind::Void ? systemProperties_ : properties_).add(entry.name);
        for (const auto& handler : script.handlers) functions_.add(symbols.spelling(handler->name));
        for (const SymbolId property : script.properties) properties_.add(symbols.spelling(property));
        // What a script uses as a key may be a property anywhere.
        visitExpressions(script, [this](const Expression& one) {
            if (one.kind == ExpressionKind::Symbol)
                properties_.add(symbols_.spelling(static_cast<const LiteralExpression&>(one).symbol));
        });
    }

    void run() {
        visitExpressions(script_, [this](const Expression& one) { check(one); });
    }

private:
    void check(const Expression& one) {
        switch (one.kind) {
            case ExpressionKind::Call:
                return checkCall(static_cast<const CallExpression&>(one));
            case ExpressionKind::MethodCall:
                return checkOptions(static_cast<const CallExpression&>(one), 3);
            case ExpressionKind::SystemProperty:
                return require(systemProperties_, static_cast<const PropertyExpression&>(one), "\"the ",
                               "\"");
            case ExpressionKind::Property:
                return require(properties_, static_cast<const PropertyExpression&>(one), "property \"", "\"");
            default:
                return;
        }
    }

    void checkCall(const CallExpression& call) {
        const std::string& name = symbols_.spelling(call.name);
        checkOptions(call, 4);
        if (folded(name) == "xtra") checkXtra(call);
        if (folded(name).rfind("krlimage", 0) != 0)
            complain(functions_, name, call.place, "handler or function \"", "\"");
    }

    void checkXtra(const CallExpression& call) {
        if (call.arguments.size() != 1 || call.arguments.front()->kind != ExpressionKind::String) return;
        const auto& name = static_cast<const LiteralExpression&>(*call.arguments.front());
        static const std::string known = MessageTable(std::string(host::messageTable().head())).xtraName();
        if (!sameText(name.text, known))
            report_(name.place, "there is no xtra \"" + name.text + "\", only \"" + known + '"');
    }

    void require(const NameSet& known, const PropertyExpression& property, const char* before,
                 const char* after) {
        const std::string& name = symbols_.spelling(property.name);
        if (property.kind == ExpressionKind::Property &&
            (functions_.holds(name) || systemProperties_.holds(name) || isOfStage(*property.object)))
            return;
        if (property.kind == ExpressionKind::Property && !known.holds(name) && isOfStageObjects(name))
            return report_(property.place, refusalOf("a stage", name));
        complain(known, name, property.place, before, after);
    }

    /// Whether a stage would be needed for an object, so that nothing is known of its properties.
    bool isOfStage(const Expression& object) const {
        switch (object.kind) {
            case ExpressionKind::Call:
                return neededBy(symbols_.spelling(static_cast<const CallExpression&>(object).name));
            case ExpressionKind::SystemProperty:
                return neededBy(symbols_.spelling(static_cast<const PropertyExpression&>(object).name));
            case ExpressionKind::Property:
                return isOfStage(*static_cast<const PropertyExpression&>(object).object);
            default:
                return false;
        }
    }

    void complain(const NameSet& known, const std::string& name, Place place, const std::string& before,
                  const char* after) {
        if (known.holds(name)) return;
        if (const char* need = neededBy(name)) return report_(place, refusalOf(need, name));
        report_(place, "there is no " + before + name + after + known.suggestion(name));
    }

    /// The options in a list that is written where `copyPixels` takes one.
    void checkOptions(const CallExpression& call, size_t index) {
        if (folded(symbols_.spelling(call.name)) != "copypixels" || call.arguments.size() <= index) return;
        const Expression& given = *call.arguments[index];
        if (given.kind != ExpressionKind::PropertyList) return;
        NameSet known;
        for (const std::string& name : copyOptionNames()) known.add(name);
        for (const ExpressionPointer& key : static_cast<const ListExpression&>(given).keys) {
            if (key->kind != ExpressionKind::Symbol) continue;
            const std::string& name = symbols_.spelling(static_cast<const LiteralExpression&>(*key).symbol);
            if (!known.holds(name))
                report_(key->place, "there is no option #" + name + known.suggestion(name));
        }
    }

    const Script& script_;
    const SymbolTable& symbols_;
    const std::function<void(Place, const std::string&)>& report_;
    NameSet functions_, properties_, systemProperties_;
};

}  // namespace

void checkNames(const Script& script, const SymbolTable& symbols,
                const std::function<void(Place, const std::string&)>& report) {
    NameCheck(script, symbols, report).run();
}

}  // namespace krl::player

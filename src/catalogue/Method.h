#pragma once

#include <functional>
#include <span>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "catalogue/Argument.h"
#include "catalogue/EffectParameters.h"

/// The declarative description of a method: one entry says everything a script sees, in the order
/// in which it happens, and carries the words and numbers that help, the gallery and the reference
/// page are made of.
///
///     catalogue.add("krlImageBrightness", brightness)
///         .summary("Lightens or darkens by a fixed amount.")
///         .integer("brightnessInt", {.from = -255, .to = 255, .example = 40}, "levels to add")
///         .symbol("colourOrAlpha", {{"RGB", ChannelTarget::RGB}, {"Alpha", ChannelTarget::Alpha}},
///                 refused("Brightness invalid colourOrAlpha input (Image)"))
///         .inputFailure("Brightness input failure (Image)")
///         .failed("Failed Brightness function (Image)")
///
/// What happens on a call: the engine test if there is one; the arguments are read in signature
/// order, a failed read ending the call with the input failure text; symbols and checks are
/// compared in signature order once all is read, or sooner at `thenCompare`; second images are
/// described, size-tested and locked; the effect runs; a status that is not 0 gives the `failed` text.
namespace krl {

class Call;
class Catalogue;

/// How a body ended: a null message is success; `code` goes back to the caller.
struct Outcome {
    const char* message = nullptr;
    CallCode code = kCallOk;
};
inline Outcome succeeded() { return {}; }
inline Outcome failure(const char* message, CallCode code = kCallOk) { return {message, code}; }

/// A hand-written body, run after the arguments are read and compared. What a plain effect becomes
/// is one of these.
using MethodBody = std::function<Outcome(Call&)>;

/// A further entry of a method's result, for the reference page.
struct ResultEntry {
    const char* key;
    const char* meaning;
};

class Method {
public:
    explicit Method(const char* name) : name_(name) {}

    // For readers.
    [[gnu::cold]] Method& summary(const char* text);
    /// Other words that people search for, with commas between them: `soften, defocus`.
    Method& words(const char* list);
    Method& gives(const char* key, const char* meaning);

    // Arguments, in signature order.
    Method& integer(const char* name, NumberRange range, const char* meaning);
    Method& real(const char* name, NumberRange range, const char* meaning);
    /// The first choice is the example unless `showing` names another.
    Method& symbol(const char* name, std::vector<SymbolChoice> choices, UnknownSymbol unknown,
                   const char* meaning = "");
    Method& colour(const char* name, Colour example, const char* meaning);
    Method& point(const char* name, PlaceExample example, const char* meaning);
    Method& colourList(const char* name, ListKeys keys, std::vector<ColourStop> example, const char* meaning);
    /// `example` is the file name of a sample picture.
    Method& image(const char* name, ImageTests tests, const char* example, const char* meaning);
    /// A value or list copied for the body; `example` is a Lingo text.
    Method& value(const char* name, const char* example, const char* meaning);

    // About the argument just declared.
    /// Symbols and checks up to here are compared before the next argument is read.
    Method& thenCompare();
    /// This argument's own input failure.
    Method& failsWith(const char* text);
    /// A test in the place of a symbol's comparison.
    Method& mustPass(std::function<bool(const ArgumentValue&)> check, const char* text);
    /// The example symbol, where it is not the first choice.
    Method& showing(const char* symbol);

    // How it runs.
    Method& inputFailure(const char* text);
    Method& failed(const char* text);
    /// Wants an engine before anything is read, and says so where there is none.
    Method& needsEngine();
    /// Is about the engine and its picture: whoever owns the engine carries it out, and no body is given.
    Method& managesEngine();
    /// Its definition contains the bands: with more than one, the result differs from that of one.
    Method& dependsOnBands();
    /// What becomes of a pixel depends only on it and on those at its place in second pictures, so that any
    /// part of a picture can be worked on by itself.
    Method& worksPerPixel();
    /// Leaves the loaded picture as it is: what it makes or finds is in its result.
    Method& leavesPicture();
    /// Checks its arguments and does nothing.
    Method& inert();
    /// The result is a list of new pictures.
    Method& givesPictureList();
    /// A new picture under `key` of the result.
    Method& givesPicture(const char* key, const char* meaning);
    /// Runs with no engine too; without this, a call with none ends with the failed text.
    Method& worksWithoutEngine();
    /// Makes the host query after the result is set up.
    Method& asksPlayer();
    /// A failed run leaves the second images locked; without this they are let go however it ends.
    Method& keepsLocksOnFailure();
    /// The body reads the arguments itself; they are declared for help alone.
    Method& readsItself();
    /// The method writes no result.
    Method& silent();
    Method& does(MethodBody body);

    const char* name() const { return name_; }
    /// The name without its prefix, as the command line takes it: `brightness`.
    std::string shortName() const;
    /// The folder of its source, such as `tone`, and the heading that it is listed under.
    const std::string& family() const { return family_; }
    const std::string& heading() const { return heading_; }
    const char* summaryText() const { return summary_; }
    const char* searchWords() const { return words_; }
    const std::vector<Argument>& arguments() const { return arguments_; }
    const std::vector<ResultEntry>& resultEntries() const { return results_; }
    const char* inputFailureText() const { return inputFailure_; }
    const char* inputFailureText(const Argument& argument) const;
    const char* failedText() const { return failed_; }
    const char* engineFailureText() const { return engineFailure_; }
    bool managesTheEngine() const { return managesEngine_; }
    bool resultDependsOnBands() const { return dependsOnBands_; }
    bool isPerPixel() const { return perPixel_; }
    /// Whether it may change the loaded picture.
    bool rewritesPicture() const { return !leavesPicture_ && !inert_ && !managesEngine_; }
    bool isInert() const { return inert_; }
    bool makesPictureList() const { return pictureList_; }
    /// The result entry that holds a new picture, or null.
    const char* pictureKey() const { return pictureKey_; }
    bool makesPicture() const { return pictureKey_ || pictureList_; }
    bool needsSecondPicture() const;
    /// The argument whose picture changes in place of the loaded one, or null: a method that leaves that one
    /// alone and gives nothing back works on its first picture.
    const Argument* changedPicture() const;
    bool isSilent() const { return silent_; }
    bool runsWithoutEngine() const { return withoutEngine_; }
    bool makesHostQuery() const { return asksPlayer_; }
    bool leavesLocksOnFailure() const { return keepsLocks_; }
    bool readsArguments() const { return !readsItself_; }
    const MethodBody& body() const { return body_; }
    /// Whether the effect's parameters take the arguments as declared.
    bool fitsEffect() const;

private:
    friend class Catalogue;
    template <class... Parameters>
    friend Method method(const char* name, Status (*effect)(ImageEngine&, Parameters...));

    Argument& last() { return arguments_.back(); }
    const Argument* firstPicture() const;
    Argument& add(ArgumentKind kind, const char* name, const char* meaning);

    const char* name_;
    std::string family_, heading_;
    const char* summary_ = "";
    const char* words_ = "";
    std::vector<Argument> arguments_;
    std::vector<ResultEntry> results_;
    std::vector<ArgumentKind> parameters_;
    bool hasEffect_ = false;
    const char* inputFailure_ = nullptr;
    const char* failed_ = nullptr;
    const char* engineFailure_ = nullptr;
    const char* pictureKey_ = nullptr;
    bool managesEngine_ = false, dependsOnBands_ = false, perPixel_ = false, leavesPicture_ = false,
         inert_ = false, pictureList_ = false;
    bool withoutEngine_ = false, asksPlayer_ = false, keepsLocks_ = false, readsItself_ = false,
         silent_ = false;
    MethodBody body_;
};

/// Runs an effect on the call's engine and arguments; defined beside `Call`.
Outcome runEffect(Call& call,
                  const std::function<Status(ImageEngine&, std::span<const ArgumentValue>)>& effect);

/// A method with a hand-written body, to be given with `does`.
inline Method method(const char* name) { return Method(name); }

/// A method that is one effect of the engine; its parameters take the arguments in order, and the fields of
/// a struct among them likewise.
template <class... Parameters>
Method method(const char* name, Status (*effect)(ImageEngine&, Parameters...)) {
    Method made(name);
    made.hasEffect_ = true;
    made.parameters_ = argumentKindsOf<std::remove_cvref_t<Parameters>...>();
    const auto applied = [effect]<size_t... Index>(std::index_sequence<Index...>) {
        return [effect](ImageEngine& engine, [[maybe_unused]] std::span<const ArgumentValue> arguments) {
            [[maybe_unused]] constexpr auto first = firstArguments<std::remove_cvref_t<Parameters>...>();
            return effect(engine, parameterOf<std::remove_cvref_t<Parameters>>([&](size_t i) {
                              return FieldArgument{&arguments[first[Index] + i]};
                          })...);
        };
    }
    (std::index_sequence_for<Parameters...>());
    made.body_ = [applied](Call& call) { return runEffect(call, applied); };
    return made;
}

}  // namespace krl

import { HighlightStyle, LanguageSupport, StreamLanguage, syntaxHighlighting, type StringStream } from "@codemirror/language";
import { tags } from "@lezer/highlight";

const KEYWORDS = new Set(("on end if then else repeat while with in to down exit next return case of otherwise put into after before set "
    + "global property me new and or not mod contains starts tell the").split(" "));
const CONSTANTS = new Set(["true", "false", "void", "empty", "return", "quote", "space", "tab"]);

function token(stream: StringStream): string | null {
    if (stream.eatSpace()) return null;
    if (stream.match("--")) {
        stream.skipToEnd();
        return "comment";
    }
    if (stream.match(/^"[^"]*"?/)) return "string";
    if (stream.match(/^#[A-Za-z_]\w*/)) return "atom";
    if (stream.match(/^\d+(\.\d+)?/)) return "number";
    const word = stream.match(/^[A-Za-z_]\w*/) as RegExpMatchArray | null;
    if (word) {
        const lower = word[0].toLowerCase();
        if (KEYWORDS.has(lower)) return "keyword";
        if (CONSTANTS.has(lower)) return "atom";
        return lower.startsWith("krlimage") ? "function" : "variableName";
    }
    stream.next();
    return null;
}

const language = StreamLanguage.define({
    name: "lingo", token, languageData: { commentTokens: { line: "--" } },
    tokenTable: { function: tags.function(tags.variableName) },
});

/** Colours that the page's style defines, for light and dark. */
const style = HighlightStyle.define([
    { tag: tags.comment, class: "code-comment" },
    { tag: tags.string, class: "code-string" },
    { tag: [tags.number, tags.atom], class: "code-value" },
    { tag: tags.keyword, class: "code-keyword" },
    { tag: tags.function(tags.variableName), class: "code-function" },
]);

export const lingo = () => new LanguageSupport(language, [syntaxHighlighting(style)]);

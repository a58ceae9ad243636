#include "player/cli/GalleryPage.h"

#include <algorithm>
#include <cstdint>

namespace krl::player {

namespace {

/// The page is neutral grey, so that it does not distort how colours are perceived.
constexpr const char* kStyle = R"css(
:root { color-scheme: dark; --ground: #1d1d1f; --card: #29292c; --line: #3b3b40; --text: #e9e9ec;
  --quiet: #a3a3ab; --accent: #f0b35a; }
* { box-sizing: border-box; }
body { margin: 0; background: var(--ground); color: var(--text);
  font: 15px/1.5 system-ui, "Segoe UI", Roboto, "Helvetica Neue", sans-serif; }
header { position: sticky; top: 0; z-index: 2; display: flex; flex-wrap: wrap; align-items: center;
  gap: .6rem 1.2rem; padding: .9rem 1.6rem; background: rgb(29 29 31 / .93); border-bottom: 1px solid var(--line);
  backdrop-filter: blur(8px); }
h1 { margin: 0; font-size: 1.15rem; font-weight: 650; letter-spacing: .01em; }
header p { margin: 0; color: var(--quiet); }
nav { display: flex; flex-wrap: wrap; gap: .15rem .9rem; flex: 1 1 100%; font-size: .86rem; }
nav a { color: var(--quiet); text-decoration: none; }
nav a:hover { color: var(--accent); }
input { margin-left: auto; width: 15rem; padding: .4rem .75rem; border: 1px solid var(--line); border-radius: 1rem;
  background: var(--card); color: inherit; font: inherit; }
input:focus, button:focus-visible, .view:focus-visible { outline: 2px solid var(--accent); outline-offset: 1px; }
main { max-width: 1720px; margin: 0 auto; padding: .4rem 1.6rem 4rem; }
h2 { margin: 2.2rem 0 .9rem; font-size: 1rem; font-weight: 600; color: var(--accent); scroll-margin-top: 7rem; }
h2 small { color: var(--quiet); font-weight: 400; }
.sheet { display: grid; grid-template-columns: repeat(auto-fill, minmax(290px, 1fr)); gap: 1.1rem; }
.card { display: flex; flex-direction: column; overflow: hidden; background: var(--card);
  border: 1px solid var(--line); border-radius: .7rem; }
.card.plain { align-self: start; }
.view { position: relative; display: block; width: 100%; padding: 0; border: 0; cursor: zoom-in; --cut: 0%;
  background: repeating-conic-gradient(#3a3a3d 0 25%, #303033 0 50%) 0 0 / 20px 20px; }
.view img { display: block; width: 100%; height: 100%; object-fit: contain; }
.view .before { position: absolute; inset: 0; clip-path: inset(0 calc(100% - var(--cut)) 0 0);
  background: var(--ground); }
.view::after { content: ""; position: absolute; top: 0; bottom: 0; left: var(--cut); width: 2px; margin-left: -1px;
  background: #fff; opacity: 0; box-shadow: 0 0 4px rgb(0 0 0 / .7); }
.view.wiping::after { opacity: .9; }
.words { display: flex; flex-direction: column; flex: 1; gap: .35rem; padding: .75rem .9rem .85rem; }
h3 { margin: 0; font-size: .98rem; font-weight: 600; }
.words p { margin: 0; color: var(--quiet); font-size: .88rem; line-height: 1.4; }
.answer { overflow-wrap: anywhere; }
.call { display: flex; gap: .5rem; align-items: flex-start; margin-top: auto; padding-top: .3rem; }
code { flex: 1; min-width: 0; max-height: 4.4em; overflow: auto; overflow-wrap: anywhere; color: #d6d6dc;
  font: .78rem/1.45 ui-monospace, "SF Mono", Menlo, Consolas, "DejaVu Sans Mono", monospace; }
.copy { padding: .1rem .6rem; border: 1px solid var(--line); border-radius: .4rem; background: none; color: var(--quiet);
  font: inherit; font-size: .78rem; cursor: pointer; }
.copy:hover { color: var(--text); border-color: var(--quiet); }
dialog { width: min(96vw, 1320px, max(24rem, 78vh * (var(--shape, 3 / 2)) + 2rem)); max-height: 96vh; padding: 1rem; border: 1px solid var(--line); border-radius: .8rem;
  background: var(--card); color: inherit; }
dialog::backdrop { background: rgb(10 10 11 / .85); }
dialog .title { display: flex; align-items: center; justify-content: space-between; gap: 1rem; margin-bottom: .8rem; }
dialog h2 { margin: 0; font-size: 1.05rem; color: var(--text); }
.close { width: 2.2rem; height: 2.2rem; border: 1px solid var(--line); border-radius: 50%; background: none;
  color: var(--quiet); font: inherit; font-size: 1.4rem; line-height: 1; cursor: pointer; }
.close:hover { color: var(--text); border-color: var(--quiet); }
.none { margin: 4rem 0; text-align: center; color: var(--quiet); }
dialog .view { margin: 0 auto; max-width: calc(78vh * (var(--shape, 3 / 2))); cursor: ew-resize; border-radius: .4rem; overflow: hidden; }
dialog .view img { max-height: 78vh; }
dialog .call { padding-top: .8rem; }
[hidden] { display: none !important; }
@media (max-width: 640px) {
  header { gap: .35rem .8rem; padding: .5rem .8rem; }
  header p { font-size: .8rem; flex: 1 1 100%; order: 1; white-space: nowrap; overflow: hidden; text-overflow: ellipsis; }
  input { flex: 1 1 8rem; width: auto; min-width: 0; padding: .25rem .7rem; }
  nav { order: 2; flex-wrap: nowrap; overflow-x: auto; padding-bottom: .2rem; scrollbar-width: none; white-space: nowrap; }
  main { padding: 0 .8rem 3rem; }
  h2 { margin: 1.4rem 0 .6rem; scroll-margin-top: 7.5rem; }
  .sheet { grid-template-columns: 1fr; }
  dialog { width: 100vw; max-width: 100vw; padding: .7rem; }
  .copy { padding: .35rem .8rem; }
}
)css";

constexpr const char* kBehaviour = R"js(
const wipe = view => {
  const cut = event => {
    const box = view.getBoundingClientRect();
    view.style.setProperty('--cut', Math.min(100, Math.max(0, 100 * (event.clientX - box.left) / box.width)) + '%');
    view.classList.add('wiping');
  };
  const whole = () => { view.style.setProperty('--cut', '0%'); view.classList.remove('wiping'); };
  view.addEventListener('pointermove', cut);
  view.addEventListener('pointerleave', whole);
};
document.querySelectorAll('.view').forEach(wipe);

const dialog = document.querySelector('dialog'), large = dialog.querySelector('.view');
document.querySelectorAll('.card .view').forEach(view => view.addEventListener('click', () => {
  const card = view.closest('.card');
  large.querySelector('.after').src = view.dataset.picture;
  large.querySelector('.before').src = view.dataset.before;
  large.style.aspectRatio = view.style.aspectRatio;
  dialog.style.setProperty('--shape', view.style.aspectRatio);
  dialog.querySelector('h2').textContent = card.querySelector('h3').textContent;
  dialog.querySelector('code').textContent = card.querySelector('code').textContent;
  dialog.showModal();
}));
dialog.querySelector('.close').addEventListener('click', () => dialog.close());
dialog.addEventListener('click', event => { if (event.target === dialog) dialog.close(); });

document.querySelectorAll('.copy').forEach(button => button.addEventListener('click', async () => {
  const code = button.parentElement.querySelector('code');
  try {
    await navigator.clipboard.writeText(code.textContent);
  } catch {
    getSelection().selectAllChildren(code);
    document.execCommand('copy');
  }
  button.textContent = 'Copied';
  setTimeout(() => { button.textContent = 'Copy'; }, 1200);
}));

const none = document.querySelector('.none');
document.querySelector('input').addEventListener('input', event => {
  const word = event.target.value.trim().toLowerCase();
  let all = 0;
  document.querySelectorAll('section').forEach(section => {
    let shown = 0;
    section.querySelectorAll('.card').forEach(card => {
      card.hidden = !card.textContent.toLowerCase().includes(word);
      shown += !card.hidden;
    });
    section.hidden = shown === 0;
    all += shown;
  });
  none.hidden = all > 0;
  none.textContent = all > 0 ? '' : `No effect matches \u201c${event.target.value.trim()}\u201d.`;
});
)js";

std::string safe(const std::string& text) {
    std::string escaped;
    for (const char letter : text) {
        switch (letter) {
            case '&':
                escaped += "&amp;";
                break;
            case '<':
                escaped += "&lt;";
                break;
            case '>':
                escaped += "&gt;";
                break;
            case '"':
                escaped += "&quot;";
                break;
            default:
                escaped += letter;
        }
    }
    return escaped;
}

std::string anchorOf(std::string heading) {
    std::replace_if(
        heading.begin(), heading.end(), [](unsigned char letter) { return !std::isalnum(letter); }, '-');
    return heading;
}

std::string viewOf(const GalleryOriginal& original, const GalleryCard& card) {
    const std::string shape = std::to_string(original.width) + " / " + std::to_string(original.height);
    return "<button class=\"view\" style=\"aspect-ratio: " + shape + "\" data-picture=\"" +
           safe(card.picture) + "\" data-before=\"" + safe(original.picture) +
           "\" title=\"Compare before and after\"><img class=\"after\" loading=\"lazy\" decoding=\"async\" "
           "alt=\"" +
           safe(card.name) + "\" src=\"" + safe(card.thumbnail) +
           "\"><img class=\"before\" loading=\"lazy\" alt=\"\" src=\"" + safe(original.thumbnail) +
           "\"></button>\n";
}

std::string callRow(const std::string& call) {
    return "<div class=\"call\"><code>" + safe(call) +
           "</code><button class=\"copy\" title=\"Copy the call\">Copy</button></div>\n";
}

std::string cardOf(const GalleryOriginal& original, const GalleryCard& card) {
    const bool plain = card.picture.empty();
    std::string text =
        plain ? "<article class=\"card plain\">\n" : "<article class=\"card\">\n" + viewOf(original, card);
    text += "<div class=\"words\"><h3>" + safe(card.name) + "</h3><p>" + safe(card.summary) + "</p>\n";
    if (card.original > 0 && !plain) text += "<p>On " + safe(original.name) + ", which it is made for.</p>\n";
    if (plain && card.answer.empty()) text += "<p>This picture is unchanged.</p>\n";
    if (!card.answer.empty()) text += "<p class=\"answer\">" + safe(card.answer) + "</p>\n";
    return text + callRow(card.call) + "</div>\n</article>\n";
}

/// The cards grouped by heading, in the order in which the headings first appear.
std::vector<std::pair<std::string, std::vector<const GalleryCard*>>> grouped(
    const std::vector<GalleryCard>& cards) {
    std::vector<std::pair<std::string, std::vector<const GalleryCard*>>> groups;
    for (const GalleryCard& card : cards) {
        const auto same = [&](const auto& group) { return group.first == card.group; };
        auto found = std::find_if(groups.begin(), groups.end(), same);
        if (found == groups.end()) found = groups.insert(found, {card.group, {}});
        found->second.push_back(&card);
    }
    return groups;
}

std::string headerOf(const GalleryOriginal& original, const std::vector<GalleryCard>& cards,
                     const std::string& counts) {
    std::string text =
        "<header><h1>KRLImageXtra</h1><p>" + safe(counts) + " on " + safe(original.name) +
        "</p><input type=\"search\" placeholder=\"Find an effect\" aria-label=\"Find an effect\">"
        "<nav>";
    for (const auto& [heading, members] : grouped(cards))
        text += "<a href=\"#" + anchorOf(heading) + "\">" + safe(heading) + "</a>";
    return text + "</nav></header>\n";
}

}  // namespace

std::string galleryPage(const std::vector<GalleryOriginal>& originals, const std::vector<GalleryCard>& cards,
                        const std::string& counts) {
    const GalleryOriginal& first = originals.front();
    std::string page =
        "<!doctype html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">\n"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>Effects on " +
        safe(first.name) + "</title>\n<style>" + kStyle + "</style></head>\n<body>\n" +
        headerOf(first, cards, counts) + "<main>\n";
    for (const auto& [heading, members] : grouped(cards)) {
        page += "<section><h2 id=\"" + anchorOf(heading) + "\">" + safe(heading) + " <small>" +
                std::to_string(members.size()) + "</small></h2>\n<div class=\"sheet\">\n";
        for (const GalleryCard* card : members) page += cardOf(originals[card->original], *card);
        page += "</div></section>\n";
    }
    return page +
           "<p class=\"none\" role=\"status\" hidden></p>\n</main>\n"
           "<dialog aria-labelledby=\"shown\"><div class=\"title\"><h2 id=\"shown\"></h2>"
           "<button class=\"close\" aria-label=\"Close\">&times;</button></div>\n"
           "<div class=\"view\"><img class=\"after\" alt=\"After\"><img class=\"before\" alt=\"Before\">"
           "</div>" +
           callRow("") + "</dialog>\n<script>" + kBehaviour + "</script>\n</body></html>\n";
}

}  // namespace krl::player

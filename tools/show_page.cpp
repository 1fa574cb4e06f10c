// show_page.cpp: writing the page. What it does in a browser it does without any other file than
// its pictures; without scripts it shows everything.
#include "tools/show_page.h"

#include <algorithm>

namespace uti::tool {

namespace {

constexpr const char *style = R"css(
:root { color-scheme: light dark; --scale: 1; --paper: #f3f5f8; --card: #fff; --ink: #1b2633; --soft: #5a6778;
  --line: #d5dbe3; --alarm: #c62828; --alarm-soft: #fdecea; --accent: #14505c; }
@media (prefers-color-scheme: dark) { :root { --paper: #14181e; --card: #1e242c; --ink: #e8ecf1;
  --soft: #9aa6b5; --line: #333c48; --alarm: #ff7b72; --alarm-soft: #3a2020; --accent: #6fc3d3; } }
* { box-sizing: border-box; }
body { margin: 0; background: var(--paper); color: var(--ink); font: 15px/1.45 system-ui, sans-serif; }
header { position: sticky; top: 0; z-index: 2; padding: 12px 24px; background: var(--card);
  border-bottom: 1px solid var(--line); display: flex; flex-wrap: wrap; gap: 8px 24px; align-items: center; }
h1 { margin: 0; font-size: 20px; }
#count { color: var(--soft); }
form { display: flex; flex-wrap: wrap; gap: 8px 20px; align-items: center; margin-left: auto; }
fieldset { display: flex; gap: 12px; border: 0; margin: 0; padding: 0; }
select, input[type=search] { font: inherit; color: inherit; background: var(--paper); border: 1px solid var(--line);
  border-radius: 6px; padding: 4px 8px; }
main { padding: 20px 24px 48px; display: flex; flex-wrap: wrap; gap: 20px; align-items: flex-start; }
section { max-width: 100%; padding: 16px 20px; background: var(--card); border: 1px solid var(--line);
  border-radius: 10px; }
h2 { margin: 0 0 12px; font-size: 17px; }
h2 small { margin-left: 8px; font-weight: normal; color: var(--soft); }
h2 a { color: inherit; text-decoration: none; }
.row { display: flex; flex-wrap: wrap; gap: 20px 28px; align-items: flex-start; }
figure { margin: 0; }
figcaption { margin-bottom: 4px; color: var(--soft); }
.badge { margin-left: 8px; padding: 1px 8px; border-radius: 9px; background: var(--alarm-soft); color: var(--alarm);
  font-size: 13px; }
.screen { position: relative; width: calc(var(--width) * 1px * var(--scale));
  height: calc(var(--height) * 1px * var(--scale)); outline: 1px solid var(--line); }
.screen img { display: block; width: 100%; height: 100%; image-rendering: pixelated; }
.mark, .glow { position: absolute; left: calc(var(--x) * 1px * var(--scale)); top: calc(var(--y) * 1px * var(--scale));
  width: calc(var(--w) * 1px * var(--scale)); height: calc(var(--h) * 1px * var(--scale)); }
.mark { outline: 2px solid #e53935; background: rgb(229 57 53 / .12); }
.mark b { position: absolute; right: -9px; top: -9px; min-width: 10px; padding: 0 4px; white-space: nowrap; height: 18px; border-radius: 9px;
  background: #e53935; color: #fff; font: bold 12px/18px system-ui, sans-serif; text-align: center; }
.glow { outline: 2px solid #1e88e5; background: rgb(30 136 229 / .15); pointer-events: none; }
.notes { width: calc(var(--width) * 1px * var(--scale)); min-width: 240px; font-size: 14px; }
.notes ol { margin: 10px 0 0; padding: 6px 10px 6px 28px; border-radius: 6px; background: var(--alarm-soft);
  color: var(--alarm); }
.notes dl { margin: 8px 0 0; display: grid; grid-template-columns: auto 1fr; gap: 1px 10px; }
.notes div { display: contents; }
dt { color: var(--soft); font-size: 12px; line-height: 20px; }
dd { margin: 0; white-space: pre-wrap; overflow-wrap: anywhere; }
dl div:hover dd { color: var(--accent); }
.absent { width: calc(var(--width) * 1px * var(--scale)); height: calc(var(--height) * 1px * var(--scale));
  display: grid; place-content: center; color: var(--soft); outline: 1px dashed var(--line); }
.failed { color: var(--alarm); }
#none { flex: 1; padding: 48px; text-align: center; color: var(--soft); }
[hidden] { display: none !important; }
@media print { form { display: none; } header { position: static; } section { break-inside: avoid; } }
)css";

constexpr const char *script = R"js(
(function () {
  'use strict';
  const filters = document.querySelector('form');
  const sections = Array.from(document.querySelectorAll('section'));
  const all = document.querySelectorAll('figure img').length;

  function apply() {
    const languages = Array.from(filters.querySelectorAll('[name=language]:checked'), box => box.value);
    const rule = filters.elements.finding.value;
    const words = filters.elements.text.value.trim().toLowerCase();
    for (const section of sections) {
      const holds = words === '' || section.textContent.toLowerCase().includes(words);
      for (const figure of section.querySelectorAll('figure')) {
        const rules = figure.dataset.rules.split(' ').filter(Boolean);
        const isFound = rule === '' || (rule === '*' ? rules.length > 0 : rules.includes(rule));
        figure.hidden = !(holds && isFound && languages.includes(figure.dataset.language));
      }
      section.hidden = !section.querySelector('figure:not([hidden]):not(.none)');
    }
    const shown = document.querySelectorAll('section:not([hidden]) figure:not([hidden]) img').length;
    document.getElementById('shown').textContent = shown === all ? '' : shown + ' of ';
    document.getElementById('none').hidden = sections.some(section => !section.hidden);
    document.documentElement.style.setProperty('--scale', filters.elements.size.value);
  }

  filters.addEventListener('input', apply);
  filters.addEventListener('submit', event => event.preventDefault());
  filters.hidden = false;
  apply();

  const glow = document.createElement('i');
  glow.className = 'glow';
  document.addEventListener('mouseover', function (event) {
    const line = event.target.closest('dl div');
    glow.remove();
    if (!line) return;
    for (const side of ['--x', '--y', '--w', '--h'])
      glow.style.setProperty(side, line.style.getPropertyValue(side));
    line.closest('figure').querySelector('.screen').append(glow);
  });
})();
)js";

std::string escaped(std::string_view text) {
    std::string safe;
    for (const char c : text) {
        switch (c) {
        case '&':
            safe += "&amp;";
            break;
        case '<':
            safe += "&lt;";
            break;
        case '>':
            safe += "&gt;";
            break;
        case '"':
            safe += "&quot;";
            break;
        default:
            safe += static_cast<unsigned char>(c) < ' ' && c != '\n' ? ' ' : c;
        }
    }
    return safe;
}

std::string counted(std::size_t count, std::string_view one) {
    return concat(count, ' ', one, count == 1 ? "" : "s");
}

std::string placed(const host::Rect &area) {
    return concat(" style=\"--x:", area.x, ";--y:", area.y, ";--w:", area.width,
                  ";--h:", area.height, '"');
}

// From top to bottom, and from left to right.
std::vector<PictureText> readingOrder(std::vector<PictureText> texts) {
    std::ranges::stable_sort(
        texts, {}, [](const PictureText &each) { return std::pair(each.area.y, each.area.x); });
    return texts;
}

// The part of an area that is on the display; of one that is not, what is next to it.
host::Rect onDisplay(const host::Rect &area, host::Size size) {
    constexpr int least = 6;
    const int x = std::clamp(area.x, 0, size.width - least);
    const int y = std::clamp(area.y, 0, size.height - least);
    return {x, y, std::clamp(area.right(), x + least, size.width) - x,
            std::clamp(area.bottom(), y + least, size.height) - y};
}

// The findings as frames in a picture, one for all with the same area, with their numbers.
std::string marksOf(const std::vector<PictureText> &findings, host::Size size) {
    struct Mark {
        host::Rect area;
        std::string numbers, titles;
    };
    std::vector<Mark> marks;
    for (std::size_t i = 0; i < findings.size(); ++i) {
        if (findings[i].area.empty())
            continue;
        const host::Rect area = onDisplay(findings[i].area, size);
        auto mark = std::ranges::find(marks, area, &Mark::area);
        if (mark == marks.end())
            mark = marks.insert(mark, {area, "", ""});
        mark->numbers += concat(mark->numbers.empty() ? "" : " ", i + 1);
        mark->titles += (mark->titles.empty() ? "" : "\n") + findings[i].text;
    }
    std::string html;
    for (const auto &[area, numbers, titles] : marks)
        html += concat("<i class=\"mark\" title=\"", escaped(titles), '"', placed(area), "><b>",
                       numbers, "</b></i>\n");
    return html;
}

} // namespace

Page::Page(const std::string &module, const std::vector<ShownDialog> &dialogs) : module_(module) {
    for (const ShownDialog &each : dialogs) {
        if (std::ranges::find(languages_, each.language) == languages_.end())
            languages_.push_back(each.language);
        dialogs_.emplace(each.key(), each);
    }
}

void Page::add(const Picture &picture, const std::string &file) {
    const std::string &language = picture.dialog.language;
    std::string rules, sentences, texts;
    for (const auto &[area, rule, text] : picture.findings) {
        rules += (rules.empty() ? "" : " ") + rule;
        ++rules_[rule];
        sentences += concat("<li>", escaped(text), " [", escaped(rule), "]</li>\n");
    }
    const PictureText *above = nullptr;
    const std::vector<PictureText> all = readingOrder(picture.texts);
    for (const PictureText &each : all) {
        const bool isSame = above && above->area == each.area;
        texts += concat("<div", placed(each.area), "><dt>", isSame ? "" : escaped(each.kind),
                        "</dt><dd lang=\"", escaped(language), "\">", escaped(each.text),
                        "</dd></div>\n");
        above = &each;
    }
    if (!picture.surface) {
        rules += rules.empty() ? "shown" : " shown";
        ++rules_["shown"];
    }

    std::string &figure = figures_[{picture.dialog.key(), language}];
    figure = concat("<figure data-language=\"", escaped(language), "\" data-rules=\"",
                    escaped(rules), "\">\n<figcaption>", escaped(language));
    if (!picture.findings.empty())
        figure += concat("<span class=\"badge\">", counted(picture.findings.size(), "finding"),
                         "</span>");
    figure += "</figcaption>\n";
    if (picture.surface) {
        size_ = picture.surface->size();
        figure += concat("<div class=\"screen\"><img src=\"", escaped(file), "\" width=\"",
                         size_.width, "\" height=\"", size_.height, "\" alt=\"",
                         escaped(picture.dialog.title()), " in ", escaped(language), "\">\n",
                         marksOf(picture.findings, size_), "</div>\n");
        ++pictures_;
    } else {
        figure +=
            concat("<div class=\"absent failed\">cannot be shown: ", picture.result, "</div>\n");
    }
    figure += "<div class=\"notes\">\n";
    if (!sentences.empty())
        figure += concat("<ol>\n", sentences, "</ol>\n");
    figure += concat("<dl>\n", texts, "</dl>\n</div>\n</figure>\n");
}

std::string Page::html() const {
    int findings = 0;
    for (const auto &[rule, count] : rules_)
        findings += count;

    std::string boxes, choices, sections;
    for (const std::string &language : languages_)
        boxes += concat("<label><input type=\"checkbox\" name=\"language\" value=\"",
                        escaped(language), "\" checked> ", escaped(language), "</label>\n");
    for (const auto &[rule, count] : rules_)
        choices += concat("<option value=\"", escaped(rule), "\">only ", escaped(rule), " (", count,
                          ")</option>\n");
    for (const auto &[key, dialog] : dialogs_) {
        const std::string number = concat(Hex{dialog.id, 4});
        const std::string anchor = concat('d', number, '-', dialog.variant + 1);
        sections += concat("<section id=\"", anchor, "\">\n<h2><a href=\"#", anchor, "\">",
                           escaped(dialog.title()), "</a>");
        if (dialog.source)
            sections += concat("<small>", number, "</small>");
        sections += "</h2>\n<div class=\"row\">\n";
        for (const std::string &language : languages_) {
            const auto figure = figures_.find({key, language});
            sections +=
                figure != figures_.end()
                    ? figure->second
                    : concat("<figure class=\"none\" data-language=\"", escaped(language),
                             "\" data-rules=\"\"><figcaption>", escaped(language),
                             "</figcaption><div class=\"absent\">not there</div></figure>\n");
        }
        sections += "</div>\n</section>\n";
    }

    return concat(
        "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n<meta "
        "name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<link rel=\"icon\" "
        "href=\"data:,\">\n<title>",
        escaped(module_), ": ", counted(dialogs_.size(), "dialog"), "</title>\n<style>", style,
        ":root { --width: ", size_.width, "; --height: ", size_.height,
        "; }\n</style>\n</head>\n<body>\n<header>\n<h1>", escaped(module_),
        "</h1>\n<div id=\"count\">", counted(dialogs_.size(), "dialog"), ", ",
        counted(languages_.size(), "language"), ", <span id=\"shown\"></span>",
        counted(pictures_, "picture"), ", ", counted(static_cast<std::size_t>(findings), "finding"),
        "</div>\n<form autocomplete=\"off\" hidden>\n<fieldset aria-label=\"Languages\">\n", boxes,
        "</fieldset>\n<select name=\"finding\" aria-label=\"Findings\">\n<option value=\"\">all "
        "dialogs</option>\n<option value=\"*\">with findings (",
        findings, ")</option>\n", choices,
        "</select>\n<input type=\"search\" name=\"text\" placeholder=\"Name or text\" "
        "aria-label=\"Name or text\">\n<select name=\"size\" aria-label=\"Size\">\n<option "
        "value=\"1\">1 ×</option>\n<option value=\"1.5\">1½ ×</option>\n<option value=\"2\">2 "
        "×</option>\n</select>\n</form>\n</header>\n<main>\n",
        sections, "<div id=\"none\" hidden>No dialog is like that.</div>\n</main>\n<script>",
        script, "</script>\n</body>\n</html>\n");
}

} // namespace uti::tool

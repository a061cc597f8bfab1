#include "gallery/contact_sheet.h"

#include <cstdio>

#include "lumcv.h"
#include "picture_file.h"

namespace tools {
namespace {

const char* const style = R"(
:root { color-scheme: dark; --ground: #0f1116; --card: #181b23; --edge: #262b37; --ink: #eceef3; --quiet: #98a0b3; --glow: #f6b26b; }
* { box-sizing: border-box; }
body { margin: 0; padding: 2.5rem clamp(1rem, 4vw, 4rem) 3rem; background: var(--ground); color: var(--ink);
  font: 15px/1.5 system-ui, "Segoe UI", "DejaVu Sans", sans-serif; }
header { display: flex; flex-wrap: wrap; align-items: baseline; gap: .25rem 1.5rem; padding-bottom: 1.25rem;
  border-bottom: 1px solid var(--edge); }
h1 { margin: 0; font-size: 1.9rem; font-weight: 650; letter-spacing: -.02em; }
h1 span { color: var(--glow); }
header p { margin: 0; color: var(--quiet); }
h2 { margin: 2.25rem 0 1rem; font-size: 1.05rem; font-weight: 600; color: var(--glow); }
.panels { display: grid; grid-template-columns: repeat(auto-fill, minmax(min(100%, 21rem), 1fr)); gap: 1.25rem; }
figure { margin: 0; display: flex; flex-direction: column; background: var(--card); border: 1px solid var(--edge);
  border-radius: 12px; overflow: hidden; transition: border-color .15s; }
figure:hover { border-color: var(--glow); }
figure a { display: block; background: #08090c; }
img { display: block; width: 100%; aspect-ratio: var(--shape); max-height: 32rem; object-fit: contain; }
figcaption { padding: .85rem 1rem 1rem; display: grid; grid-template-columns: 1fr auto; gap: .1rem 1rem; }
strong { font-weight: 600; }
time { color: var(--glow); font-variant-numeric: tabular-nums; white-space: nowrap; }
code { grid-column: 1 / -1; color: #a9c7ff; font: 13px/1.6 ui-monospace, "DejaVu Sans Mono", monospace;
  overflow-wrap: anywhere; }
figcaption p { grid-column: 1 / -1; margin: 0; color: var(--quiet); font-size: .9rem; }
figcaption p.number { color: var(--ink); font-variant-numeric: tabular-nums; }
footer { margin-top: 2.5rem; color: var(--quiet); font-size: .85rem; }
)";

std::string escaped(const std::string& text) {
    std::string result;
    for (const char c : text) {
        if (c == '&')
            result += "&amp;";
        else if (c == '<')
            result += "&lt;";
        else if (c == '>')
            result += "&gt;";
        else if (c == '"')
            result += "&quot;";
        else
            result += c;
    }
    return result;
}

std::string timeText(double milliseconds) {
    char text[32];
    if (milliseconds < 0.1)
        std::snprintf(text, sizeof text, "%.1f µs", milliseconds * 1e3);
    else
        std::snprintf(text, sizeof text, milliseconds < 10 ? "%.2f ms" : "%.1f ms", milliseconds);
    return text;
}

std::string figure(const Entry& entry) {
    const Panel& panel = *entry.panel;
    const std::string file = escaped(panel.file) + ".png";
    std::string html =
        "<figure>\n<a href=\"" + file + "\"><img src=\"" + file + "\" alt=\"" + escaped(panel.title) +
        "\" loading=\"lazy\" style=\"--shape: " + std::to_string(entry.width) + " / " +
        std::to_string(entry.height) + "\"></a>\n<figcaption><strong>" + escaped(panel.title) + "</strong>";
    if (!panel.function.empty())
        html +=
            "<time>" + timeText(entry.milliseconds) + "</time>\n<code>" + escaped(panel.function) + "</code>";
    html += "\n<p>" + escaped(panel.parameters) + "</p>";
    for (const std::string& number : entry.numbers)
        html += "\n<p class=\"number\">" + escaped(number) + "</p>";
    return html + "</figcaption>\n</figure>\n";
}

} // namespace

std::string contactSheet(const Subject& subject, const std::vector<Section>& sections) {
    const LumLibraryVersion& library = *lumcvGetLibVersion();
    std::string html =
        "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>lumCV: " +
        escaped(subject.name) + "</title>\n<style>" + style +
        "</style>\n</head>\n<body>\n<header>\n<h1>lum<span>CV</span></h1>\n<p>" + escaped(subject.name) +
        ", " + describe(subject.picture) + "</p>\n<p>" + escaped(library.name) + " " +
        escaped(library.version) + "</p>\n</header>\n";
    for (const Section& section : sections) {
        html += "<section>\n<h2>" + escaped(section.title) + "</h2>\n<div class=\"panels\">\n";
        for (const Entry& entry : section.entries) html += figure(entry);
        html += "</div>\n</section>\n";
    }
    return html + "<footer>Times are those of the fastest of a few calls, on one "
                  "thread.</footer>\n</body>\n</html>\n";
}

} // namespace tools

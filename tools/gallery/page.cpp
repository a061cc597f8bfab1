#include "gallery/page.h"

#include <algorithm>
#include <cctype>
#include <cstdio>

#include "gallery/page_style.h"
#include "lumcv.h"
#include "picture_file.h"
#include "terminal_text.h"

namespace tools {
namespace {

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

/// A function's name, which breaks between its words where the line is too short for it.
std::string breakable(const std::string& name) {
    std::string result;
    for (const char c : name) result += c == '_' ? "<wbr>_" : std::string(1, c);
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

bool isWord(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_'; }

/// The text with `instead` wherever `member` follows a name.
std::string withoutMember(std::string text, const std::string& member, const std::string& instead) {
    for (std::size_t at = text.find(member); at != std::string::npos; at = text.find(member, at + 1))
        if (at > 0 && isWord(text[at - 1])) text.replace(at, member.size(), instead);
    return text;
}

/// The text with `result` for each name whose member `picture` is taken.
std::string withResults(std::string text) {
    const std::string member = ".picture";
    for (std::size_t at = text.find(member); at != std::string::npos; at = text.find(member, at + 1)) {
        const std::size_t end = at + member.size();
        std::size_t begin = at;
        while (begin > 0 && isWord(text[begin - 1])) --begin;
        if (begin == at || (end < text.size() && isWord(text[end]))) continue;
        text.replace(begin, end - begin, "result");
        at = begin;
    }
    return text;
}

/// A call as a host in C writes it: pointers and steps are variables of their own.
std::string inC(const std::string& code, const std::string& function) {
    std::string text = withResults(code);
    text = withoutMember(text, ".data()", "");
    text = withoutMember(text, ".bytes()", "");
    text = withoutMember(text, ".step()", "Step");
    text = withoutMember(text, ".size()", "Size");
    // What is called through a pointer has the name of the panel's function.
    return function + text.substr(std::min(text.find('('), text.size())) + ";";
}

std::string thumbnail(const std::string& file) {
    return std::string(thumbnailDirectory) + "/" + file + ".jpg";
}

const Entry* entryOf(const std::string& file, const std::vector<Section>& sections) {
    for (const Section& section : sections)
        for (const Entry& entry : section.entries)
            if (entry.panel->file == file) return &entry;
    return nullptr;
}

/// The picture, and over it the one that it is compared with where both have one size.
std::string pictures(const Entry& entry, const std::vector<Section>& sections) {
    const Panel& panel = *entry.panel;
    const std::string shape = std::to_string(entry.size.width) + " / " + std::to_string(entry.size.height);
    const Entry* before = panel.before == panel.file ? nullptr : entryOf(panel.before, sections);
    if (before != nullptr &&
        (before->size.width != entry.size.width || before->size.height != entry.size.height))
        before = nullptr;
    std::string html = "<a href=\"" + panel.file + ".png\"";
    if (before != nullptr) html += " data-before=\"" + escaped(before->panel->title) + "\"";
    html += "><img src=\"" + thumbnail(panel.file) + "\" alt=\"" + escaped(panel.title) +
            "\" loading=\"lazy\" style=\"--shape: " + shape + "\">";
    if (before != nullptr)
        html += "<img class=\"before\" src=\"" + thumbnail(panel.before) + "\" alt=\"\" loading=\"lazy\">";
    return html + "</a>\n";
}

std::string panelOf(const Entry& entry, const std::vector<Section>& sections) {
    const Panel& panel = *entry.panel;
    std::string html = "<article class=\"panel\" id=\"" + panel.file + "\">\n" + pictures(entry, sections) +
                       "<div class=\"about\"><h3>" + escaped(panel.title) + "</h3>";
    if (!panel.function.empty())
        html += "<time>" + timeText(entry.milliseconds) + "</time>\n<code>" + breakable(panel.function) +
                "</code>";
    if (!panel.parameters.empty()) html += "\n<p>" + escaped(panel.parameters) + "</p>";
    for (const std::string& number : entry.numbers)
        html += "\n<p class=\"number\">" + escaped(number) + "</p>";
    if (!entry.code.empty())
        html += "\n<details><summary>The call</summary><pre>" + escaped(inC(entry.code, panel.function)) +
                "</pre></details>";
    return html + "</div>\n</article>\n";
}

std::string sectionOf(const Section& section, std::size_t number, const std::vector<Section>& sections) {
    const std::size_t count = section.entries.size();
    std::string html = "<section id=\"family-" + std::to_string(number) + "\">\n<h2>" +
                       escaped(section.title) + "</h2>\n<div class=\"panels" + (count == 1 ? " alone" : "") +
                       "\" style=\"--wide: " + std::to_string(columnsFor(count, 4)) +
                       "; --medium: " + std::to_string(columnsFor(count, 3)) + "\">\n";
    for (const Entry& entry : section.entries) html += panelOf(entry, sections);
    return html + "</div>\n</section>\n";
}

std::string headOf(const Subject& subject) {
    const LumLibraryVersion& library = *lumcvGetLibVersion();
    const std::string name = escaped(forTerminal(subject.name));
    std::string html = "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
                       "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
                       "<link rel=\"icon\" href=\"data:,\">\n<title>lumCV: " +
                       name + "</title>\n<style>" + pageStyle +
                       "</style>\n</head>\n<body>\n<header>\n<h1>lum<span>CV</span></h1>\n<p>" + name + ", " +
                       describe(subject.picture);
    if (subject.sizeOfFile.width != subject.picture.width ||
        subject.sizeOfFile.height != subject.picture.height)
        html += ", shrunk from " + std::to_string(subject.sizeOfFile.width) + " x " +
                std::to_string(subject.sizeOfFile.height);
    return html + "</p>\n<p>" + escaped(library.name) + " " + escaped(library.version) + "</p>\n</header>\n";
}

} // namespace

int columnsFor(std::size_t panels, int most) {
    // The share of the last row that is filled.
    const auto filled = [&](int columns) {
        const auto rest = static_cast<double>(panels % static_cast<std::size_t>(columns));
        return rest == 0 ? 1 : rest / columns;
    };
    if (panels < 2) return 1;
    if (panels < static_cast<std::size_t>(most)) return static_cast<int>(panels);
    const int fewer = std::max(most - 1, 2);
    const int best = filled(fewer) > filled(most) ? fewer : most;
    return filled(best) < 0.5 ? 2 : best;
}

std::string page(const Subject& subject, const std::vector<Section>& sections) {
    std::string html = headOf(subject) +
                       "<nav aria-label=\"Families\">\n<button id=\"compare\" aria-pressed=\"false\" "
                       "title=\"or hold the key b, or point at a picture\" hidden>Before</button>\n";
    for (std::size_t i = 0; i < sections.size(); ++i)
        html += "<a href=\"#family-" + std::to_string(i) + "\">" + escaped(sections[i].title) + "</a>\n";
    html += "</nav>\n<main>\n";
    for (std::size_t i = 0; i < sections.size(); ++i) html += sectionOf(sections[i], i, sections);
    return html +
           "</main>\n<footer>Times are those of the fastest of a few calls, on one thread. Point at a "
           "picture, or hold "
           "the key b, to see what it was made from.</footer>\n<script>" +
           pageScript + "</script>\n</body>\n</html>\n";
}

} // namespace tools

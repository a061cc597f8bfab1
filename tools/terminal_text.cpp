#include "terminal_text.h"

#include <cstdint>

namespace tools {
namespace {

struct Character {
    std::uint32_t code;
    /// Bytes that it takes; 0 when they are not UTF-8.
    std::size_t length;
};

Character characterAt(std::string_view text) {
    const auto byte = [&](std::size_t i) {
        return static_cast<std::uint32_t>(static_cast<unsigned char>(text[i]));
    };
    const std::uint32_t first = byte(0);
    if (first < 0x80) return {first, 1};
    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC0 || first > 0xF4 || text.size() < length) return {0, 0};
    std::uint32_t code = first & (0xFFU >> (length + 1));
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0U) != 0x80U) return {0, 0};
        code = code << 6 | (byte(i) & 0x3FU);
    }
    // Each character has one form, the shortest; halves of pairs are none.
    constexpr std::uint32_t leastOfLength[] = {0, 0, 0x80, 0x800, 0x10000};
    if (code < leastOfLength[length] || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) return {0, 0};
    return {code, length};
}

bool isObeyed(std::uint32_t code) {
    return code < 0x20 || (code >= 0x7F && code <= 0x9F) || (code >= 0x2028 && code <= 0x202E) ||
           (code >= 0x2066 && code <= 0x2069);
}

} // namespace

std::string forTerminal(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        const auto [code, length] = characterAt(text);
        if (length == 0)
            result += '?';
        else if (isObeyed(code))
            result += ' ';
        else
            result += text.substr(0, length);
        text.remove_prefix(length == 0 ? 1 : length);
    }
    return result;
}

} // namespace tools

#include "terminal_text.h"

#include <gtest/gtest.h>

using tools::forTerminal;

TEST(TerminalText, PlainAndForeignTextStays) {
    for (const char* text : {"", "plain", "\u00E9\u00DF\u20AC \U0001F600 \u4E2D", "\u00A0"})
        EXPECT_EQ(text, forTerminal(text));
}

TEST(TerminalText, ControlCharactersAreSpaces) {
    EXPECT_EQ("a b c d", forTerminal("a\x1B"
                                     "b\nc\x7F"
                                     "d"));
    EXPECT_EQ(" ", forTerminal(std::string(1, '\0')));
    // Those of one byte beyond ASCII, as UTF-8.
    EXPECT_EQ("a 2J b", forTerminal("a\xC2\x9B"
                                    "2J\xC2\x80"
                                    "b"));
}

TEST(TerminalText, CharactersThatReorderALineAreSpaces) {
    EXPECT_EQ("a b c", forTerminal("a\u202E"
                                   "b\u2066"
                                   "c"));
    EXPECT_EQ("a b", forTerminal("a\u2028"
                                 "b"));
}

TEST(TerminalText, BytesThatAreNotUtf8AreQuestionMarks) {
    EXPECT_EQ("a?2J", forTerminal("a\x9B"
                                  "2J"));
    EXPECT_EQ("??", forTerminal("\x80\xFF"));
    EXPECT_EQ("?", forTerminal("\xC3")) << "cut short";
    EXPECT_EQ("?x", forTerminal("\xE2x"));
    EXPECT_EQ("??", forTerminal("\xC0\x9B")) << "not the shortest form";
    EXPECT_EQ("???", forTerminal("\xE0\x82\x9B")) << "not the shortest form";
    EXPECT_EQ("???", forTerminal("\xED\xA0\x80")) << "half of a pair";
    EXPECT_EQ("????", forTerminal("\xF4\x90\x80\x80")) << "beyond the last character";
    EXPECT_EQ("?", forTerminal("\xF5"));
}

TEST(TerminalText, NoByteOfAnyTextIsObeyed) {
    for (int a = 0; a < 256; ++a)
        for (int b = 0; b < 256; ++b) {
            const std::string shown = forTerminal(std::string{static_cast<char>(a), static_cast<char>(b)});
            for (std::size_t i = 0; i < shown.size(); ++i) {
                const auto byte = static_cast<unsigned char>(shown[i]);
                ASSERT_TRUE(byte >= 0x20 && byte != 0x7F) << a << ", " << b;
                // Continuing bytes only after the first one of a character.
                ASSERT_FALSE(byte >= 0x80 && byte < 0xC0 && i == 0) << a << ", " << b;
                ASSERT_FALSE(i > 0 && byte >= 0x80 && byte < 0xA0 && shown[i - 1] == '\xC2')
                    << a << ", " << b;
            }
        }
}

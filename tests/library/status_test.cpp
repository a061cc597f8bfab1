// Names and sentences of statuses, held against the list in the header.
#include "lumcv_status.h"

#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>

namespace {

/// The values that status.h lists, by name.
std::map<std::string, LumStatus> listed() {
    std::ifstream file(LUMCV_INCLUDE "/lumcv/status.h");
    std::stringstream text;
    text << file.rdbuf();
    const std::string content = text.str();
    const std::regex enumerator("\\n    (lumStatus[A-Za-z]+) = (-?[0-9]+)");
    std::map<std::string, LumStatus> values;
    for (std::sregex_iterator match(content.begin(), content.end(), enumerator), end; match != end; ++match)
        values[(*match)[1]] = std::stoi((*match)[2]);
    return values;
}

} // namespace

TEST(StatusText, EveryStatusHasItsName) {
    const auto values = listed();
    EXPECT_EQ(33U, values.size());
    for (const auto& [name, value] : values) EXPECT_EQ(name, lumStatusName(value));
}

TEST(StatusText, EveryStatusHasASentenceOfItsOwn) {
    std::set<std::string> sentences;
    for (const auto& [name, value] : listed()) {
        const std::string sentence = lumStatusSentence(value);
        EXPECT_EQ('.', sentence.back()) << name;
        EXPECT_TRUE(sentences.insert(sentence).second) << name;
        EXPECT_EQ(value > 0, sentence.rfind("Warning: ", 0) == 0) << name;
    }
}

TEST(StatusText, OtherValuesAreUnknown) {
    EXPECT_STREQ("unknown", lumStatusName(-1));
    EXPECT_STREQ("unknown", lumStatusName(1000));
    EXPECT_STREQ("This is no status of the library.", lumStatusSentence(-1));
}

// The manual page and the completions know what the program knows.
#include <regex>
#include <set>

#include "program.h"

using namespace support;

namespace {

const std::vector<std::string> commands = {"info",    "absdiff", "detect",  "inpaint",
                                           "segment", "track",   "gallery", "help"};

std::set<std::string> optionsIn(const std::string& text) {
    static const std::regex option("--[a-z][a-z-]*");
    std::set<std::string> options;
    for (std::sregex_iterator match(text.begin(), text.end(), option), end; match != end; ++match)
        options.insert(match->str());
    return options;
}

std::set<std::string> optionsOfProgram() {
    std::set<std::string> options = optionsIn(run({"--help"}).output);
    for (const std::string& command : commands) options.merge(optionsIn(run({"help", command}).output));
    return options;
}

/// The page as plain text: "\-" is a hyphen.
std::string manual() {
    return std::regex_replace(bytesOf(LUMCV_SHARE "/man/lumcv.1"), std::regex(R"(\\-)"), "-");
}

/// What bash offers for the words of a line, the last of which is begun.
std::string completed(const std::string& words, int last) {
    const std::string script = ". " LUMCV_SHARE "/completion/lumcv.bash; COMP_WORDS=(" + words +
                               "); COMP_CWORD=" + std::to_string(last) + "; _lumcv; echo \"${COMPREPLY[*]}\"";
    FILE* pipe = popen(("bash -c '" + script + "'").c_str(), "r");
    std::string text = readToEnd(fileno(pipe));
    pclose(pipe);
    return text;
}

} // namespace

TEST(Manual, NamesEveryCommandAndOption) {
    const std::string text = manual();
    for (const std::string& command : commands)
        EXPECT_TRUE(std::regex_search(text, std::regex("\\.BI? \"?" + command + "\\b|\\.BR " + command)))
            << command;
    EXPECT_EQ(optionsOfProgram(), optionsIn(text));
}

TEST(Manual, CompletionOfBashNamesEveryCommandAndOption) {
    EXPECT_EQ(optionsOfProgram(), optionsIn(bytesOf(LUMCV_SHARE "/completion/lumcv.bash")));
    EXPECT_EQ("info absdiff detect inpaint segment track gallery help -h --help --version\n",
              completed("lumcv \"\"", 1));
    EXPECT_EQ("detect\n", completed("lumcv de", 1));
    EXPECT_EQ("--cascade\n", completed("lumcv detect --c", 2));
    EXPECT_EQ("\n", completed("lumcv detect --s", 2));
    EXPECT_EQ("front\n", completed("lumcv inpaint --method f", 3));
    EXPECT_EQ("gallery\n", completed("lumcv help g", 2));
    EXPECT_EQ("/dev/null\n", completed("lumcv detect /dev/nul", 2));
    for (const std::string& command : commands) {
        if (command == "help") continue;
        std::set<std::string> told = optionsIn(run({"help", command}).output);
        EXPECT_EQ(told, optionsIn(completed("lumcv " + command + " --", 2))) << command;
    }
}

TEST(Manual, CompletionOfZshNamesEveryCommandAndOption) {
    const std::string text = bytesOf(LUMCV_SHARE "/completion/_lumcv");
    for (const std::string& command : commands)
        EXPECT_NE(std::string::npos, text.find("'" + command + ":")) << command;
    EXPECT_EQ(optionsOfProgram(), optionsIn(text));
}

#include "library/contract/prototypes.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>

namespace contract {
namespace {

using Names = std::map<std::string, std::vector<std::string>>;

/// Every declaration of a header: name(argument, argument, ...);
void readHeader(const std::filesystem::path& path, Names& names) {
    std::ifstream file(path);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    static const std::regex argument(R"((\w+)(\[\d+\])?\s*(,|$))");
    for (std::size_t at = 0; (at = text.find("\nLUM_API ", at)) != std::string::npos; ++at) {
        const std::size_t open = text.find('(', at);
        const std::size_t close = text.find(");", open);
        const std::size_t nameStart = text.find_last_of(" *", open) + 1;
        const std::string list = text.substr(open + 1, close - open - 1);
        auto& of = names[text.substr(nameStart, open - nameStart)];
        for (std::sregex_iterator match(list.begin(), list.end(), argument), end; match != end; ++match)
            of.push_back((*match)[1]);
    }
}

} // namespace

std::vector<std::string> argumentNames(const std::string& name) {
    static const Names all = [] {
        Names names;
        for (const auto& entry : std::filesystem::directory_iterator(LUMCV_HEADERS))
            if (entry.path().extension() == ".h") readHeader(entry.path(), names);
        return names;
    }();
    const auto found = all.find(name);
    return found == all.end() ? std::vector<std::string>{} : found->second;
}

} // namespace contract

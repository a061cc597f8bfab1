// Prints the digest of every export, or with --check DIR compares them with the lists of DIR.
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <set>
#include <sstream>

#include "digest/digest.h"

namespace digest {
namespace {

/// Every exported name.
const char* const exportedNames[] = {
#define LUM_EXPORT(ordinal, name, ...) #name,
#include "entry/exports.inc"
#undef LUM_EXPORT
};

/// The lines of a family's list: an export and its digest.
std::string listOf(const Family& family) {
    std::string list;
    for (const auto& [name, run] : family.rows) {
        Digest digest;
        for (const Case& region : cases()) run(digest, region);
        char line[160];
        std::snprintf(line, sizeof line, "%s\t%016" PRIx64 "\n", name.c_str(), digest.value());
        list += line;
    }
    return list;
}

/// Whether the file of the family says the same; tells what differs.
bool isListed(const std::string& directory, const Family& family, std::set<std::string>& covered) {
    std::ifstream file(directory + "/" + family.name + ".tsv");
    std::set<std::string> listed;
    for (std::string line; std::getline(file, line);) listed.insert(line);
    bool same = true;
    std::istringstream lines(listOf(family));
    for (std::string line; std::getline(lines, line);) {
        covered.insert(line.substr(0, line.find('\t')));
        if (listed.erase(line) == 0) {
            std::printf("%s: not as listed: %s\n", family.name.c_str(), line.c_str());
            same = false;
        }
    }
    for (const std::string& line : listed) {
        std::printf("%s: listed, but not computed: %s\n", family.name.c_str(), line.c_str());
        same = false;
    }
    return same;
}

} // namespace

} // namespace digest

int main(int argc, char** argv) {
    const auto& families = digest::families();
    if (argc == 3 && std::strcmp(argv[1], "--check") == 0) {
        bool same = true;
        std::set<std::string> covered;
        for (const auto& family : families) same = digest::isListed(argv[2], family, covered) && same;
        for (const char* name : digest::exportedNames)
            if (covered.count(name) == 0) {
                std::printf("no digest: %s\n", name);
                same = false;
            }
        std::printf("%zu exports compared\n", covered.size());
        return same ? 0 : 1;
    }
    if (argc == 3 && std::strcmp(argv[1], "--write") == 0) {
        for (const auto& family : families)
            std::ofstream(std::string(argv[2]) + "/" + family.name + ".tsv") << digest::listOf(family);
        return 0;
    }
    std::fprintf(stderr, "usage: lumcv_digests --check DIR | --write DIR\n");
    return 2;
}

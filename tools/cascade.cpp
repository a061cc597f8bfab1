#include "cascade.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <nlohmann/json.hpp>
#include <set>

#include "failure.h"
#include "files/input_file.h"
#include "xml_cascade.h"

namespace tools {
namespace {

using Json = nlohmann::json;

constexpr std::size_t largestFile = std::size_t{16} << 20;
constexpr int largestWindow = 512;
constexpr int mostHits = 1000000;
/// Messages echo keys and the text at which the parser stopped; as many bytes tell enough of either.
constexpr std::size_t longestKey = 60;
constexpr std::size_t longestParserMessage = 240;
constexpr std::size_t longestMessage = 600;

/// A place in the file, for messages: "stages[2].classifiers[0]".
using Place = std::string;

Place within(const Place& outer, const std::string& key) { return outer.empty() ? key : outer + "." + key; }
Place within(const Place& outer, std::size_t index) { return outer + "[" + std::to_string(index) + "]"; }

/// The beginning of a text that the file decides, whole characters of it.
std::string shortened(const std::string& text, std::size_t longest) {
    if (text.size() <= longest) return text;
    std::size_t end = longest;
    const auto continuesCharacter = [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
    };
    while (end > 0 && continuesCharacter(text[end])) --end;
    return text.substr(0, end) + "...";
}

[[noreturn]] void refuse(const Place& place, const std::string& reason) {
    std::string text = (place.empty() ? "the cascade" : place) + " " + reason;
    // The text of an exception ends at a NUL, and a key may hold one.
    std::replace(text.begin(), text.end(), '\0', ' ');
    throw Failure(text);
}

/// An object that has all of the keys, and no others.
void expectKeys(const Json& json, const Place& place, std::initializer_list<const char*> keys) {
    if (!json.is_object()) refuse(place, "must be an object");
    for (const char* key : keys)
        if (!json.contains(key)) refuse(within(place, key), "is missing");
    for (const auto& [key, value] : json.items())
        if (std::find(keys.begin(), keys.end(), key) == keys.end())
            refuse(within(place, shortened(key, longestKey)), "is not a key of this format");
}

float numberOf(const Json& json, const Place& place) {
    if (!json.is_number()) refuse(place, "must be a number");
    const auto number = json.get<float>();
    if (!std::isfinite(number)) refuse(place, "is too large");
    return number;
}

int integerOf(const Json& json, const Place& place, int least, int most) {
    if (!json.is_number_integer()) refuse(place, "must be a whole number");
    // Numbers above the signed range wrap to negative ones, which are below every `least`.
    const auto number = json.get<std::int64_t>();
    if (number < least || number > most) {
        std::string reason = "must be from ";
        reason.append(std::to_string(least)).append(" to ").append(std::to_string(most));
        refuse(place, reason);
    }
    return static_cast<int>(number);
}

const Json& listOf(const Json& json, const Place& place) {
    if (!json.is_array() || json.empty()) refuse(place, "must be a list with at least one entry");
    return json;
}

/// The first four entries of a list: x, y, width and height of a rectangle inside the window.
LumRect rectangleOf(const Json& json, const Place& place, LumSize window) {
    const int x = integerOf(json[0], within(place, 0U), 0, window.width - 1);
    const int y = integerOf(json[1], within(place, 1U), 0, window.height - 1);
    const int width = integerOf(json[2], within(place, 2U), 1, window.width - x);
    const int height = integerOf(json[3], within(place, 3U), 1, window.height - y);
    return {x, y, width, height};
}

void readWeightedRectangle(const Json& json, const Place& place, LumSize window, CascadeStage& stage) {
    if (!json.is_array() || json.size() != 5) refuse(place, "must be [x, y, width, height, weight]");
    stage.rectangles.push_back(rectangleOf(json, place, window));
    stage.weights.push_back(numberOf(json[4], within(place, 4U)));
}

void readClassifier(const Json& json, const Place& place, LumSize window, CascadeStage& stage) {
    expectKeys(json, place, {"rectangles", "threshold", "below", "above"});
    const Json& rectangles = listOf(json["rectangles"], within(place, "rectangles"));
    for (std::size_t i = 0; i < rectangles.size(); ++i)
        readWeightedRectangle(rectangles[i], within(within(place, "rectangles"), i), window, stage);
    stage.counts.push_back(static_cast<Lum32s>(rectangles.size()));
    // The file speaks of means over the window, the library of sums.
    const auto area = static_cast<float>(window.width * window.height);
    const float threshold = numberOf(json["threshold"], within(place, "threshold")) * area;
    if (!std::isfinite(threshold)) refuse(within(place, "threshold"), "is too large");
    stage.thresholds.push_back(threshold);
    stage.below.push_back(numberOf(json["below"], within(place, "below")));
    stage.above.push_back(numberOf(json["above"], within(place, "above")));
}

CascadeStage readStage(const Json& json, const Place& place, LumSize window) {
    expectKeys(json, place, {"threshold", "classifiers"});
    CascadeStage stage;
    stage.threshold = numberOf(json["threshold"], within(place, "threshold"));
    const Json& classifiers = listOf(json["classifiers"], within(place, "classifiers"));
    for (std::size_t i = 0; i < classifiers.size(); ++i)
        readClassifier(classifiers[i], within(within(place, "classifiers"), i), window, stage);
    return stage;
}

Cascade cascadeOf(const Json& json) {
    expectKeys(json, "", {"format", "name", "window", "object", "leastDeviation", "leastHits", "stages"});
    if (json["format"] != "lumcv-cascade-1") refuse("format", "must be \"lumcv-cascade-1\"");
    if (!json["name"].is_string()) refuse("name", "must be a text");
    const Json& window = json["window"];
    if (!window.is_array() || window.size() != 2) refuse("window", "must be [width, height]");
    Cascade cascade;
    cascade.window = {integerOf(window[0], "window[0]", 1, largestWindow),
                      integerOf(window[1], "window[1]", 1, largestWindow)};
    const Json& object = json["object"];
    if (!object.is_array() || object.size() != 4) refuse("object", "must be [x, y, width, height]");
    cascade.object = rectangleOf(object, "object", cascade.window);
    cascade.leastDeviation = numberOf(json["leastDeviation"], "leastDeviation");
    // As the file has it: a float may be 0 where the number is not.
    if (json["leastDeviation"].get<double>() < 0) refuse("leastDeviation", "must not be below 0");
    cascade.leastHits = integerOf(json["leastHits"], "leastHits", 1, mostHits);
    const Json& stages = listOf(json["stages"], "stages");
    for (std::size_t i = 0; i < stages.size(); ++i)
        cascade.stages.push_back(readStage(stages[i], within("stages", i), cascade.window));
    return cascade;
}

/// The value of a JSON text in which no object has a key twice.
Json parsed(const std::string& text) {
    std::vector<std::set<std::string>> keysOfOpenObjects;
    return Json::parse(text, [&](int, Json::parse_event_t event, const Json& value) {
        if (event == Json::parse_event_t::object_start) keysOfOpenObjects.emplace_back();
        if (event == Json::parse_event_t::object_end) keysOfOpenObjects.pop_back();
        if (event == Json::parse_event_t::key) {
            const auto key = value.get<std::string>();
            if (!keysOfOpenObjects.back().insert(key).second)
                refuse(shortened(key, longestKey), "is there twice");
        }
        return true;
    });
}

Cascade readJsonCascade(const std::string& text) {
    // The parser takes it for the end of the file.
    if (text.find('\0') != std::string::npos) throw Failure("is not JSON: it holds a NUL");
    try {
        return cascadeOf(parsed(text));
    } catch (const Json::exception& error) {
        throw Failure("is not JSON: " + shortened(error.what(), longestParserMessage));
    } catch (const Failure& failure) {
        throw Failure(std::string("is no cascade: ") + failure.what());
    }
}

bool looksLikeXml(const std::string& text) {
    const std::size_t first = text.find_first_not_of(" \t\r\n\xEF\xBB\xBF");
    return first != std::string::npos && text[first] == '<';
}

constexpr char brightDisc[] =
#include "bright_disc.inc"
    ;

} // namespace

Cascade readCascade(const std::string& path) {
    try {
        return named("the cascade " + nameOfInput(path), [&] {
            const std::string text = readFile(path, largestFile);
            return looksLikeXml(text) ? readXmlCascade(text) : readJsonCascade(text);
        });
    } catch (const Failure& failure) {
        throw Failure(shortened(failure.what(), path.size() + longestMessage));
    }
}

Cascade brightDiscCascade() { return cascadeOf(parsed(brightDisc)); }

} // namespace tools

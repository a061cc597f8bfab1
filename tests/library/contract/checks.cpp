#include "library/contract/checks.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <fnmatch.h>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <stdexcept>

namespace contract {

int channelsOf(const std::string& name, const std::string& image) {
    const std::size_t layout = name.find("_C");
    if (layout == std::string::npos || image == "mask") return 1;
    const int first = name[layout + 2] - '0';
    const bool isConversion = name.compare(layout + 3, 2, "C1") == 0;
    return isConversion && image == "dst" ? 1 : first;
}

namespace {

const std::map<std::string, LumStatus>& statuses() {
#define STATUS(name)                                                                                         \
    { #name, lumStatus##name }
    static const std::map<std::string, LumStatus> all = {
        STATUS(Ok),
        STATUS(BadValue),
        STATUS(BadArgument),
        STATUS(SizeError),
        STATUS(EmptyRange),
        STATUS(NullPointer),
        STATUS(OutOfRange),
        STATUS(ContextMismatch),
        STATUS(ModeError),
        STATUS(StepError),
        STATUS(ThresholdError),
        STATUS(MaskSizeError),
        STATUS(AnchorError),
        STATUS(ChannelCountError),
        STATUS(DivisorError),
        STATUS(ChannelOfInterestError),
        STATUS(CountError),
        STATUS(MetricError),
        STATUS(DataTypeError),
        STATUS(StepAlignmentError),
        STATUS(BorderError),
        STATUS(NormError),
        STATUS(AlgorithmError),
        STATUS(SizeOverflow),
        STATUS(InPlaceNotSupported),
    };
#undef STATUS
    return all;
}

void readFile(const std::filesystem::path& path, std::vector<Contract>& all) {
    std::ifstream file(path);
    bool isOpen = false;
    int number = 0;
    for (std::string line; std::getline(file, line);) {
        ++number;
        line = line.substr(0, line.find('#'));
        std::istringstream words(line);
        std::string word;
        if (!(words >> word)) continue;
        const bool isIndented = std::isspace(static_cast<unsigned char>(line[0])) != 0;
        if (!isIndented) {
            if (!isOpen) all.push_back({{}, {}, path.filename().string() + ":" + std::to_string(number)});
            isOpen = true;
            do all.back().patterns.push_back(word);
            while (words >> word);
            continue;
        }
        isOpen = false;
        const auto status = statuses().find(word);
        if (status == statuses().end() || all.empty())
            throw std::runtime_error(path.string() + ":" + std::to_string(number) + ": " + word);
        Check check{status->second, word, {}, {}};
        while (words >> word) (word[0] == '!' ? check.written : check.faults).push_back(word);
        for (std::string& name : check.written) name.erase(0, 1);
        all.back().checks.push_back(check);
    }
}

std::vector<std::string> split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, separator);) parts.push_back(part);
    return parts;
}

/// The value of an expression for a call.
class Expression {
  public:
    Expression(const Call& call, const std::string& text) : call_(call), text_(text) {}
    double value() {
        const double result = sum();
        if (at_ != text_.size()) throw std::runtime_error("expression " + text_);
        return result;
    }

  private:
    bool takes(char c) {
        if (at_ >= text_.size() || text_[at_] != c) return false;
        ++at_;
        return true;
    }
    double sum() {
        double value = product();
        for (;;)
            if (takes('+'))
                value += product();
            else if (takes('-'))
                value -= product();
            else
                return value;
    }
    double product() {
        double value = factor();
        for (;;)
            if (takes('*'))
                value *= factor();
            else if (takes('/'))
                value = static_cast<double>(static_cast<long long>(value / factor()));
            else
                return value;
    }
    double factor() {
        if (takes('-')) return -factor();
        if (takes('(')) {
            const double value = sum();
            takes(')');
            return value;
        }
        const char* start = text_.c_str() + at_;
        if (std::isdigit(static_cast<unsigned char>(*start)) != 0) {
            char* end = nullptr;
            const double value = std::strtod(start, &end);
            at_ += end - start;
            return value;
        }
        std::string name;
        while (at_ < text_.size() &&
               (std::isalnum(static_cast<unsigned char>(text_[at_])) != 0 || text_[at_] == '.'))
            name += text_[at_++];
        return named(name);
    }
    double named(const std::string& name) {
        const std::size_t dot = name.find('.');
        const int index = call_.callee->indexOf(name.substr(0, dot));
        if (name == "channels") return channelsOf(call_.callee->name, "src");
        if (index < 0) {
            for (std::size_t i = 0; i < call_.arguments.size(); ++i)
                for (const Field& field : call_.callee->types[i].fields)
                    if (field.name == name) return call_.arguments[i].number(field);
            throw std::runtime_error("no " + name + " in " + call_.callee->name);
        }
        const Type& type = call_.callee->types[index];
        if (type.isPointer()) return *static_cast<const unsigned char*>(call_.arguments[index].pointer());
        for (const Field& field : type.fields)
            if (dot == std::string::npos || field.name == name.substr(dot + 1))
                return call_.arguments[index].number(field);
        throw std::runtime_error("no " + name + " in " + call_.callee->name);
    }

    const Call& call_;
    const std::string& text_;
    std::size_t at_ = 0;
};

double valueOf(const Call& call, const std::string& text) { return Expression(call, text).value(); }

/// The place before the `=` of a setting.
Setting settingOf(const Call& call, const std::string& place) {
    const Export& callee = *call.callee;
    const std::size_t end = place.find_first_of(".[@");
    Setting setting{place, callee.indexOf(place.substr(0, end)), {}, -1, 0, -1};
    if (setting.argument < 0) throw std::runtime_error(callee.name + " has no " + place);
    const Type& type = callee.types[setting.argument];
    setting.field = type.fields[0];
    if (end == std::string::npos) return setting;
    const std::size_t dot = place.find('.', end);
    const std::string fieldName = dot == std::string::npos ? "" : place.substr(dot + 1);
    const std::vector<Field>* fields = &type.fields;
    if (place[end] == '[') {
        const std::size_t close = place.find(']');
        setting.offset =
            static_cast<std::ptrdiff_t>(valueOf(call, place.substr(end + 1, close - end - 1)) * type.pointee);
        fields = &type.pointeeFields;
    } else if (place[end] == '@') {
        setting.offset = static_cast<std::ptrdiff_t>(valueOf(call, place.substr(end + 1)));
        setting.field = {"", Kind::signedInteger, 0, 4};
        return setting;
    }
    setting.field = fields->at(0);
    for (const Field& field : *fields)
        if (field.name == fieldName) setting.field = field;
    return setting;
}

Fault faultOf(Setting setting, const std::string& shown, double value) {
    setting.value = value;
    return {setting.place + "=" + shown, {setting}, ""};
}
std::string shownNumber(double value) {
    std::ostringstream text;
    text << value;
    return text.str();
}

std::string imageOf(const std::string& step) { return step.substr(0, step.size() - 4); }

std::size_t elementOf(const Call& call, const std::string& step) {
    return call.callee->types.at(call.callee->indexOf(imageOf(step))).pointee;
}

/// The bytes of a row of the image that a step belongs to.
double rowBytes(const Call& call, const std::string& step) {
    return valueOf(call, "width") * static_cast<double>(elementOf(call, step)) *
           channelsOf(call.callee->name, imageOf(step));
}

/// The name of the argument that holds the size of the region.
std::string sizeOf(const Call& call) {
    for (std::size_t i = 0; i < call.arguments.size(); ++i)
        if (call.callee->types[i].fields[0].name == std::string("width")) return call.callee->arguments[i];
    return "";
}

std::vector<Fault> usualFaults(const Call& call, const std::string& status, const std::string& token,
                               std::vector<Fault>& accepted) {
    std::vector<Fault> faults;
    const std::size_t below = token.find('<');
    const std::string name = token.substr(0, below);
    const Setting setting = settingOf(call, name);
    const Type& type = call.callee->types[setting.argument];
    const auto add = [&](const Setting& place, double value) {
        faults.push_back(faultOf(place, shownNumber(value), value));
    };
    if (status == "NullPointer") add(setting, 0);
    static const std::set<std::string> withUsual = {"NullPointer", "SizeError",          "SizeOverflow",
                                                    "StepError",   "StepAlignmentError", "Ok"};
    if (withUsual.count(status) == 0) throw std::runtime_error(status + " has no usual fault: " + token);
    if (status == "SizeError" || status == "SizeOverflow")
        for (const Field& field : type.fields) {
            if (*field.name == 'x' || *field.name == 'y') continue;
            Setting side = setting;
            side.field = field;
            side.place = *field.name == 0 ? name : name + "." + field.name;
            if (status == "SizeOverflow")
                add(side, 0x7FFFFFFF);
            else
                add(side, 0), add(side, -1);
        }
    if (status == "StepError") {
        const double element = static_cast<double>(elementOf(call, name));
        const double row = below != std::string::npos ? element * valueOf(call, token.substr(below + 1))
                                                      : rowBytes(call, name);
        add(setting, row - 1);
        if (element > 1) add(setting, row - element);
        add(setting, 0);
        add(setting, -row);
        accepted.push_back(faultOf(setting, shownNumber(row), row));
        // The negative step is below any row.
        for (Fault& fault : faults)
            if (fault.settings[0].value >= 0) fault.limit = sizeOf(call) + " " + token.substr(below + 1);
    }
    if (status == "StepAlignmentError") {
        const std::size_t element = elementOf(call, name);
        const double step = call.arguments[setting.argument].number(setting.field);
        for (std::size_t odd = 1; odd < element; odd *= 2) add(setting, step + static_cast<double>(odd));
    }
    return faults;
}

/// The value of a setting, in which `row` is the bytes of a row of a step's image.
double valueIn(const Call& call, const Setting& setting, const std::string& text) {
    if (text.compare(0, 3, "row") != 0) return valueOf(call, text);
    return rowBytes(call, setting.place) + valueOf(call, "0" + text.substr(3));
}

} // namespace

bool Contract::isOf(const std::string& name) const {
    return std::any_of(patterns.begin(), patterns.end(), [&](const std::string& pattern) {
        return fnmatch(pattern.c_str(), name.c_str(), 0) == 0;
    });
}

const std::vector<Contract>& contracts() {
    static const std::vector<Contract> all = [] {
        std::vector<std::filesystem::path> files;
        for (const auto& entry : std::filesystem::directory_iterator(LUMCV_CONTRACTS))
            if (entry.path().extension() == ".checks") files.push_back(entry.path());
        std::sort(files.begin(), files.end());
        std::vector<Contract> found;
        for (const auto& file : files) readFile(file, found);
        return found;
    }();
    return all;
}

const Contract* contractOf(const std::string& name) {
    for (const Contract& contract : contracts())
        if (contract.isOf(name)) return &contract;
    return nullptr;
}

std::vector<std::string> argumentsIn(const std::string& fault) {
    std::vector<std::string> names;
    for (const std::string& part : split(fault, '&'))
        names.push_back(part.substr(0, part.find_first_of("=<.[@?")));
    return names;
}

std::vector<Fault> faultsOf(const Call& call, const Check& check, const std::string& token,
                            std::vector<Fault>& accepted) {
    if (const std::size_t mark = token.find('?'); mark != std::string::npos) {
        if (call.callee->indexOf(token.substr(0, mark)) < 0) return {};
        return faultsOf(call, check, token.substr(0, mark) + token.substr(mark + 1), accepted);
    }
    if (token.find('=') == std::string::npos) return usualFaults(call, check.statusName, token, accepted);
    std::vector<Fault> faults = {{token, {}, ""}};
    for (const std::string& part : split(token, '&')) {
        const std::size_t equals = part.find('=');
        const Setting setting = settingOf(call, part.substr(0, equals));
        const bool isPointer = setting.field.kind == Kind::pointer;
        std::vector<Fault> grown;
        for (const std::string& value : split(part.substr(equals + 1), ','))
            for (Fault fault : faults) {
                Setting one = setting;
                if (isPointer && value != "0") {
                    one.pointerFrom = call.callee->indexOf(value);
                    if (one.pointerFrom < 0) throw std::runtime_error("pointer " + value);
                } else {
                    one.value = isPointer ? 0 : valueIn(call, setting, value);
                }
                fault.settings.push_back(one);
                fault.limit +=
                    setting.place.substr(std::min(setting.place.find_first_of("[@"), setting.place.size()));
                fault.text =
                    (fault.settings.size() == 1 ? "" : fault.text + "&") + setting.place + "=" + value;
                grown.push_back(fault);
            }
        faults = grown;
    }
    return faults;
}

} // namespace contract

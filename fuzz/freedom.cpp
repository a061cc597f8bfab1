#include "freedom.h"

#include <map>
#include <tuple>

#include "library/contract/checks.h"

namespace fuzz {
namespace {

using contract::Call;
using contract::Export;

/// Numbers and points by name; sizes, steps and pointers are told by their type or the end of their name.
const std::map<std::string, Freedom>& freedoms() {
    static const std::map<std::string, Freedom> all = [] {
        std::map<std::string, Freedom> found;
        for (const char* name : {"alpha",
                                 "anchor",
                                 "borderValue",
                                 "coi",
                                 "connectivity",
                                 "cx",
                                 "cy",
                                 "divisor",
                                 "duration",
                                 "dx",
                                 "dy",
                                 "filter",
                                 "fx",
                                 "fy",
                                 "highThreshold",
                                 "hint",
                                 "k",
                                 "k1",
                                 "k2",
                                 "learningRate",
                                 "lineGap",
                                 "lineLength",
                                 "lowThreshold",
                                 "maxDelta",
                                 "maxDifference",
                                 "maxLabel",
                                 "maxLevel",
                                 "maxSpeckleSize",
                                 "minDelta",
                                 "minLabel",
                                 "mode",
                                 "newVal",
                                 "norm",
                                 "p1",
                                 "p2",
                                 "point",
                                 "point1",
                                 "point2",
                                 "scale",
                                 "scaleFactor",
                                 "seed",
                                 "sigma",
                                 "sign",
                                 "speckleValue",
                                 "sqrValue",
                                 "srcRoiOffset",
                                 "threshold",
                                 "timestamp",
                                 "value"})
            found[name] = Freedom::any;
        for (const char* name :
             {"delta", "filterKind", "filterMask", "flags", "kernelKind", "mask", "method", "radius", "rate"})
            found[name] = Freedom::shared;
        for (const char* name :
             {"apertureSize", "arcLength", "avgWindow", "blockSize", "circleRadius", "derivativeOrder",
              "kernelSize", "maxMixtures", "orientationBins", "winSize"})
            found[name] = Freedom::sharedAtMost;
        for (const char* name : {"length", "maxCount", "maxLineCount", "maxPeakCount", "numPoints", "width"})
            found[name] = Freedom::atMost;
        // A search that never settles takes all of them, and the fuzzer would choose millions.
        found["maxIterations"] = Freedom::atMost;
        found["border"] = Freedom::border;
        found["rect"] = Freedom::region;
        return found;
    }();
    return all;
}

bool endsWith(const std::string& text, const std::string& end) {
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

} // namespace

bool tests(const Export& callee, LumStatus status, const std::string& argument) {
    static std::map<std::tuple<const Export*, LumStatus, std::string>, bool> known;
    const auto [place, isNew] = known.try_emplace({&callee, status, argument}, false);
    const contract::Contract* const contract = isNew ? contract::contractOf(callee.name) : nullptr;
    if (contract == nullptr) return place->second;
    for (const contract::Check& check : contract->checks)
        for (const std::string& fault : check.faults)
            for (const std::string& named : contract::argumentsIn(fault))
                if (check.status == status && named == argument) place->second = true;
    return place->second;
}

Freedom freedomOf(const Export& callee, std::size_t argument) {
    const contract::Type& type = callee.types[argument];
    const std::string& name = callee.arguments[argument];
    if (type.isPointer()) return Freedom::pointer;
    // Here it is how far from the edge the search begins.
    if (name == "border" && callee.indexOf("borderValue") < 0) return Freedom::any;
    // A number of cells, or a selector.
    if (name == "maskSize") return type.fields.size() == 2 ? Freedom::sharedAtMost : Freedom::shared;
    if (const auto found = freedoms().find(name); found != freedoms().end()) return found->second;
    if (type.fields[0].name == std::string("width")) return Freedom::region;
    return endsWith(name, "Step") && tests(callee, lumStatusStepError, name) ? Freedom::step : Freedom::kept;
}

bool isQuery(const Export& callee) {
    return callee.name.find("GetSize") != std::string::npos ||
           callee.name.find("GetBufferSize") != std::string::npos ||
           callee.name.find("GetSpecSize") != std::string::npos || endsWith(callee.name, "ROI") ||
           endsWith(callee.name, "ROI_L");
}

bool readsMemory(const Export& callee) {
    return callee.indexOf("length") >= 0 || callee.indexOf("maskStep") >= 0;
}

bool isScratch(const Export& callee, std::size_t argument) {
    const contract::Type& type = callee.types[argument];
    const std::string& name = callee.arguments[argument];
    return type.pointeeFields.empty() || type.pointeeFields[0].kind == contract::Kind::pointer ||
           name == "buffer" || name == "memory" || name == "stateBuffer" || name == "initBuffer";
}

std::size_t listLength(const Call& call, std::size_t argument) {
    const Export& callee = *call.callee;
    const std::string& name = callee.arguments[argument];
    const contract::Type& type = callee.types[argument];
    if (!type.isConstPointer || isScratch(callee, argument)) return 0;
    const auto number = [&](const char* other, int field) {
        const int index = callee.indexOf(other);
        return index < 0 ? 0.0 : call.arguments[index].number(callee.types[index].fields[field]);
    };
    const auto length = [](double value) { return value < 1 ? 0 : static_cast<std::size_t>(value); };
    const int kernelSize = callee.indexOf("kernelSize");
    const bool isFlat = kernelSize >= 0 && callee.types[kernelSize].fields.size() == 2;
    if (name == "kernel" && kernelSize >= 0 && !isFlat) return length(number("kernelSize", 0));
    if (name == "kernelX" && isFlat) return length(number("kernelSize", 0));
    if (name == "kernelY" && isFlat) return length(number("kernelSize", 1));
    if (name == "thresholds" || name == "val1" || name == "val2") return length(number("length", 0));
    const int maskSize = callee.indexOf("maskSize");
    if (name == "mask" && maskSize >= 0 && callee.types[maskSize].fields.size() == 2) {
        // As their reference says, some read a mask of even size as one of the next odd size.
        const bool isOdd = callee.name == "lumiMorphInit_L" || callee.name.rfind("lumiMorphAdvInit", 0) == 0;
        const std::size_t odd = isOdd ? 1 : 0;
        return (length(number("maskSize", 0)) | odd) * (length(number("maskSize", 1)) | odd);
    }
    if (name == "borderValue" || name == "newVal" || name == "minDelta" || name == "maxDelta")
        return contract::channelsOf(callee.name, "src");
    return 0;
}

} // namespace fuzz

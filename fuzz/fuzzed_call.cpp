#include "fuzzed_call.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "digest/digest.h"
#include "freedom.h"

namespace fuzz {
namespace {

using contract::Argument;
using contract::Call;
using contract::Field;
using contract::Kind;

constexpr double infinity = std::numeric_limits<double>::infinity();

void setInteger(unsigned char* place, std::size_t bytes, std::int64_t value) {
    std::memcpy(place, &value, bytes);
}
void setReal(unsigned char* place, std::size_t bytes, double value) {
    const auto single = static_cast<float>(value);
    if (bytes == 4)
        std::memcpy(place, &single, 4);
    else
        std::memcpy(place, &value, 8);
}

/// Far enough from the ends of the type to be negated or to have a little added.
std::int64_t integerNear(double value) {
    return static_cast<std::int64_t>(std::clamp(value, -0x1p62, 0x1p62));
}

double anyReal(Choices& choices, double old) {
    const std::initializer_list<double> values = {0,        -0.0,    1,         -1,          0.5,   -0.5,
                                                  1e-40,    -1e-300, 1e30,      -1e30,       1e300, 255.5,
                                                  infinity, 65536,   -infinity, 2147483648.0};
    switch (choices.below(5)) {
    case 0:
        return choices.among(values);
    case 1:
        return std::nan("");
    case 2:
        return old * choices.among({0.25, 0.9, 1.1, 4.0, -1.0, 1000.0});
    case 3:
        return static_cast<double>(static_cast<std::int8_t>(choices.byte())) / 8;
    default: {
        float value = 0;
        const auto bits = static_cast<std::uint32_t>(choices.bytes(4));
        std::memcpy(&value, &bits, 4);
        return value;
    }
    }
}

std::int64_t anyInteger(Choices& choices, std::size_t bytes, double old) {
    const std::int64_t most = bytes == 8 ? INT64_MAX : (std::int64_t{1} << (8 * bytes - 1)) - 1;
    switch (choices.below(6)) {
    case 0:
        return choices.among({std::int64_t{0}, std::int64_t{1}, std::int64_t{-1}, most, -most - 1, most - 1});
    case 1:
        return integerNear(old) + choices.among({1, -1, 2, -2, 16});
    case 2:
        return static_cast<std::int64_t>(choices.below(16));
    case 3:
        return static_cast<std::int8_t>(choices.byte());
    case 4:
        return std::int64_t{1} << choices.below(63);
    default:
        return static_cast<std::int64_t>(choices.bytes(static_cast<int>(bytes)));
    }
}

void setAny(Argument& argument, const Field& field, Choices& choices) {
    const double old = argument.number(field);
    if (field.kind == Kind::real)
        setReal(argument.bytes + field.offset, field.bytes, anyReal(choices, old));
    else
        setInteger(argument.bytes + field.offset, field.bytes, anyInteger(choices, field.bytes, old));
}

/// 0, negative or less than it is.
void setAtMost(Argument& argument, const Field& field, Choices& choices) {
    const std::int64_t old = integerNear(argument.number(field));
    const std::int64_t least = field.bytes == 8 ? INT64_MIN : -(std::int64_t{1} << (8 * field.bytes - 1));
    std::int64_t value = 0;
    switch (choices.below(4)) {
    case 0:
        value = choices.among({std::int64_t{0}, std::int64_t{-1}, least, -old});
        break;
    case 1:
        value = old - 1 - static_cast<std::int64_t>(choices.below(8));
        break;
    default:
        value = old < 1 ? old : 1 + static_cast<std::int64_t>(choices.below(65536)) % old;
    }
    if (value < old) setInteger(argument.bytes + field.offset, field.bytes, std::max(value, least));
}

/// A step that no image can have; one a little smaller than it is may be legal, and would show what lies between rows.
std::int64_t illegalStep(const Call& call, std::size_t argument, Choices& choices) {
    const std::string& name = call.callee->arguments[argument];
    const contract::Type& type = call.callee->types[argument];
    const int image = call.callee->indexOf(name.substr(0, name.size() - 4));
    const bool isAligned = tests(*call.callee, lumStatusStepAlignmentError, name) && image >= 0 &&
                           call.callee->types[image].pointee > 1;
    // An earlier change may have made it negative.
    const std::int64_t old = integerNear(std::abs(call.arguments[argument].number(type.fields[0])));
    const std::int64_t least = type.fields[0].bytes == 8 ? INT64_MIN : INT32_MIN;
    const std::int64_t odd = old % 2 == 0 ? old - 1 : old;
    return choices.among({std::int64_t{0}, std::int64_t{-1}, least, -old, isAligned ? odd : -old});
}

/// Another selector, or a scale of the same order.
void setNear(Argument& argument, const Field& field, Choices& choices) {
    if (field.kind == Kind::real)
        setReal(argument.bytes + field.offset, field.bytes,
                argument.number(field) * choices.among({0.5, 0.7, 1.3, 2.0, 3.0, 0.0, -1.0}));
    else
        setInteger(argument.bytes + field.offset, field.bytes,
                   choices.among({1, 3, 5, 7, 9, 33, 55, 2, 4, 6, 8, 0, -1}));
}

/// Blocks of garbage, of numbers of one size, of extremes, of a few values.
void fillBytes(unsigned char* place, std::size_t bytes, std::size_t element, unsigned style,
               digest::Numbers& numbers) {
    constexpr std::uint64_t extremes[] = {
        0,          ~std::uint64_t{0}, 0x7FC00000, 0x7F800000, 0xFF800000, 1, 0x7FF0000000000000,
        0x80000000, 0x7FFFFFFF,        0x3F800000, 0x437F0000, 0x7FFF};
    const auto constant = numbers.next();
    for (std::size_t at = 0; at < bytes; at += element) {
        std::uint64_t value = numbers.next();
        value |= std::uint64_t{numbers.next()} << 32;
        switch (style % 4) {
        case 1:
            value = extremes[value % std::size(extremes)];
            break;
        case 2:
            value %= 3;
            break;
        case 3:
            value = constant;
            break;
        default:
            break;
        }
        std::memcpy(place + at, &value, std::min(element, bytes - at));
    }
}

digest::Block* regionAt(const void* place) {
    for (digest::Block* block : digest::Block::living())
        if (block->contains(place) && block->region().rows > 0) return block;
    return nullptr;
}

std::size_t argumentOf(const Call& call, Choices& choices) { return choices.below(call.arguments.size()); }

void setBorder(const Call& call, Argument& argument, const Field& field, Choices& choices) {
    const int src = call.callee->indexOf("src");
    const digest::Block* block = src < 0 ? nullptr : regionAt(call.arguments[src].pointer());
    // Without pixels around the region none may be announced.
    const bool hasMargin = block != nullptr && block->region().first > 0;
    const auto kind = static_cast<std::int64_t>(choices.below(8));
    const auto sides = static_cast<std::int64_t>(choices.byte());
    setInteger(argument.bytes + field.offset, field.bytes, hasMargin ? kind | sides << 4 : kind);
}

} // namespace

bool Sequence::share(Call& call) {
    bool isChanged = false;
    for (std::size_t i = 0; i < call.arguments.size(); ++i) {
        const Freedom freedom = freedomOf(*call.callee, i);
        if (freedom != Freedom::shared && freedom != Freedom::sharedAtMost) continue;
        Argument& argument = call.arguments[i];
        const auto& fields = call.callee->types[i].fields;
        // Sizes of both widths are one where their numbers are.
        std::vector<double> numbers;
        for (const Field& field : fields) numbers.push_back(argument.number(field));
        const auto [place, isNew] = shared_.try_emplace({call.callee->arguments[i], numbers}, numbers);
        if (isNew && choices_.below(4) == 1) {
            Argument other = argument;
            for (std::size_t f = 0; f < fields.size(); ++f) {
                if (freedom == Freedom::sharedAtMost)
                    setAtMost(other, fields[f], choices_);
                else
                    setNear(other, fields[f], choices_);
                place->second[f] = other.number(fields[f]);
            }
        }
        if (place->second == numbers) continue;
        isChanged = true;
        for (std::size_t f = 0; f < fields.size(); ++f) argument.set(fields[f], place->second[f]);
    }
    return isChanged;
}

void Sequence::replaceLists(Call& call) {
    for (std::size_t i = 0; i < call.arguments.size(); ++i) {
        if (!call.callee->types[i].isPointer() || call.arguments[i].pointer() == nullptr) continue;
        const std::size_t length = listLength(call, i);
        if (length == 0) continue;
        const std::size_t element = call.callee->types[i].pointee;
        lists_.push_back(std::make_unique<digest::Block>(length * element, 0));
        digest::Numbers numbers(choices_.byte());
        fillBytes(lists_.back()->data(), length * element, element, choices_.byte(), numbers);
        call.arguments[i] = Argument::of(lists_.back()->data());
    }
}

bool changeFreely(Call& call, Choices& choices) {
    const std::size_t i = argumentOf(call, choices);
    const Freedom freedom = freedomOf(*call.callee, i);
    const auto& fields = call.callee->types[i].fields;
    const Field& field = fields[choices.below(fields.size())];
    if (freedom == Freedom::border)
        setBorder(call, call.arguments[i], field, choices);
    else if (freedom == Freedom::any)
        setAny(call.arguments[i], field, choices);
    else
        return false;
    return true;
}

void changeAny(Call& call, Choices& choices) {
    if (call.arguments.empty()) return;
    const std::size_t i = argumentOf(call, choices);
    Argument& argument = call.arguments[i];
    const auto& fields = call.callee->types[i].fields;
    const Field& field = fields[choices.below(fields.size())];
    // Where a rectangle lies is a matter of the pictures.
    if (fields.size() == 4 && field.offset < fields[2].offset) return;
    Freedom freedom = freedomOf(*call.callee, i);
    if (freedom != Freedom::pointer && isQuery(*call.callee) && !readsMemory(*call.callee))
        freedom = Freedom::any;
    switch (freedom) {
    case Freedom::pointer:
        argument = Argument::of<void*>(nullptr);
        break;
    case Freedom::any:
        setAny(argument, field, choices);
        break;
    case Freedom::border:
        setBorder(call, argument, field, choices);
        break;
    case Freedom::step:
        setInteger(argument.bytes + field.offset, field.bytes, illegalStep(call, i, choices));
        break;
    case Freedom::atMost:
    case Freedom::region:
        setAtMost(argument, field, choices);
        break;
    case Freedom::shared:
    case Freedom::sharedAtMost:
        if (field.kind == Kind::real)
            setReal(argument.bytes + field.offset, field.bytes, choices.among({0.0, -1.0, std::nan("")}));
        else
            setInteger(argument.bytes + field.offset, field.bytes, choices.among({0, -1, INT32_MIN}));
        break;
    case Freedom::kept:
        break;
    }
}

void replaceContents(const Call& call, Choices& choices) {
    digest::Numbers numbers(choices.byte());
    const unsigned style = choices.byte();
    for (std::size_t i = 0; i < call.arguments.size(); ++i) {
        const contract::Type& type = call.callee->types[i];
        const std::string& name = call.callee->arguments[i];
        // The size of its state follows from the mask.
        if (call.callee->name.rfind("lumiInpaintInit", 0) == 0) continue;
        const bool isRead = type.isConstPointer || name == "srcDst" || name == "markers" || name == "mhi";
        if (!type.isPointer() || !isRead || call.callee->indexOf(name + "Step") < 0) continue;
        digest::Block* block = regionAt(call.arguments[i].pointer());
        if (block == nullptr) continue;
        const auto& region = block->region();
        for (int y = 0; y < region.rows; ++y)
            fillBytes(block->data() + region.first + y * region.step, region.rowBytes, type.pointee,
                      style >> (i % 4), numbers);
    }
}

} // namespace fuzz

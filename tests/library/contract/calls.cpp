#include "library/contract/calls.h"

#include <cstdlib>
#include <dlfcn.h>
#include <type_traits>
#include <utility>

#include "entry/entry_table.h"
#include "library/contract/prototypes.h"

namespace contract {
namespace {

Observer observer = nullptr;

constexpr const char* exportedNames[] = {
#define LUM_EXPORT(ordinal, name, ...) #name,
#include "entry/exports.inc"
#undef LUM_EXPORT
};

/// The functions of the shared object that the loader finds, in ordinal order.
void (*functionOf(int ordinal))() {
    static const auto functions = [] {
        void* library = dlopen(LUMCV_LIBRARY, RTLD_NOW | RTLD_LOCAL);
        if (library == nullptr) std::abort();
        std::vector<void (*)()> all;
        for (const char* name : exportedNames)
            all.push_back(reinterpret_cast<void (*)()>(dlsym(library, name)));
        return all;
    }();
    return functions[ordinal - 1];
}

template <class T> constexpr std::size_t sizeOrZero() {
    if constexpr (requires { sizeof(T); } && !std::is_void_v<T>)
        return sizeof(T);
    else
        return 0;
}

template <class T> constexpr Kind kindOf() {
    return std::is_floating_point_v<T> ? Kind::real
           : std::is_signed_v<T>       ? Kind::signedInteger
                                       : Kind::unsignedInteger;
}
template <class Number> Field field(const char* name, int place) {
    return {name, kindOf<Number>(), place * sizeof(Number), sizeof(Number)};
}

template <class T> std::vector<Field> fieldsOf() {
    if constexpr (std::is_pointer_v<T>) {
        return {{"", Kind::pointer, 0, sizeof(T)}};
    } else if constexpr (std::is_same_v<T, LumSize> || std::is_same_v<T, LumSizeL>) {
        using Number = decltype(T::width);
        return {field<Number>("width", 0), field<Number>("height", 1)};
    } else if constexpr (std::is_same_v<T, LumPoint> || std::is_same_v<T, LumPoint32f>) {
        using Number = decltype(T::x);
        return {field<Number>("x", 0), field<Number>("y", 1)};
    } else if constexpr (std::is_same_v<T, LumRect>) {
        return {field<Lum32s>("x", 0), field<Lum32s>("y", 1), field<Lum32s>("width", 2),
                field<Lum32s>("height", 3)};
    } else if constexpr (std::is_arithmetic_v<T>) {
        return {field<T>("", 0)};
    } else {
        return {};
    }
}

template <class T> Type typeOf() {
    Type type;
    type.fields = fieldsOf<T>();
    if constexpr (std::is_pointer_v<T>) {
        using Pointee = std::remove_pointer_t<T>;
        type.isConstPointer = std::is_const_v<Pointee>;
        type.pointee = sizeOrZero<Pointee>();
        type.pointeeFields = fieldsOf<std::remove_cv_t<Pointee>>();
    }
    return type;
}

template <class Function> struct Signature;
template <class... A> struct Signature<LumStatus (*)(A...)> {
    static LumStatus invoke(void (*function)(), const Argument* arguments) {
        return [&]<std::size_t... i>(std::index_sequence<i...>) {
            return reinterpret_cast<LumStatus (*)(A...)>(function)(arguments[i].template as<A>()...);
        }
        (std::index_sequence_for<A...>{});
    }
    static std::vector<Type> types() { return {typeOf<A>()...}; }
};
template <> struct Signature<const LumLibraryVersion* (*)()> {
    static std::vector<Type> types() { return {}; }
};

template <int ordinal, class Function> struct Shown;
template <int ordinal, class... A> struct Shown<ordinal, LumStatus (*)(A...)> {
    static LumStatus call(A... values) {
        const Call call{&exports()[ordinal - 1],
                        {Argument::of(values)...},
                        Signature<LumStatus (*)(A...)>::invoke,
                        functionOf(ordinal)};
        return observer == nullptr ? call() : observer(call);
    }
};
template <int ordinal> struct Shown<ordinal, const LumLibraryVersion* (*)()> {
    static const LumLibraryVersion* call() {
        return reinterpret_cast<const LumLibraryVersion* (*)()>(functionOf(ordinal))();
    }
};

} // namespace

double Argument::number(const Field& field) const {
    const unsigned char* place = bytes + field.offset;
    const auto read = [&]<class T>(T value) {
        std::memcpy(&value, place, sizeof value);
        return static_cast<double>(value);
    };
    if (field.kind == Kind::real) return field.bytes == 4 ? read(float{}) : read(double{});
    if (field.kind == Kind::signedInteger) switch (field.bytes) {
        case 1:
            return read(std::int8_t{});
        case 2:
            return read(std::int16_t{});
        case 4:
            return read(std::int32_t{});
        default:
            return read(std::int64_t{});
        }
    switch (field.bytes) {
    case 1:
        return read(std::uint8_t{});
    case 2:
        return read(std::uint16_t{});
    default:
        return read(std::uint32_t{});
    }
}

void Argument::set(const Field& field, double value) {
    unsigned char* place = bytes + field.offset;
    if (field.kind == Kind::real) {
        const float single = static_cast<float>(value);
        if (field.bytes == 4)
            std::memcpy(place, &single, 4);
        else
            std::memcpy(place, &value, 8);
        return;
    }
    const auto whole = static_cast<std::int64_t>(value);
    std::memcpy(place, &whole, field.bytes);
}

int Export::indexOf(const std::string& argument) const {
    for (std::size_t i = 0; i < arguments.size(); ++i)
        if (arguments[i] == argument) return static_cast<int>(i);
    return -1;
}

const std::vector<Export>& exports() {
    static const std::vector<Export> all = [] {
        std::vector<Export> found;
#define LUM_EXPORT(ordinal, name, ...)                                                                       \
    found.push_back({#name, Signature<decltype(&::name)>::types(), argumentNames(#name)});
#include "entry/exports.inc"
#undef LUM_EXPORT
        return found;
    }();
    return all;
}

void observe(Observer newObserver) { observer = newObserver; }

} // namespace contract

/// What the stubs of this program jump through.
constinit const lum::EntryTable lumEntryTable = {
#define LUM_EXPORT(ordinal, name, ...) .name = &contract::Shown<ordinal, decltype(&::name)>::call,
#include "entry/exports.inc"
#undef LUM_EXPORT
};

// Calls of exports as values: their arguments can be looked at, changed and given to the export again. In a program that
// links `calls.cpp`, the exported names are those of this file's stubs, which show each call to the observer.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "lumcv.h"

namespace contract {

/// What a number in an argument is.
enum class Kind { pointer, signedInteger, unsignedInteger, real };

/// A number in an argument: the argument itself, or a field of a record that is passed by value.
struct Field {
    const char* name;
    Kind kind;
    std::size_t offset;
    std::size_t bytes;
};

struct Type {
    std::vector<Field> fields;
    bool isConstPointer = false;
    /// The bytes of what it points to, 0 where that is opaque; its numbers, where it is a number or a record of them.
    std::size_t pointee = 0;
    std::vector<Field> pointeeFields;

    bool isPointer() const { return fields[0].kind == Kind::pointer; }
};

/// One argument: its bytes.
struct Argument {
    alignas(8) unsigned char bytes[16];

    template <class T> static Argument of(const T& value) {
        static_assert(sizeof(T) <= 16);
        Argument argument{};
        std::memcpy(argument.bytes, &value, sizeof value);
        return argument;
    }
    template <class T> T as() const {
        T value;
        std::memcpy(&value, bytes, sizeof value);
        return value;
    }
    double number(const Field& field) const;
    void set(const Field& field, double value);
    void* pointer() const { return as<void*>(); }
};

/// An export: its name, the names and types of its arguments.
struct Export {
    std::string name;
    std::vector<Type> types;
    std::vector<std::string> arguments;

    int indexOf(const std::string& argument) const;
};

/// Every export that returns a status, in the order of ordinals.
const std::vector<Export>& exports();

struct Call {
    const Export* callee;
    std::vector<Argument> arguments;
    LumStatus (*invoke)(void (*function)(), const Argument* arguments);
    void (*function)();

    LumStatus operator()() const { return invoke(function, arguments.data()); }
};

/// Sees each call that rows make and carries it out; null is to carry it out only.
using Observer = LumStatus (*)(const Call&);
void observe(Observer observer);

} // namespace contract

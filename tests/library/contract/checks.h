// The table of argument checks: the tests of each export's arguments in their order, read from the `.checks` files.
//
//     lumiAbsDiff_* lumiAbsDiffC_*                  the exports of these lines, as shell patterns
//         NullPointer         src1 src2 dst         a status, and the faults that it answers
//         SizeError           roiSize
//         StepError           src1Step src2Step<width+1
//         BadArgument         norm=-1,2 low=9&high=8
//         Ok                  value minVal=0        arguments that are not tested, and values that are accepted
//
// The lines of an export are in the order of its tests: a call with faults of two lines gives the status of the first.
// The faults of one line have no order among each other, as all give the same status.
//
// A fault sets arguments: `name=value,value` is one fault a value, `a=1&b=2` sets both. A place may be `size.width`, an
// element `rows[0]` of what an argument points to, or `spec@8`, the 32-bit word at byte 8. Values are numbers, arguments
// (`dst=src`; a pointer in arithmetic is the first byte that it points to), `width` and `height` of the region, `row`
// for the bytes of a row of a step's image, its `channels`, and sums and products of them. A name alone is the usual
// fault of its status:
//
//     NullPointer         the pointer is null
//     SizeError           a side, or the number, is 0 and -1
//     StepError           a step is one byte and one element below the bytes of a row, 0 and negative; `<` says how many
//                         elements a row has where it is not width times channels. A step of exactly a row is accepted.
//     StepAlignmentError  a step that is not a multiple of the element, for elements of more than one byte
//     SizeOverflow        a side, or the number, is 0x7FFFFFFF
//
// `coi?` is a fault only of exports that have the argument. A refused call changes nothing in memory, but for what
// `!name` on its line names.
#pragma once

#include <string>
#include <vector>

#include "library/contract/calls.h"

namespace contract {

/// A line: its status, its faults as they are written, and what its refused calls write.
struct Check {
    LumStatus status;
    std::string statusName;
    std::vector<std::string> faults;
    std::vector<std::string> written;
};

struct Contract {
    std::vector<std::string> patterns;
    std::vector<Check> checks;
    std::string place;

    bool isOf(const std::string& name) const;
};

/// All contracts, in the order of the files' names.
const std::vector<Contract>& contracts();

/// The contract of an export, or null.
const Contract* contractOf(const std::string& name);

/// The channels of an image argument, which the name of the export tells.
int channelsOf(const std::string& name, const std::string& image);

/// The arguments that a token sets or names.
std::vector<std::string> argumentsIn(const std::string& fault);

/// One argument, or what it points to, set to a value.
struct Setting {
    std::string place;
    int argument;
    /// The field of the argument that is set; of what it points to where `offset` is not below 0.
    Field field;
    std::ptrdiff_t offset;
    double value;
    /// The argument whose pointer is taken instead of the value, or below 0.
    int pointerFrom;
};

struct Fault {
    std::string text;
    std::vector<Setting> settings;
    /// What the fault is worked out from: it may be none once the arguments named here are others.
    std::string limit;
};

/// The faults that a token means for this call; `accepted` takes those at the edge that are none.
std::vector<Fault> faultsOf(const Call& call, const Check& check, const std::string& token,
                            std::vector<Fault>& accepted);

} // namespace contract

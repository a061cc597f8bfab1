#!/usr/bin/env bash
# cppcheck.sh CPPCHECK SOURCE WORK: reads the library, the program and the fuzzers with cppcheck; fails with any finding. WORK is a folder
# that is made anew.
set -euo pipefail
cppcheck=$1
source=$2
work=$3
rm -rf "$work"
mkdir -p "$work"
cp -r "$source"/{src,tools,fuzz,include} "$work"
cd "$work"

# cppcheck 2.10 does not know three forms of C++20, at which it stops reading a file: template parameters of a lambda, a lambda without
# parentheses, and __VA_OPT__. It reads a copy without them, line by line the same; templates stay templates.
find . \( -name '*.h' -o -name '*.cpp' \) -exec sed -E -i 's/(\[[^][]*\])<[^()]*>\(/\1(/; s/= \[\] \{$/= []() {/' {} +
sed -E -i 's/^(#define LUM_(STRUCT_)?INSTANCES\(name, \.\.\.\)).*/\1 static_assert(true)/; /^    LUM_EXPAND\(LUM_EACH/s/.*//; s/__VA_OPT__\(.*//' \
    src/frame/instances.h

# With the headers of vectors it takes fifty times as long, and misreads their templates; it reads the kernels without them.
for header in src/frame/lanes*.h src/frame/convert_lanes.h; do echo '#pragma once' >"$header"; done
printf '#define LUM_LANE inline\n#define LUM_INLINED\n' >>src/frame/lanes.h

# The files that the build makes.
echo '""' >tools/bright_disc.inc
echo 'inline constexpr char buildRevision[] = "", buildDate[] = "";' >tools/build_stamp.inc

# Not of use here:
#   useStlAlgorithm         the library takes nothing from <algorithm> where a loop says it
#   noExplicitConstructor   Outcome and its like are made from a value on purpose
#   shadowFunction          a local is named after what it holds, and so is the function that makes it
#   unusedStructMember      does not see members that aggregate initialisation fills and templates read
#   knownConditionTrueFalse is right of one build: vectors of 16 bytes, libraries that are there
#   shadowVariable          takes a local of a lambda without its template parameters for two
#   uninitMemberVar, uninitMemberVarPrivate, invalidPointerCast
#                           work memory is placed and filled after the constructor, and is of bytes; the tests fill it with garbage
#   useInitializationList   an array of numbers is as well filled in the body
#   unusedScopedObject      an object placed in an arena that only measures is not used itself
#   unreadVariable, unassignedVariable, redundantInitialization, redundantAssignment, constStatement
#                           wrong where templates, references or conditional expressions are involved; the compiler's own warnings of
#                           the same are errors in the build
#   redundantContinue       `while (pass()) continue;` says that there is nothing else to do
#   passedByValue           the view of a mask is a pointer and a few numbers
#   CastIntegerToAddressAtReturn, assignBoolToPointer, assignBoolToFloat
#                           without the vectors, it takes the arguments of a template for comparisons
# For the same reason it does not read one line of extreme.cpp, and does not see that `if constexpr` sets a variable of rect_std_dev.cpp.
suppressed=(useStlAlgorithm noExplicitConstructor shadowFunction shadowVariable unusedStructMember knownConditionTrueFalse uninitMemberVar
    uninitMemberVarPrivate invalidPointerCast useInitializationList unusedScopedObject unreadVariable unassignedVariable
    redundantInitialization redundantAssignment constStatement redundantContinue passedByValue
    CastIntegerToAddressAtReturn assignBoolToPointer assignBoolToFloat internalAstError:src/kernels/stats/extreme.cpp
    uninitvar:src/kernels/integral/rect_std_dev.cpp)
"$cppcheck" --quiet --error-exitcode=1 -j2 --std=c++20 --language=c++ -Isrc -Itools -Iinclude -D__x86_64__ -D__SSE2__ -D__SSSE3__ \
    --enable=warning,performance,portability,style --inline-suppr "${suppressed[@]/#/--suppress=}" \
    "--template={file}:{line}:{column}: {message} [{id}]" src tools fuzz

// The instances of a template as one list, which shows at a glance the types that exist:
//
//     LUM_INSTANCES(floodFill, (4, Lum8u), (4, Lum16u), (8, Lum8u), (8, Lum16u));
//
// is `template decltype(floodFill<4, Lum8u>) floodFill<4, Lum8u>;` and so on, and LUM_STRUCT_INSTANCES does the same for
// struct templates.
#pragma once

#define LUM_INSTANCES(name, ...) LUM_EXPAND(LUM_EACH(LUM_INSTANCE, name, __VA_ARGS__)) static_assert(true)
#define LUM_STRUCT_INSTANCES(name, ...)                                                                      \
    LUM_EXPAND(LUM_EACH(LUM_STRUCT_INSTANCE, name, __VA_ARGS__)) static_assert(true)

#define LUM_UNPACK(...) __VA_ARGS__
#define LUM_INSTANCE(name, arguments)                                                                        \
    template decltype(name<LUM_UNPACK arguments>) name<LUM_UNPACK arguments>;
#define LUM_STRUCT_INSTANCE(name, arguments) template struct name<LUM_UNPACK arguments>;

// A macro does not expand inside itself: LUM_EACH names itself only indirectly, and each scan of LUM_EXPAND takes it one
// element further, 85 in all.
#define LUM_EACH(macro, name, first, ...)                                                                    \
    macro(name, first) __VA_OPT__(LUM_EACH_AGAIN LUM_PARENTHESES(macro, name, __VA_ARGS__))
#define LUM_EACH_AGAIN() LUM_EACH
#define LUM_PARENTHESES ()
#define LUM_EXPAND(...) LUM_EXPAND3(LUM_EXPAND3(LUM_EXPAND3(LUM_EXPAND3(__VA_ARGS__))))
#define LUM_EXPAND3(...) LUM_EXPAND2(LUM_EXPAND2(LUM_EXPAND2(LUM_EXPAND2(__VA_ARGS__))))
#define LUM_EXPAND2(...) LUM_EXPAND1(LUM_EXPAND1(LUM_EXPAND1(LUM_EXPAND1(__VA_ARGS__))))
#define LUM_EXPAND1(...) __VA_ARGS__

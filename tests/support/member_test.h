// Tests of each member of a family. They run and are named like those of TYPED_TEST, but a member costs the compiler one
// function and one row of a table, where TYPED_TEST makes a class, a factory and a registration of it.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <cxxabi.h>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <typeinfo>

namespace support {

/// The body of a test for one member.
struct MemberTest {
    void (*body)();
    const std::type_info* member;
};

/// Calls the body.
class MemberTestRun : public testing::Test {
  public:
    explicit MemberTestRun(void (*body)()) : body_(body) {}

  private:
    void TestBody() override { body_(); }

    void (*body_)();
};

/// Makes the tests `suite`/0.`name`, `suite`/1.`name` and so on known to GoogleTest.
inline bool registerMemberTests(const char* suite, const char* name, const char* file, int line,
                                const MemberTest* tests, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        const std::unique_ptr<char, void (*)(void*)> member(
            abi::__cxa_demangle(tests[i].member->name(), nullptr, nullptr, nullptr), std::free);
        testing::RegisterTest((std::string(suite) + "/" + std::to_string(i)).c_str(), name, member.get(),
                              nullptr, file, line,
                              [body = tests[i].body]() -> testing::Test* { return new MemberTestRun(body); });
    }
    return true;
}

template <template <class> class Body, class... Members>
bool registerMemberTests(testing::Types<Members...>, const char* suite, const char* name, const char* file,
                         int line) {
    static constexpr MemberTest tests[] = {{Body<Members>::TestBody, &typeid(Members)}...};
    return registerMemberTests(suite, name, file, line, tests, sizeof...(Members));
}

} // namespace support

/// The members that tests of this suite run for: a testing::Types<...>.
#define MEMBER_TEST_SUITE(suite, members) using suite##_Members = members

/// A test of the suite; its body is compiled and run for each member, which it sees as TypeParam.
#define MEMBER_TEST(suite, name)                                                                             \
    template <class TypeParam> struct suite##_##name##_Body { static void TestBody(); };                     \
    [[maybe_unused]] static const bool suite##_##name##_registered =                                         \
        support::registerMemberTests<suite##_##name##_Body>(suite##_Members{}, #suite, #name, __FILE__,      \
                                                            __LINE__);                                       \
    template <class TypeParam> void suite##_##name##_Body<TypeParam>::TestBody()

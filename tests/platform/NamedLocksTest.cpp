#include <corvale/platform/NamedLocks.hpp>

#include "tests/support/TestFiles.hpp"

#include <gtest/gtest.h>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace corvale::NamedLocks {
namespace {

using namespace std::literals;

TEST(NamedLocks, NamesAreComparedByteForByte) {
    const std::string copy(ErrorMessageLock);
    EXPECT_EQ(&NamedLock(copy), &NamedLock(ErrorMessageLock)) << "the characters count";

    std::set<std::mutex*> locks;
    const std::string_view names[] = {ErrorMessageLock, InfoMessageLock, "",        " ", "cs_",
                                      "cs_ ",           "CS_",           "cs_\0x"sv};
    for (const std::string_view name : names) locks.insert(&NamedLock(name));
    EXPECT_EQ(locks.size(), std::size(names));
}

TEST(NamedLocks, ThreadsThatAskFirstGetOneLockForEachName) {
    constexpr int names = 200;
    std::vector<std::vector<std::mutex*>> found(16);
    std::vector<std::thread> threads;
    int counter = 0;  // guarded by the lock of this name
    for (auto& mine : found)
        threads.emplace_back([&] {
            for (int i = 0; i < names; ++i)
                mine.push_back(&NamedLock("first " + std::to_string(i)));
            for (int i = 0; i < 1000; ++i) {
                const std::scoped_lock guard(NamedLock("counter"));
                ++counter;
            }
        });
    for (std::thread& thread : threads) thread.join();
    for (const auto& mine : found) EXPECT_EQ(mine, found.front());
    EXPECT_EQ(std::set(found.front().begin(), found.front().end()).size(), std::size_t{names});
    EXPECT_EQ(counter, 16000);
}

TEST(NamedLocks, AChildFindsEveryLockFree) {
    std::mutex& known = NamedLock("held over a fork");
    pid_t child = 0;
    {
        const std::scoped_lock guard(known, NamedLock(ErrorMessageLock));
        std::thread([&] {  // the thread that forks is not the one that holds
            child = test::StartChild([&] {
                const std::scoped_lock all(known, NamedLock(ErrorMessageLock));
                return NamedLock("first asked for in the child").try_lock();
            });
        })
            .join();
    }
    EXPECT_EQ(test::WaitFor(child), 0);
}

}  // namespace
}  // namespace corvale::NamedLocks

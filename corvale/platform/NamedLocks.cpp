// A list of locks that only ever grows at its front. It is searched without a lock: an entry is
// whole before the one store that makes it the first, and none is taken out. The two locks of
// messages are in it from the beginning, without an allocation.
#include <corvale/platform/NamedLocks.hpp>

#include <corvale/platform/ForkSafety.hpp>
#include <corvale/platform/MessageLocks.hpp>
#include <corvale/platform/StaticLock.hpp>

#include <atomic>
#include <cstring>
#include <new>

namespace corvale::NamedLocks {

namespace {

// A lock and its name. Locks live as long as the process: none is ever taken out of the list.
struct Entry {
    std::string_view name;
    Entry* next = nullptr;
    std::mutex lock = {};
};

CORVALE_STATIC_LOCK Entry infoMessage{InfoMessageLock};
CORVALE_STATIC_LOCK Entry errorMessage{ErrorMessageLock, &infoMessage};
constinit std::atomic<Entry*> firstEntry{&errorMessage};
CORVALE_STATIC_LOCK std::mutex insertion;
CORVALE_STATIC_LOCK std::mutex sharedForLackOfMemory;

Entry* Find(std::string_view name) noexcept {
    Entry* entry = firstEntry.load(std::memory_order_acquire);
    while (entry != nullptr && entry->name != name) entry = entry->next;
    return entry;
}

// One block: the entry, then the characters of its name.
Entry* MakeEntry(std::string_view name) noexcept {
    void* block = ::operator new(sizeof(Entry) + name.size(), std::nothrow);
    if (block == nullptr) return nullptr;
    char* characters = static_cast<char*>(block) + sizeof(Entry);
    if (!name.empty()) std::memcpy(characters, name.data(), name.size());
    return new (block) Entry{{characters, name.size()}, firstEntry.load(std::memory_order_relaxed)};
}

}  // namespace

std::mutex& NamedLock(std::string_view name) noexcept {
    internal::KeepUsableAfterFork();
    if (Entry* entry = Find(name)) return entry->lock;

    const std::scoped_lock guard(insertion);
    // Another thread may have made it meanwhile.
    if (Entry* entry = Find(name)) return entry->lock;
    Entry* entry = MakeEntry(name);
    if (entry == nullptr) return sharedForLackOfMemory;
    firstEntry.store(entry, std::memory_order_release);
    return entry->lock;
}

}  // namespace corvale::NamedLocks

namespace corvale::internal {

std::mutex& InfoMessageMutex() noexcept {
    KeepUsableAfterFork();
    return NamedLocks::infoMessage.lock;
}

std::mutex& ErrorMessageMutex() noexcept {
    KeepUsableAfterFork();
    return NamedLocks::errorMessage.lock;
}

// Locks that other threads held are lost to the child together with those threads.
void RenewNamedLocks() noexcept {
    new (&NamedLocks::insertion) std::mutex;
    new (&NamedLocks::sharedForLackOfMemory) std::mutex;
    for (NamedLocks::Entry* entry = NamedLocks::firstEntry.load(); entry != nullptr;
         entry = entry->next)
        new (&entry->lock) std::mutex;
}

}  // namespace corvale::internal

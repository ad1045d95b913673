// A message is sixteen atomic words. Readers take no lock: what is read while another message is
// stored may mix the two, but is never undefined behaviour. Relaxed loads and stores of words cost
// as much as plain ones.
#include <corvale/core/FileIO.hpp>

#include <corvale/core/CorvaleTypes.hpp>
#include <corvale/text/TextParts.hpp>

#include <cstring>

namespace corvale::FileIO {

constinit MessageStore LastLoggedErrMsg;
constinit MessageStore LogLastInfoMsg;

namespace {

// Out of line: the stack protector guards a frame with an array, which costs each line of a log 1 %
// (bench: LogLine).
[[gnu::noinline]] void StoreFilled(MessageStore& store, std::string_view message) noexcept {
    std::array<char, CorvaleTypes::MessageWidth> filled;
    internal::PutText(message, filled);
    store.Store({filled.data(), filled.size()});
}

}  // namespace

void MessageStore::Load(std::span<char, 128> message) const noexcept {
    char* target = message.data();
    for (const Word& word : words_) {
        const std::uint64_t characters = word.load(std::memory_order_relaxed);
        std::memcpy(target, &characters, sizeof characters);
        target += sizeof characters;
    }
}

void MessageStore::Store(std::string_view message) noexcept {
    if (message.size() < sizeof words_) return StoreFilled(*this, message);
    const char* source = message.data();
    for (Word& word : words_) {
        std::uint64_t characters = 0;
        std::memcpy(&characters, source, sizeof characters);
        word.store(characters, std::memory_order_relaxed);
        source += sizeof characters;
    }
}

}  // namespace corvale::FileIO

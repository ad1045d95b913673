#include <corvale/core/FileIO.hpp>

#include <algorithm>
#include <cstring>

namespace corvale::FileIO {

constinit MessageStore LastLoggedErrMsg;
constinit MessageStore LogLastInfoMsg;

void MessageStore::Load(std::span<char, 128> message) const noexcept {
    char* target = message.data();
    for (const Word& word : words_) {
        const std::uint64_t characters = word.load(std::memory_order_relaxed);
        std::memcpy(target, &characters, sizeof characters);
        target += sizeof characters;
    }
}

void MessageStore::Store(std::string_view message) noexcept {
    std::array<std::uint64_t, 16> characters;
    characters.fill(kBlanks);
    if (!message.empty())
        std::memcpy(characters.data(), message.data(), std::min(message.size(), sizeof characters));
    for (std::size_t i = 0; i < words_.size(); ++i)
        words_[i].store(characters[i], std::memory_order_relaxed);
}

}  // namespace corvale::FileIO

// The unit table.
//
// Slots stand in blocks of 64 that are never freed. A number's index is the same in every block, so
// a search looks at one slot of each block, without a lock: one look where fewer than 64 units are
// open. Each slot has a key, which says whose file it holds.
//
// Opening claims a slot first, then opens the file, and stores the key last: it cannot fail any
// more once the file has been emptied. Closing stores the key 0 first. So whoever finds a key finds
// the file, and a child of fork has a consistent table, whatever other threads were doing.
//
// Invariant: no two slots have the key of one number. Keys are claimed and given numbers under
// `opening`, which nobody holds while he waits for a file, a pipe or a unit.
#include <corvale/platform/TextUnits.hpp>

#include <corvale/platform/ForkSafety.hpp>
#include <corvale/platform/StaticLock.hpp>
#include <corvale/platform/ThreadLock.hpp>
#include <corvale/platform/UnitFiles.hpp>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>
#include <mutex>
#include <new>
#include <optional>

namespace corvale::internal {

namespace {

constexpr std::int32_t kStandardOutputUnit = 6;
constexpr std::int32_t kFirstFreshUnit = 1000000;
constexpr std::int32_t kBlockUnits = 64;
constexpr std::size_t kReadBuffer = 4096;

// One open file. All zero when nothing is open, so that the table takes no space in the library's
// file, and no memory before it is used.
struct Unit {
    std::mutex writing;  // held for each line written and for closing
    TextFile file;
    bool isUntouched = false;        // opened, and nothing read yet
    std::size_t begin = 0, end = 0;  // what of the read buffer is still to be read
};

using ReadBuffer = std::array<char, kReadBuffer>;

// The number of an open unit, and that it is open, in one word.
using Key = std::uint64_t;
constexpr Key kFree = 0;
constexpr Key kClaimed = 1;  // its file is being opened
constexpr Key KeyOf(std::int32_t unit) noexcept {
    return Key{1} << 32U | static_cast<std::uint32_t>(unit);
}

// Read buffers are not initialised: of a new block they take no memory before they are used.
struct Block {
    std::array<std::atomic<Key>, kBlockUnits> keys;
    std::array<Unit, kBlockUnits> units;
    std::array<ReadBuffer, kBlockUnits> readBuffers;
    std::atomic<Block*> next{nullptr};
};

CORVALE_STATIC_LOCK Block firstBlock{};
CORVALE_STATIC_LOCK std::mutex opening;
constinit std::uint32_t freshUnits = 0;  // how many fresh numbers have been given out

// Standard output, as long as it is connected to unit 6.
constinit std::atomic<Key> standardOutputKey{KeyOf(kStandardOutputUnit)};
CORVALE_STATIC_LOCK Unit standardOutput{{}, TextFile{kStandardOutput, FileAccess::Replace, true}};

// A slot that was found or claimed. Its key says what it holds.
struct Slot {
    std::atomic<Key>* key = nullptr;
    Unit* unit = nullptr;
    ReadBuffer* buffer = nullptr;
    std::size_t index = 0;  // in its block

    explicit operator bool() const noexcept { return unit != nullptr; }
};

constexpr std::size_t IndexOf(std::int32_t number) noexcept {
    return static_cast<std::uint32_t>(number) % kBlockUnits;
}

Slot SlotAt(Block& block, std::size_t index) noexcept {
    return {&block.keys[index], &block.units[index], &block.readBuffers[index], index};
}

// The slot in which `number` is open, if any. Takes no lock: a key or block is published by a
// single store, after all that it leads to is written.
Slot Find(std::int32_t number) noexcept {
    const Key wanted = KeyOf(number);
    if (standardOutputKey.load(std::memory_order_acquire) == wanted)
        return {&standardOutputKey, &standardOutput};
    const std::size_t index = IndexOf(number);
    for (Block* block = &firstBlock; block != nullptr;
         block = block->next.load(std::memory_order_acquire))
        if (block->keys[index].load(std::memory_order_acquire) == wanted)
            return SlotAt(*block, index);
    return {};
}

Slot FindReading(std::int32_t number) noexcept {
    const Slot slot = Find(number);
    return slot && slot.unit->file.access == FileAccess::Read ? slot : Slot{};
}

// Waits for a line that is being written; closes the descriptor once no other thread can reach it.
void CloseNumber(std::int32_t number) noexcept {
    const Slot slot = Find(number);
    if (!slot) return;
    int descriptor = kStandardOutput;
    {
        const std::scoped_lock guard(slot.unit->writing);
        if (slot.key->load(std::memory_order_acquire) != KeyOf(number)) return;
        descriptor = slot.unit->file.descriptor;
        slot.key->store(kFree, std::memory_order_release);
    }
    if (descriptor != kStandardOutput) CloseFile(descriptor);
}

// The next block of the chain, made where there is none; null without memory for it. Called under
// `opening`.
Block* NextOf(Block& block) noexcept {
    if (Block* next = block.next.load(std::memory_order_relaxed)) return next;
    Block* next = new (std::nothrow) Block;
    block.next.store(next, std::memory_order_release);
    return next;
}

// Pairs with the release in `CloseNumber`: who claims the slot comes after its last owner.
bool IsFree(const std::atomic<Key>& key) noexcept {
    return key.load(std::memory_order_acquire) == kFree;
}

// The first free slot of a block: the one of `number`, or any where none is given.
std::optional<std::size_t> FreeIndex(const Block& block,
                                     std::optional<std::int32_t> number) noexcept {
    const auto begin = block.keys.begin() + (number ? IndexOf(*number) : 0);
    const auto end = number ? begin + 1 : block.keys.end();
    const auto found = std::find_if(begin, end, IsFree);
    if (found == end) return std::nullopt;
    return static_cast<std::size_t>(found - block.keys.begin());
}

// A slot in which `number`, or a fresh number, can be opened; none without memory for it.
Slot Claim(std::optional<std::int32_t> number) noexcept {
    const std::scoped_lock guard(opening);
    for (Block* block = &firstBlock; block != nullptr; block = NextOf(*block))
        if (const auto index = FreeIndex(*block, number)) {
            block->keys[*index].store(kClaimed, std::memory_order_relaxed);
            return SlotAt(*block, *index);
        }
    return {};
}

// A number for the slot of that index that nobody has chosen for a unit of his own. Called under
// `opening`.
std::int32_t FreshNumber(std::size_t index) noexcept {
    static_assert(IndexOf(kFirstFreshUnit) == 0);
    constexpr std::uint32_t rounds = (INT32_MAX - kFirstFreshUnit) / kBlockUnits;
    for (;;) {
        const auto round = static_cast<std::int32_t>(freshUnits++ % rounds);
        const std::int32_t number =
            kFirstFreshUnit + round * kBlockUnits + static_cast<std::int32_t>(index);
        if (!Find(number)) return number;
    }
}

// Gives a claimed slot its number, unless a unit of that number is open.
bool Publish(const Slot& slot, std::int32_t number) noexcept {
    if (Find(number)) return false;
    slot.key->store(KeyOf(number), std::memory_order_release);
    return true;
}

// What the read buffer holds, filled from the file when it is empty; empty at the end. Nothing on a
// read error.
std::optional<std::string_view> Buffered(const Slot& slot) noexcept {
    Unit& unit = *slot.unit;
    if (unit.begin == unit.end) {
        const std::ptrdiff_t count = ReadSome(unit.file.descriptor, *slot.buffer);
        if (count < 0) return std::nullopt;
        unit.begin = 0;
        unit.end = static_cast<std::size_t>(count);
    }
    return std::string_view(slot.buffer->data() + unit.begin, unit.end - unit.begin);
}

// Connects an open file with the slot that was claimed for it. From here on nothing fails.
std::int32_t Connect(const Slot& slot, const TextFile& file,
                     std::optional<std::int32_t> number) noexcept {
    Unit& unit = *slot.unit;
    unit.file = file;
    unit.isUntouched = true;
    unit.begin = 0;
    unit.end = file.firstByte ? 1 : 0;
    if (file.firstByte) slot.buffer->front() = *file.firstByte;
    for (;;) {
        {
            const std::scoped_lock guard(opening);
            const std::int32_t chosen = number ? *number : FreshNumber(slot.index);
            if (Publish(slot, chosen)) return chosen;
        }
        CloseNumber(*number);  // another thread was faster
    }
}

// Nothing is locked while the file is opened, which may take seconds.
std::optional<std::int32_t> Open(std::optional<std::int32_t> number, FileName name,
                                 FileAccess access) noexcept {
    const Slot slot = Claim(number);
    if (!slot) return std::nullopt;
    const TextFile file = OpenTextFile(name, access);
    if (file.IsOpen()) return Connect(slot, file, number);
    slot.key->store(kFree, std::memory_order_release);
    return std::nullopt;
}

// -1 where the unit has been closed meanwhile.
int DescriptorOf(std::int32_t unit) noexcept {
    const WritingUnit writing(unit);
    return writing.File() != nullptr ? writing.File()->descriptor : -1;
}

}  // namespace

bool OpenUnit(std::int32_t unit, FileName name, FileAccess access) noexcept {
    KeepUsableAfterFork();
    CloseNumber(unit);
    return Open(unit, name, access).has_value();
}

std::int32_t OpenFreshUnit(FileName name, FileAccess access) noexcept {
    KeepUsableAfterFork();
    return Open(std::nullopt, name, access).value_or(0);
}

std::ptrdiff_t ReadBytes(std::int32_t unit, std::span<char> buffer) noexcept {
    const Slot slot = FindReading(unit);
    if (!slot) return -1;
    slot.unit->isUntouched = false;
    const std::size_t waiting = std::min(slot.unit->end - slot.unit->begin, buffer.size());
    if (waiting == 0) return ReadSome(slot.unit->file.descriptor, buffer);
    std::memcpy(buffer.data(), slot.buffer->data() + slot.unit->begin, waiting);
    slot.unit->begin += waiting;
    return static_cast<std::ptrdiff_t>(waiting);
}

WritingUnit::WritingUnit(std::int32_t unit) noexcept {
    KeepUsableAfterFork();
    const Slot slot = Find(unit);
    if (!slot) return;
    lock_.Take(slot.unit->writing);
    if (slot.key->load(std::memory_order_acquire) != KeyOf(unit)) return;
    if (slot.unit->file.access != FileAccess::Read) file_ = &slot.unit->file;
}

// Waits for the reader, as a plain write does, but without the unit's lock: other threads may write
// to the unit or close it.
Outcome WaitAndOffer(std::int32_t unit, const ShortLine& line, Pieces pieces) noexcept {
    Outcome outcome = Outcome::Refused;
    for (int refusals = 1; outcome == Outcome::Refused; ++refusals) {
        WaitForRoom(DescriptorOf(unit), refusals);
        outcome = OfferLine(unit, line, pieces);
    }
    return outcome;
}

// A line that another thread was writing stays with the parent, and so does a file that it was
// opening.
void RenewUnitLocks() noexcept {
    new (&opening) std::mutex;
    new (&standardOutput.writing) std::mutex;
    for (Block* block = &firstBlock; block != nullptr; block = block->next.load()) {
        for (Unit& unit : block->units) new (&unit.writing) std::mutex;
        for (std::atomic<Key>& key : block->keys)
            if (key.load() == kClaimed) key.store(kFree);
    }
}

}  // namespace corvale::internal

namespace corvale::TextUnits {

using namespace internal;

bool IsOpen(std::int32_t unit) noexcept {
    return static_cast<bool>(Find(unit));
}

void Close(std::int32_t unit) noexcept {
    KeepUsableAfterFork();
    CloseNumber(unit);
}

bool Rewind(std::int32_t unit) noexcept {
    const Slot slot = FindReading(unit);
    if (!slot) return false;
    if (!GoToStart(slot.unit->file.descriptor)) return slot.unit->isUntouched;
    slot.unit->begin = slot.unit->end = 0;
    return true;
}

bool ReadLine(std::int32_t unit, std::span<char> line) noexcept {
    const Slot slot = FindReading(unit);
    if (!slot) return false;
    // A line may come in any number of buffers, and its CR may be the last character of one, before
    // the LF of the next.
    std::size_t length = 0;  // of the line so far, what does not fit in `line` included
    char last = '\0';        // its last character
    for (;;) {
        const auto text = Buffered(slot);
        if (!text || (text->empty() && length == 0)) return false;
        slot.unit->isUntouched = false;
        const std::size_t lineEnd = text->find('\n');
        const std::string_view part = text->substr(0, lineEnd);
        if (length < line.size()) part.copy(line.data() + length, line.size() - length);
        length += part.size();
        if (!part.empty()) last = part.back();
        const bool hasEnded = lineEnd != std::string_view::npos;
        slot.unit->begin += part.size() + (hasEnded ? 1 : 0);
        if (hasEnded && length > 0 && last == '\r') --length;
        if (hasEnded || text->empty()) break;
    }
    if (length < line.size()) std::memset(line.data() + length, ' ', line.size() - length);
    return true;
}

bool WriteLine(std::int32_t unit, std::string_view text) noexcept {
    return internal::WriteLine(unit, {&text, 1});
}

}  // namespace corvale::TextUnits

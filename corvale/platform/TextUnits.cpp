#include <corvale/platform/TextUnits.hpp>

#include <corvale/platform/ForkSafety.hpp>
#include <corvale/platform/StaticLock.hpp>
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
constexpr std::int32_t kMostUnits = 1024;
constexpr std::size_t kReadBuffer = 4096;

// One open file. All zero when nothing is open, so that the table takes no room in the library's
// file, and no memory before it is used.
struct Unit {
    std::mutex writing;  // held for each line written and for closing
    std::optional<TextFile> file;
    std::uint32_t freshCount;  // how many fresh numbers this place has given out
    bool isUntouched;          // opened, and nothing read yet
    std::size_t begin, end;    // what of the read buffer is still to be read
};

using ReadBuffer = std::array<char, kReadBuffer>;

// A number and the fact that it is open, in one word: 0 when not.
using Key = std::uint64_t;
constexpr Key KeyOf(std::int32_t unit) noexcept {
    return Key{1} << 32U | static_cast<std::uint32_t>(unit);
}

// A place is found by its key without a lock, as far as `usedPlaces` tells; a free one is taken,
// and given a number, under `opening`.
constinit std::array<std::atomic<Key>, kMostUnits> keys{};
CORVALE_STATIC_LOCK std::array<Unit, kMostUnits> units{};
constinit std::array<ReadBuffer, kMostUnits> readBuffers{};
constinit std::atomic<std::size_t> usedPlaces{0};
CORVALE_STATIC_LOCK std::mutex opening;

// Standard output, as long as it is connected to unit 6.
constinit std::atomic<Key> standardOutputKey{KeyOf(kStandardOutputUnit)};
CORVALE_STATIC_LOCK Unit standardOutput{
    {}, TextFile{kStandardOutput, FileAccess::Replace, true}, 0, false, 0, 0};

// A unit that was found open. Its key says whether it still is.
struct Place {
    Unit* unit = nullptr;
    std::atomic<Key>* key = nullptr;
    ReadBuffer* buffer = nullptr;

    explicit operator bool() const noexcept { return unit != nullptr; }
};

Place PlaceAt(std::size_t index) noexcept {
    return {&units[index], &keys[index], &readBuffers[index]};
}

Place Find(std::int32_t number) noexcept {
    const Key wanted = KeyOf(number);
    if (standardOutputKey.load(std::memory_order_acquire) == wanted)
        return {&standardOutput, &standardOutputKey};
    const std::size_t count = usedPlaces.load(std::memory_order_acquire);
    for (std::size_t i = 0; i < count; ++i)
        if (keys[i].load(std::memory_order_acquire) == wanted) return PlaceAt(i);
    return {};
}

Place FindReading(std::int32_t number) noexcept {
    const Place place = Find(number);
    return place && place.unit->file->access == FileAccess::Read ? place : Place{};
}

void CloseNumber(std::int32_t number) noexcept {
    const Place place = Find(number);
    if (!place) return;
    std::optional<TextFile> file;
    {
        const std::scoped_lock guard(place.unit->writing);
        if (place.key->load(std::memory_order_relaxed) != KeyOf(number)) return;
        // The key first: a fork between the two leaves no key without a file.
        place.key->store(0, std::memory_order_release);
        file.swap(place.unit->file);
    }
    if (file->descriptor != kStandardOutput) CloseFile(file->descriptor);
}

std::size_t FreePlace() noexcept {
    const std::size_t count = usedPlaces.load(std::memory_order_relaxed);
    for (std::size_t i = 0; i < count; ++i)
        if (keys[i].load(std::memory_order_acquire) == 0) return i;
    return count;
}

// The next number of that place that nobody has chosen for a unit of his own.
std::int32_t FreshNumber(std::size_t index) noexcept {
    constexpr std::uint32_t rounds = (INT32_MAX - kFirstFreshUnit) / kMostUnits;
    for (;;) {
        const auto round = static_cast<std::int32_t>(units[index].freshCount++ % rounds);
        const std::int32_t number =
            kFirstFreshUnit + round * kMostUnits + static_cast<std::int32_t>(index);
        if (!Find(number)) return number;
    }
}

// Puts `file` into the table under `number`, or under a fresh one where none is given. Closes it
// and returns nothing when the table is full.
std::optional<std::int32_t> Connect(const TextFile& file,
                                    std::optional<std::int32_t> number) noexcept {
    const std::scoped_lock guard(opening);
    const std::size_t index = FreePlace();
    if (index == units.size()) {
        CloseFile(file.descriptor);
        return std::nullopt;
    }
    if (number) CloseNumber(*number);  // somebody else may have been faster
    const std::int32_t chosen = number ? *number : FreshNumber(index);

    Unit& unit = units[index];
    const std::scoped_lock unitGuard(unit.writing);
    unit.file = file;
    unit.isUntouched = true;
    unit.begin = 0;
    unit.end = file.firstByte ? 1 : 0;
    if (file.firstByte) readBuffers[index][0] = *file.firstByte;
    keys[index].store(KeyOf(chosen), std::memory_order_release);
    usedPlaces.store(std::max(usedPlaces.load(std::memory_order_relaxed), index + 1),
                     std::memory_order_release);
    return chosen;
}

// What the read buffer holds, filled from the file when it is empty; empty at the end. Nothing on a
// read error.
std::optional<std::string_view> Buffered(const Place& place) noexcept {
    Unit& unit = *place.unit;
    if (unit.begin == unit.end) {
        const std::ptrdiff_t count = ReadSome(unit.file->descriptor, *place.buffer);
        if (count < 0) return std::nullopt;
        unit.begin = 0;
        unit.end = static_cast<std::size_t>(count);
    }
    return std::string_view(place.buffer->data() + unit.begin, unit.end - unit.begin);
}

}  // namespace

bool OpenUnit(std::int32_t unit, std::string_view name, FileAccess access) noexcept {
    KeepUsableAfterFork();
    CloseNumber(unit);
    const TextFile file = OpenTextFile(name, access);
    return file.IsOpen() && Connect(file, unit).has_value();
}

std::int32_t OpenFreshUnit(std::string_view name, FileAccess access) noexcept {
    KeepUsableAfterFork();
    const TextFile file = OpenTextFile(name, access);
    return file.IsOpen() ? Connect(file, std::nullopt).value_or(0) : 0;
}

std::ptrdiff_t ReadBytes(std::int32_t unit, std::span<char> buffer) noexcept {
    const Place place = FindReading(unit);
    if (!place) return -1;
    place.unit->isUntouched = false;
    const std::size_t waiting = std::min(place.unit->end - place.unit->begin, buffer.size());
    if (waiting == 0) return ReadSome(place.unit->file->descriptor, buffer);
    std::memcpy(buffer.data(), place.buffer->data() + place.unit->begin, waiting);
    place.unit->begin += waiting;
    return static_cast<std::ptrdiff_t>(waiting);
}

WritingUnit::WritingUnit(std::int32_t unit) noexcept {
    KeepUsableAfterFork();
    const Place place = Find(unit);
    if (!place) return;
    lock_.Take(place.unit->writing);
    if (place.key->load(std::memory_order_relaxed) != KeyOf(unit)) return;
    if (place.unit->file->access != FileAccess::Read) file_ = &*place.unit->file;
}

// Between these two no unit is opened. A line that another thread was writing stays with the
// parent.
void HoldUnitTable() noexcept {
    opening.lock();
}

void ReleaseUnitTable(ForkSide side) noexcept {
    opening.unlock();
    if (side == ForkSide::Parent) return;
    new (&standardOutput.writing) std::mutex;
    for (std::size_t i = 0; i < usedPlaces.load(); ++i) new (&units[i].writing) std::mutex;
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
    const Place place = FindReading(unit);
    if (!place) return false;
    if (!GoToStart(place.unit->file->descriptor)) return place.unit->isUntouched;
    place.unit->begin = place.unit->end = 0;
    return true;
}

bool ReadLine(std::int32_t unit, std::span<char> line) noexcept {
    const Place place = FindReading(unit);
    if (!place) return false;
    std::size_t length = 0;  // of the line so far, what does not fit in `line` included
    char last = '\0';        // its last character
    for (;;) {
        const auto text = Buffered(place);
        if (!text || (text->empty() && length == 0)) return false;
        place.unit->isUntouched = false;
        const std::size_t lineEnd = text->find('\n');
        const std::string_view part = text->substr(0, lineEnd);
        if (length < line.size()) part.copy(line.data() + length, line.size() - length);
        length += part.size();
        if (!part.empty()) last = part.back();
        const bool hasEnded = lineEnd != std::string_view::npos;
        place.unit->begin += part.size() + (hasEnded ? 1 : 0);
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

// Messages, the log, file opening and units, step by step beside a model of the files: names that
// lead nowhere, units that change their file, one file on several units.
#include "Targets.hpp"

#include "reference/TextUnits.hpp"

#include <corvale/Corvale.h>
#include <corvale/core/FileIO.hpp>
#include <corvale/platform/NamedLocks.hpp>
#include <corvale/platform/TextUnits.hpp>

#include <unistd.h>
#include <filesystem>
#include <fstream>

namespace corvale::fuzz {
namespace log {

using namespace FileIO;
using namespace std::literals;

constexpr std::string_view kPieces[] = {"text", " ",  "\n",     "\r",   "\r\n",
                                        "\0"sv, "\t", "Error-", "\xff", "          "};

// A name, the file that the log makes of it and the one that the module makes; "" for none.
struct Name {
    std::string_view given, asLog, asFile;
};
const std::string kTooLong(300, 'n');
const Name kNames[] = {{"a", "a", "a"},
                       {"b  ", "b", "b"},
                       {" a", "a", " a"},
                       {"sub/c", "sub/c", "sub/c"},
                       {"sub\\c", "sub\\c", "sub/c"},
                       {"raw", "raw", "raw"},
                       {"", "", ""},
                       {"   ", "", ""},
                       {"sub", "", ""},
                       {"loop", "", ""},
                       {"missing/x", "", ""},
                       {"b\0x"sv, "b", ""},
                       {"\tb", "", "\tb"},
                       {"\xc3\xa9", "", "\xc3\xa9"},
                       {"b\xc3", "b", "b\xc3"},
                       {kTooLong, "", ""}};

// A folder of our own, which is the working directory from the first input on.
class Scratch {
  public:
    Scratch() : path_(std::filesystem::temp_directory_path() / "corvale-fuzz-XXXXXX") {
        Expect(mkdtemp(path_.data()) != nullptr && chdir(path_.c_str()) == 0, "a scratch folder");
        std::filesystem::create_directory("sub");
        std::filesystem::create_symlink("loop", "loop");
        TextUnits::Close(6);  // no longer the standard output
    }
    ~Scratch() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

  private:
    std::string path_;
};

// The model, and at its end the comparison of every file.
class Model : public reference::Units {
  public:
    explicit Model(std::string raw) : descriptors_(OpenDescriptors()) {
        std::ofstream("raw", std::ios::binary) << raw;
        files["raw"].content = std::move(raw);
    }
    ~Model() {
        CloseLogFile();
        for (const auto& [number, unit] : units) TextUnits::Close(number);
        Expect(OpenDescriptors() == descriptors_, "a closed unit holds no descriptor");
        for (const auto& [name, file] : files) {
            std::ifstream stream(name, std::ios::binary);
            const std::string content{std::istreambuf_iterator<char>(stream), {}};
            if (!file.isUnclear) ExpectSame(content, file.content, "the content of a file");
            unlink(name.c_str());
        }
    }
    Model(const Model&) = delete;
    Model& operator=(const Model&) = delete;

  private:
    static std::ptrdiff_t OpenDescriptors() {
        return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
    }
    std::ptrdiff_t descriptors_;
};

thread_local GuardedMemory<1024> gMemory, gOtherMemory;

constexpr std::int32_t kUnits[] = {-1, 0, 3, 6, 7, INT32_MAX};

void OpenLog(Choices& in, Model& model) {
    const Name& name = in.Pick(kNames);
    if (model.hasLog) model.Close(6);
    model.hasLog = true;
    const bool opens = model.Open(6, name.asLog, 0);
    if (!opens) model.Error("OpenLogFile: log file failed to open.");
    const std::string terminated(std::string(name.given) + '\0');
    ExpectSame(OpenLogFile(gMemory.Hold(terminated).data()), opens ? 0 : 2, "OpenLogFile");
    ExpectSame(LogFileUnit.load(), 6, "LogFileUnit");
}

void CloseLog(Choices&, Model& model) {
    CloseLogFile();
    if (model.hasLog) model.Close(6);
    model.hasLog = false;
    model.Error("");
    ExpectSame(LogFileUnit.load(), 0, "LogFileUnit");
}

void Trace(Choices& in, Model& model) {
    std::array<char, 300> built;
    const bool isError = in.Flip();
    Choices text = in;
    const std::string_view message =
        gMemory.HoldView(text.Text(kPieces, built).substr(0, in.Byte()));
    (isError ? TraceLogError : TraceLogInfo)(message);
    isError ? model.Error(std::string(message)) : model.Info(std::string(message));
}

// What stands where a file cannot be opened, apart from the procedure's name.
std::string Complaint(const std::string& procedure, std::string_view name, std::int32_t mode) {
    const std::string_view trimmed = name.substr(0, name.find_last_not_of(' ') + 1);
    if (trimmed.empty()) return "FileOpen: File name is empty.";
    const bool isMode = mode == 0 || mode == 1 || (mode == 2 && procedure == "FileOpen");
    if (!isMode) return procedure + ": Invalid ioMode for FileOpen.";
    return procedure + ": Unable to open file \"" + std::string(trimmed) +
           (mode == 1 ? "\" for reading." : "\" for writing.");
}

void OpenUnit(Choices& in, Model& model) {
    const std::int32_t unit = in.Pick(kUnits);
    const auto mode = static_cast<std::int32_t>(in.Below(5)) - 1;
    const Name& name = in.Pick(kNames);
    const bool isMode = mode >= 0 && mode <= 2;
    const bool opens = model.Open(unit, isMode ? name.asFile : "", mode);
    if (!opens) model.Error(Complaint("FileOpen", name.given, mode));
    ExpectSame(FileOpen(unit, gMemory.HoldView(name.given), mode, in.Below(2)), opens ? 0 : 2,
               "FileOpen");
}

void OpenFresh(Choices& in, Model& model) {
    const auto mode = static_cast<std::int32_t>(in.Below(4)) - 1;
    const Name& name = in.Pick(kNames);
    std::int32_t unit = -1;
    const std::int32_t status = FileOpenMT(gMemory.HoldView(name.given), mode, unit);
    Expect(status != 0 ? unit == 0
                       : unit != 0 && unit != 3 && unit != 6 && model.Find(unit) == nullptr,
           "the number of a fresh unit");
    const std::int32_t shown = status == 0 ? unit : 1'000'000'000;
    const bool opens = model.Open(shown, mode == 0 || mode == 1 ? name.asFile : "", mode);
    if (!opens) model.Error(Complaint("FileOpenMT", name.given, mode));
    ExpectSame(status, opens ? 0 : 2, "FileOpenMT");
}

void WriteUnit(Choices& in, Model& model) {
    std::array<char, 300> built;
    const std::int32_t unit = in.Pick(kUnits);
    Choices rest = in;
    const std::string_view text = gMemory.HoldView(rest.Text(kPieces, built).substr(0, in.Byte()));
    Expect(TextUnits::WriteLine(unit, text) == model.Write(unit, std::string(text)), "WriteLine");
}

void ReadUnit(Choices& in, Model& model) {
    const std::int32_t unit = in.Pick(kUnits);
    if (in.Byte() % 4 == 0) Expect(TextUnits::Rewind(unit) == model.Rewind(unit), "Rewind");
    const std::span<char> line = gMemory.Text(in.Below(40));
    const bool isRead = TextUnits::ReadLine(unit, line);
    const bool isSteady = model.IsSteady(unit);
    std::optional<std::string> wanted = model.Read(unit);
    if (!isSteady) return;
    Expect(isRead == wanted.has_value(), "ReadLine");
    if (isRead) wanted->resize(line.size(), ' ');
    ExpectSame({line.data(), line.size()}, wanted.value_or(std::string(line.size(), '#')),
               "the line that was read");
}

void CloseUnit(Choices& in, Model& model) {
    const std::int32_t unit = in.Pick(kUnits);
    Expect(TextUnits::IsOpen(unit) == (model.Find(unit) != nullptr), "IsOpen");
    TextUnits::Close(unit);
    model.Close(unit);
    Expect(!TextUnits::IsOpen(unit), "IsOpen of a closed unit");
}

void StoreAndLock(Choices& in, Model&) {
    std::array<char, 300> built;
    MessageStore store;
    const std::string name(1, static_cast<char>(in.Byte() % 64));
    const std::string_view text = gMemory.HoldView(in.Text(kPieces, built));
    store.Store(text);
    const std::span<char, 128> message(gOtherMemory.Of(128), 128);
    store.Load(message);
    ExpectSame({message.data(), 128}, reference::Stored(std::string(text)), "MessageStore");
    std::mutex& lock = NamedLocks::NamedLock(name);
    Expect(&lock == &NamedLocks::NamedLock(gMemory.HoldView(name)) && lock.try_lock(), "NamedLock");
    lock.unlock();
}

void CompareMessages(const Model& model) {
    char* const message = gOtherMemory.Of(128);
    GetLastErrMsg(message);
    if (model.error) ExpectSame({message, 128}, *model.error, "GetLastErrMsg");
    GetLastInfoMsg(message);
    if (model.info) ExpectSame({message, 128}, *model.info, "GetLastInfoMsg");
}

}  // namespace log

void Log(Choices in) {
    using namespace log;
    static const Scratch scratch;
    constexpr void (*kSteps[])(Choices&, Model&) = {
        OpenLog,   OpenLog,   CloseLog, Trace,    Trace,    OpenUnit,  OpenUnit,    OpenFresh,
        WriteUnit, WriteUnit, ReadUnit, ReadUnit, ReadUnit, CloseUnit, StoreAndLock};
    std::array<char, 200> built;
    Choices raw = in;
    Model model(std::string(raw.Text(kPieces, built).substr(0, in.Byte())));
    for (int steps = 0; steps < 40 && in.Left() > 0; ++steps) {
        in.Pick(kSteps)(in, model);
        CompareMessages(model);
    }
}

}  // namespace corvale::fuzz

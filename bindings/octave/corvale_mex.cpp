// corvale_mex: calls the C API of libCorvale from Octave and MATLAB; corvale.m stands in front of it.
//
//     [id, message, out] = corvale_mex(NAME, in...)   the C function NAME; a cell with what comes out
//     [id, message] = corvale_mex('load', LIBRARY)    loads the library of that path, once
//
// After a failure `id` is the identifier for error() and `message` its text, else both are empty.
#include <corvale/Corvale.h>
#include <dlfcn.h>
#include <mex.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <limits>
#include <sstream>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

// What ends a call: an identifier of the language's errors and a message.
struct Failure {
    const char* id;
    std::string message;
};

enum class Kind { Char, Int32, Int64, Real64 };

// An argument as a row of the table below describes it.
struct Argument {
    std::string name;
    std::string width;  // a number, or the name of an argument
    std::string way;
    Kind kind;

    [[nodiscard]] bool IsText() const { return kind == Kind::Char && width != "1"; }
    [[nodiscard]] bool GoesIn() const { return way != "out"; }
    [[nodiscard]] bool ComesOut() const { return way != "in"; }
};

// The bytes of one argument, exactly as many as the library reads or writes.
using Buffer = std::vector<unsigned char>;

// What the C header declares an argument, or what it points to, as.
template <class T>
constexpr Kind KindOf() {
    using Element = std::remove_const_t<std::remove_pointer_t<T>>;
    constexpr Kind kKind = std::is_same_v<Element, char>           ? Kind::Char
                           : std::is_same_v<Element, std::int32_t> ? Kind::Int32
                           : std::is_same_v<Element, std::int64_t> ? Kind::Int64
                                                                   : Kind::Real64;
    static_assert(kKind != Kind::Real64 || std::is_same_v<Element, double>);
    return kKind;
}

template <class T>
T Pass(Buffer& buffer) {
    if constexpr (std::is_pointer_v<T>) return reinterpret_cast<T>(buffer.data());
    T value;
    std::memcpy(&value, buffer.data(), sizeof value);
    return value;
}

// The types of a C function, and how it is called with a buffer for each argument.
template <class>
struct Signature;
template <class Result, class... Arguments>
struct Signature<Result(Arguments...) noexcept> {
    static std::vector<Kind> Kinds() { return {KindOf<Arguments>()...}; }

    static std::int32_t Call(void* address, std::vector<Buffer>& buffers) {
        return Call(address, buffers, std::index_sequence_for<Arguments...>());
    }

    template <std::size_t... I>
    static std::int32_t Call(void* address, [[maybe_unused]] std::vector<Buffer>& buffers,
                             std::index_sequence<I...>) {
        const auto function = reinterpret_cast<Result (*)(Arguments...) noexcept>(address);
        if constexpr (!std::is_void_v<Result>) return function(Pass<Arguments>(buffers[I])...);
        function(Pass<Arguments>(buffers[I])...);
        return CORVALE_OK;
    }
};

enum class Returns { Nothing, Status, Mode };

struct Function {
    std::string name;
    Returns returns;
    std::vector<Argument> arguments;
    std::int32_t (*call)(void* address, std::vector<Buffer>& buffers);
    void* address = nullptr;
};

// `rows` has the name, width and way of each argument; the types are those of the header.
template <class Declared>
Function Row(const char* name, Returns returns, const char* rows = "") {
    Function function{name, returns, {}, &Signature<Declared>::Call};
    std::istringstream words(rows);
    for (const Kind kind : Signature<Declared>::Kinds()) {
        Argument argument{{}, {}, {}, kind};
        words >> argument.name >> argument.width >> argument.way;
        function.arguments.push_back(argument);
    }
    return function;
}

std::vector<Function> api = {
    Row<decltype(CorvaleInit)>("CorvaleInit", Returns::Status),
    Row<decltype(CorvaleGetInfo)>("CorvaleGetInfo", Returns::Nothing, "info 128 out"),
    Row<decltype(GetInitDllNames)>("GetInitDllNames", Returns::Nothing, "names 512 out"),
    Row<decltype(OpenLogFile)>("OpenLogFile", Returns::Status, "fileName 512 in"),
    Row<decltype(CloseLogFile)>("CloseLogFile", Returns::Nothing),
    Row<decltype(LogMessage)>("LogMessage", Returns::Nothing, "message 128 in"),
    Row<decltype(GetLastErrMsg)>("GetLastErrMsg", Returns::Nothing, "message 128 out"),
    Row<decltype(GetLastInfoMsg)>("GetLastInfoMsg", Returns::Nothing, "message 128 out"),
    Row<decltype(GetDupKeyMode)>("GetDupKeyMode", Returns::Mode),
    Row<decltype(SetDupKeyMode)>("SetDupKeyMode", Returns::Status, "mode 1 in"),
    Row<decltype(GetAllKeyMode)>("GetAllKeyMode", Returns::Mode),
    Row<decltype(SetAllKeyMode)>("SetAllKeyMode", Returns::Status, "mode 1 in"),
    Row<decltype(ResetAllKeyMode)>("ResetAllKeyMode", Returns::Nothing),
    Row<decltype(GetElsetKeyMode)>("GetElsetKeyMode", Returns::Mode),
    Row<decltype(SetElsetKeyMode)>("SetElsetKeyMode", Returns::Status, "mode 1 in"),
    Row<decltype(CorvaleLoadFile)>("CorvaleLoadFile", Returns::Status, "fileName 512 in"),
    Row<decltype(GetMOICData)>("GetMOICData", Returns::Nothing, "count 1 in values count out"),
    Row<decltype(TestInterface)>(
        "TestInterface", Returns::Nothing,
        "cIn 1 in cOut 1 out iIn 1 in iOut 1 out lIn 1 in lOut 1 out dIn 1 in dOut 1 out "
        "strIn 512 in strOut 512 out i3In 3 in i3Out 3 out l3In 3 in l3Out 3 out d3In 3 in "
        "d3Out 3 out i6In 6 in i6Out 6 out l6In 6 in l6Out 6 out d6In 6 in d6Out 6 out"),
    Row<decltype(TestInterface2)>(
        "TestInterface2", Returns::Nothing,
        "ch 1 inout i 1 inout l 1 inout d 1 inout str 512 inout i3 3 inout l3 3 inout d3 3 inout "
        "i6 6 inout l6 6 inout d6 6 inout"),
    Row<decltype(TestInterface3)>("TestInterface3", Returns::Nothing,
                                  "i3In 3 in i3Out 3 out i6In 6 in i6Out 6 out"),
};

struct KindFacts {
    std::size_t size;
    mxClassID classId;
};

// In the order of Kind.
constexpr KindFacts kKinds[] = {
    {1, mxCHAR_CLASS}, {4, mxINT32_CLASS}, {8, mxINT64_CLASS}, {8, mxDOUBLE_CLASS}};

const KindFacts& Facts(const Argument& argument) {
    return kKinds[static_cast<std::size_t>(argument.kind)];
}

[[noreturn]] void Refuse(const Argument& argument, const std::string& why) {
    throw Failure{"corvale:refused", argument.name + " " + why};
}

void Load(const char* path) {
    if (api.front().address != nullptr) return;
    void* library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) throw Failure{"corvale:notLoaded", dlerror()};
    std::vector<void*> addresses;
    for (const Function& function : api) {
        addresses.push_back(dlsym(library, function.name.c_str()));
        if (addresses.back() == nullptr) throw Failure{"corvale:notLoaded", dlerror()};
    }
    for (std::size_t i = 0; i < api.size(); ++i) api[i].address = addresses[i];
}

Function& Find(const std::string& name) {
    for (Function& function : api) {
        if (function.name == name) return function;
    }
    throw Failure{"corvale:refused", "no function " + name};
}

// The characters of a text, blank-filled; refused when the library would not see all of them.
void FillText(const Argument& argument, const mxArray* value, Buffer& buffer) {
    const std::size_t length = mxGetNumberOfElements(value);
    const bool isMessage = argument.name == "message";
    if (!mxIsChar(value) || (length > 0 && mxGetM(value) != 1)) Refuse(argument, "is not a text");
    if (length > buffer.size()) {
        Refuse(argument, "has more than " + argument.width + " characters");
    }
    const mxChar* characters = mxGetChars(value);
    if (length > 0 && characters[0] == ' ' && (isMessage || argument.name == "fileName")) {
        Refuse(argument, "begins with a blank, which the library would drop");
    }
    std::memset(buffer.data(), ' ', buffer.size());
    for (std::size_t i = 0; i < length; ++i) {
        if (characters[i] < ' ' || characters[i] > '~') {
            Refuse(argument, "has a character that is not printable ASCII");
        }
        buffer[i] = static_cast<unsigned char>(characters[i]);
    }
}

// An element of any class of integers, or a double that is an integer; refused if it does not fit.
template <class Integer>
Integer ReadInteger(const Argument& argument, const mxArray* value, std::size_t place) {
    constexpr double kLimit = -static_cast<double>(std::numeric_limits<Integer>::min());
    const void* data = mxGetData(value);
    if (mxIsInt64(value) || mxIsInt32(value)) {
        const std::int64_t number = mxIsInt64(value)
                                        ? static_cast<const std::int64_t*>(data)[place]
                                        : static_cast<const std::int32_t*>(data)[place];
        if (number != static_cast<Integer>(number)) Refuse(argument, "does not fit");
        return static_cast<Integer>(number);
    }
    if (!mxIsDouble(value)) Refuse(argument, "is neither int32 nor int64 nor double");
    const double number = static_cast<const double*>(data)[place];
    if (std::trunc(number) != number || number < -kLimit || number >= kLimit) {
        Refuse(argument, "is no integer that fits");
    }
    return static_cast<Integer>(number);
}

unsigned char ReadChar(const Argument& argument, const mxArray* value) {
    if (!mxIsChar(value)) Refuse(argument, "is not a character");
    const mxChar character = mxGetChars(value)[0];
    const auto byte = static_cast<unsigned char>(character);
    if (static_cast<mxChar>(byte) != character) Refuse(argument, "is not one byte");
    return byte;
}

void FillElement(const Argument& argument, const mxArray* value, std::size_t place,
                 Buffer& buffer) {
    const auto store = [&](const auto& element) {
        std::memcpy(&buffer[place * sizeof element], &element, sizeof element);
    };
    switch (argument.kind) {
        case Kind::Char:
            return store(ReadChar(argument, value));
        case Kind::Int32:
            return store(ReadInteger<std::int32_t>(argument, value, place));
        case Kind::Int64:
            return store(ReadInteger<std::int64_t>(argument, value, place));
        case Kind::Real64:
            break;
    }
    if (!mxIsDouble(value)) Refuse(argument, "is not double");
    store(static_cast<const double*>(mxGetData(value))[place]);
}

void Fill(const Argument& argument, const mxArray* value, Buffer& buffer) {
    if (argument.IsText()) return FillText(argument, value, buffer);
    const std::size_t width = buffer.size() / Facts(argument).size;
    if (mxIsComplex(value)) Refuse(argument, "is complex");
    if (mxGetNumberOfElements(value) != width) {
        Refuse(argument, "has not " + argument.width + " elements");
    }
    for (std::size_t place = 0; place < width; ++place) FillElement(argument, value, place, buffer);
}

mxArray* Taken(const Argument& argument, const Buffer& buffer) {
    if (argument.IsText()) {
        const std::string text(buffer.begin(), buffer.end());
        return mxCreateString(text.substr(0, text.find_last_not_of(' ') + 1).c_str());
    }
    const KindFacts& facts = Facts(argument);
    const mwSize size[] = {1, static_cast<mwSize>(buffer.size() / facts.size)};
    if (facts.classId == mxCHAR_CLASS) {
        mxArray* character = mxCreateCharArray(2, size);
        *mxGetChars(character) = static_cast<mxChar>(buffer[0]);
        return character;
    }
    mxArray* numbers = mxCreateNumericArray(2, size, facts.classId, mxREAL);
    if (!buffer.empty()) std::memcpy(mxGetData(numbers), buffer.data(), buffer.size());
    return numbers;
}

std::string LastErrMsg() {
    std::vector<Buffer> buffers{Buffer(CORVALE_MESSAGE_WIDTH)};
    const Function& getter = Find("GetLastErrMsg");
    getter.call(getter.address, buffers);
    const std::string message(buffers[0].begin(), buffers[0].end());
    return message.substr(0, message.find_last_not_of(' ') + 1);
}

// How many elements an argument has; `count` is the value of the argument that a width may name.
std::size_t WidthOf(const Argument& argument, std::int32_t count) {
    if (argument.width != "count") return std::stoul(argument.width);
    if (count < 0) Refuse(argument, "cannot have a negative count");
    return static_cast<std::size_t>(count);
}

std::vector<mxArray*> Call(const Function& function, const mxArray** given, std::size_t left) {
    std::vector<Buffer> buffers;
    std::int32_t count = 0;
    for (const Argument& argument : function.arguments) {
        buffers.emplace_back(WidthOf(argument, count) * Facts(argument).size);
        if (!argument.GoesIn()) continue;
        if (left == 0) Refuse(argument, "is missing");
        Fill(argument, *given++, buffers.back());
        --left;
        if (argument.name == "count") std::memcpy(&count, buffers.back().data(), sizeof count);
    }
    if (left > 0) throw Failure{"corvale:refused", function.name + " has fewer arguments"};

    const std::int32_t result = function.call(function.address, buffers);
    if (function.returns == Returns::Status && result != CORVALE_OK) {
        throw Failure{"corvale:failed", LastErrMsg()};
    }
    std::vector<mxArray*> outputs;
    if (function.returns == Returns::Mode) outputs.push_back(mxCreateDoubleScalar(result));
    for (std::size_t i = 0; i < buffers.size(); ++i) {
        if (function.arguments[i].ComesOut()) {
            outputs.push_back(Taken(function.arguments[i], buffers[i]));
        }
    }
    return outputs;
}

std::string Text(const mxArray* value) {
    char* text = mxArrayToString(value);
    if (text == nullptr) throw Failure{"corvale:refused", "a name is not a text"};
    std::string copy = text;
    mxFree(text);
    return copy;
}

// Loads the library of the environment, or of the system, unless one is loaded.
void LoadUsual() {
    const char* path = std::getenv("CORVALE_LIBRARY");
    Load(path != nullptr && *path != '\0' ? path : "libCorvale.so.9");
}

std::vector<mxArray*> Run(int count, const mxArray* given[]) {
    if (count == 0) throw Failure{"corvale:refused", "corvale_mex: no name of a function"};
    const std::string name = Text(given[0]);
    if (name == "load" && count == 2) return Load(Text(given[1]).c_str()), std::vector<mxArray*>();
    const Function& function = Find(name);
    LoadUsual();
    return Call(function, given + 1, static_cast<std::size_t>(count) - 1);
}

mxArray* CellOf(const std::vector<mxArray*>& values) {
    mxArray* cell = mxCreateCellMatrix(1, static_cast<mwSize>(values.size()));
    for (std::size_t i = 0; i < values.size(); ++i)
        mxSetCell(cell, static_cast<mwIndex>(i), values[i]);
    return cell;
}

}  // namespace

// Raises no error itself: that would be a jump past all destructors.
void mexFunction(int nlhs, mxArray* plhs[], int nrhs, const mxArray* prhs[]) {
    Failure failure{"", ""};
    std::vector<mxArray*> values;
    try {
        values = Run(nrhs, prhs);
    } catch (const Failure& caught) {
        failure = caught;
    } catch (const std::exception& error) {
        failure = {"corvale:refused", error.what()};
    }
    plhs[0] = mxCreateString(failure.id);
    if (nlhs > 1) plhs[1] = mxCreateString(failure.message.c_str());
    if (nlhs > 2) plhs[2] = CellOf(values);
}

#include "BitFamilies.hpp"
#include "BitMill.hpp"
#include "literal/KeyPatterns.hpp"
#include "literal/MatrixKinds.hpp"

#include <corvale/core/CorvaleCardReading.hpp>
#include <corvale/core/CorvaleTypes.hpp>
#include <corvale/core/FileIO.hpp>
#include <corvale/numeric/GenFunctions.hpp>
#include <corvale/platform/TextUnits.hpp>
#include <corvale/text/StrFunctions.hpp>

#include <filesystem>

namespace corvale::soak {

namespace {

using namespace StrFunctions;
using namespace GenFunctions;

constexpr std::string_view kDigits = "0123456789";
constexpr std::string_view kRealCharacters = "+-.0123456789eEdD";

// A number as people and programs write it; halfway between two doubles one time in eight.
std::string Number(Mill& mill) {
    if (mill.OneIn(8)) {
        const std::uint64_t odd = ((std::uint64_t{1} << 53U) + mill.Below(1U << 30U)) * 2 + 1;
        return std::to_string(odd) + (mill.OneIn(2) ? "" : mill.OneIn(2) ? ".0000001" : "e-30");
    }
    std::string text = mill.Text("+- ", 1);
    text += mill.Text(kDigits, mill.OneIn(4) ? 60 : 9);
    if (!mill.OneIn(4)) text += '.';
    text += mill.Text(kDigits, 17);
    if (mill.OneIn(2)) return text;
    text += mill.Text("eEdD+-", 1);
    text += mill.Text("+-", 1);
    return text += mill.Text(kDigits, 3);
}

// A field or an input line around one or two numbers.
std::string Field(Mill& mill) {
    std::string text = mill.OneIn(4) ? mill.Text("= ab", 6) : "";
    text += mill.OneIn(6) ? mill.Text(kRealCharacters, 24) : Number(mill);
    text += mill.Text(" ,;/=*'x", 3);
    if (mill.OneIn(2)) text += Number(mill);
    return text;
}

void Reals(Mill& mill) {
    for (int round = 0; round < 60000; ++round) {
        const std::string field = Field(mill);
        double first = 1.0, second = 2.0;
        StrTo2Reals(field, first, second);
        mill.Add(StrToReal(field));
        mill.Add(first);
        mill.Add(second);
        mill.Add(InputStrToReal(field));
    }
}

void Integers(Mill& mill) {
    for (int round = 0; round < 60000; ++round) {
        std::string field = Field(mill);
        if (mill.OneIn(3)) field = mill.Text("=onOfFyesTRUE ", 12);
        std::int32_t first = 1, second = 2;
        StrTo2Ints(field, first, second);
        for (const std::int32_t value :
             {StrToInt(field), first, second, InputStrToInt(field), OnOff2Int(field)})
            mill.Add(value);
    }
}

void NumbersAndWords(Mill& mill) {
    for (int round = 0; round < 30000; ++round) {
        std::string line = "key =" + Field(mill);
        line += mill.Text(" ,'\"km/;", 9);
        double number = 3.0;
        std::array<char, 7> word;
        InputStrToNumStr(line, number, word);
        mill.Add(number);
        mill.Add(word);
    }
}

void Writers(Mill& mill) {
    std::array<char, 40> text;
    for (int round = 0; round < 60000; ++round) {
        const double value = mill.Real(100);
        const auto n = static_cast<std::int32_t>(mill.Below(36)) - 2;
        const std::span<char> out(text.data(), mill.Below(text.size()));
        text.fill('?');
        Fx0ToSignAx(value, n, out);
        mill.Add(text);
        Fx0ToAx(value, n, out);
        mill.Add(text);
    }
}

void Rows(Mill& mill) {
    constexpr std::string_view kParts[] = {" 1.500000000000000E+003",
                                           " 0.000000000000000E+000 ",
                                           "-9.876543210000000E-012",
                                           " 0 ",
                                           "12.50",
                                           ":",
                                           ".0",
                                           "30.000",
                                           "1E+005",
                                           "E",
                                           "\xff"};
    for (int round = 0; round < 6000; ++round) {
        std::string row;
        for (std::uint64_t parts = mill.Below(40); parts > 0; --parts) {
            row += kParts[mill.Below(std::size(kParts))];
            row += mill.Text(", ", 1);
            if (mill.OneIn(4)) row += mill.Text("0123456789.", 9);
        }
        CompressCsvLine(row);
        mill.Add(row);
    }
}

std::string_view View(std::span<char> text) {
    return {text.data(), text.size()};
}

void CleanTexts(Mill& mill) {
    std::array<char, 90> out;
    for (int round = 0; round < 20000; ++round) {
        std::string text = mill.Bytes(80);
        if (mill.OneIn(2)) text = mill.Text("ab =/\\\xe4.", 80);
        const std::string pattern = mill.Text("ab", 3);
        const std::string replacement = mill.Text("ab\xff", 4);
        const std::span<char> result(out.data(), mill.Below(out.size()));
        ReplaceString(text, pattern, replacement, result);
        mill.Add(View(result));
        for (const auto procedure :
             {&ToLowerCase, &ToUpperCase, &GetInputStr, &GetInputFileName, &RemSpaceSlashChars}) {
            procedure(text, result);
            mill.Add(View(result));
        }
        CharArrToStr(text.c_str(), static_cast<std::int32_t>(text.size()), result);
        mill.Add(View(result));
        StrToCharArr(text, static_cast<std::int32_t>(result.size()), out.data());
        mill.Add(View(result));
        NullToSpace(text);
        mill.Add(text);
        mill.Add(IsBlankOrNull(text));
        BlankToZeroChar(text);
        mill.Add(text);
    }
}

void Codes(Mill& mill) {
    for (std::int32_t number = -10; number < 345000; number += 3) mill.Add(NumToAlpha5(number));
    for (int round = 0; round < 100000; ++round)
        mill.Add(Alpha5ToNum(mill.Text("0123456789 -+AHJNPZIOa\xff", 7)));
    for (int round = 0; round < 10000; ++round) mill.Add(NumToAlpha5(mill.Integer()));
}

void Keys(Mill& mill) {
    for (int round = 0; round < 200000; ++round) {
        const auto bits = static_cast<std::int64_t>(mill.Generator()());
        const std::int64_t key = mill.OneIn(2) ? bits : 3669999999999999990 + bits % 32;
        mill.Add(SatKeyToAddr(key));
        mill.Add(std::int64_t{KeyToCPtr(key)});
        mill.Add(IsDma(key));
        mill.Add(IsNoDup(key));
        mill.Add(NextSatKey(key));
    }
}

void Degrees(Mill& mill) {
    for (int round = 0; round < 60000; ++round) {
        const double deg = mill.Real(12);
        std::int32_t whole = 0, minutes = 0;
        double seconds = 0.0;
        mill.Add(FMod2P(deg));
        mill.Add(DeltaAngleLT180(deg, mill.Real(10)));
        DegToDDMMSSS(deg, whole, minutes, seconds);
        mill.Add(whole);
        mill.Add(minutes);
        mill.Add(seconds);
        DegToHHMMSSS(deg, whole, minutes, seconds);
        mill.Add(whole);
        mill.Add(minutes);
        mill.Add(seconds);
        mill.Add(DegToDDMMSSSSS_Str(deg));
        mill.Add(DegToHHMMSSS_Str(deg));
    }
}

Vector3 Vector(Mill& mill) {
    return {mill.Real(20), mill.Real(20), mill.Real(20)};
}

void SpaceVectors(Mill& mill) {
    for (int round = 0; round < 200000; ++round) {
        const Vector3 a = Vector(mill);
        const Vector3 b = Vector(mill);
        mill.Add(Cross(a, b));
        mill.Add(UnitVec(a));
        mill.Add(Mag(b));
    }
}

void Trigonometry(Mill& mill) {
    for (int round = 0; round < 60000; ++round) {
        const Vector3 a = Vector(mill);
        const Vector3 b = Vector(mill);
        const double x = mill.Real(6);
        mill.Add(
            std::array{AcTan(x, a[0]), AcSin(x / 64), AngleOf2Vecs(a, b), CubRt(a[1]), SerExp(x)});
        mill.Add(Rotate(a, static_cast<std::int32_t>(mill.Below(5)), x));
        mill.Add(RodriguesRot(a, x, b));
    }
}

// Around the sizes at which loops change: four and eight lanes, tiles, panels.
constexpr std::int32_t kOrders[] = {1,  2,  3,  4,  5,  6,  7,  8,  9,  12, 15, 16, 17,
                                    23, 24, 25, 31, 32, 33, 47, 48, 49, 63, 64, 65, 97};

template <class Use>
void ForEachMatrix(Use use) {
    for (const std::int32_t n : kOrders)
        for (const test::MatrixKind& kind : test::kMatrixKinds) use(kind.make(n), n);
}

void Factors(Mill& mill) {
    ForEachMatrix([&mill](const test::Matrix& a, std::int32_t n) {
        const test::Matrix b = test::RandomMatrix(n, 1, 5);
        test::Matrix inverse(a.size()), x(b.size());
        for (const auto procedure : {&Cholesky, &Cholesky2}) {
            procedure(a.data(), b.data(), n, inverse.data(), x.data());
            mill.Add(std::span<const double>(inverse));
            mill.Add(std::span<const double>(x));
        }
    });
}

void Inverses(Mill& mill) {
    ForEachMatrix([&mill](const test::Matrix& a, std::int32_t n) {
        test::Matrix inverse(a.size()), spread(2 * a.size());
        for (const auto procedure : {&MtxInv, &MInv}) {
            procedure({a.data(), n, n}, {inverse.data(), n, n});
            mill.Add(std::span<const double>(inverse));
            procedure({a.data(), n, n, n, 1}, {spread.data(), n, n, 2, 2 * std::ptrdiff_t{n}});
            mill.Add(std::span<const double>(spread));
        }
    });
}

void PackedMatrices(Mill& mill) {
    ForEachMatrix([&mill](const test::Matrix& a, std::int32_t n) {
        const std::int32_t length = SizeOfLta({a.data(), n, n});
        test::Matrix packed(static_cast<std::size_t>(length)), square(a.size());
        SqrMtx2Lta({a.data(), n, n}, {packed.data(), length});
        mill.Add(SizeOfSqrMtx({packed.data(), length}));
        Lta2SqrMtx({packed.data(), length}, {square.data(), n, n});
        mill.Add(std::span<const double>(packed));
        mill.Add(std::span<const double>(square));
    });
}

void Helpers(Mill& mill) {
    for (int round = 0; round < 20000; ++round) {
        const std::string line = mill.Text("0123456789-+. AZ\xff", 80);
        const auto first = static_cast<std::int32_t>(mill.Below(10));
        const auto last = static_cast<std::int32_t>(mill.Below(90));
        std::int32_t sum = 0, status = 0;
        CkSum(line, first, last, sum, status);
        std::vector<double> table(1 + mill.Below(40));
        for (double& value : table) value = mill.Real(3);
        std::sort(table.begin(), table.end(),
                  [](double a, double b) { return test::Bits(a) < test::Bits(b); });
        const std::int32_t row =
            FindRecIdx(table.data(), static_cast<std::int32_t>(table.size()), mill.Real(3));
        const std::int32_t i = mill.Integer();
        for (const std::int32_t value :
             {sum, status, row, Int2Logical(i), Logical2Int(i), InvalidFlag(i)})
            mill.Add(value);
    }
}

void Lists(Mill& mill) {
    for (int round = 0; round < 2000; ++round) {
        std::vector<std::int32_t> list(mill.Below(400));
        for (std::int32_t& value : list) value = mill.Integer() & 0x7fffffff;
        auto n = static_cast<std::int32_t>(list.size());
        if (mill.OneIn(3))
            IDupe(list.data(), n);
        else
            ISort(static_cast<std::int32_t>(mill.Below(3)), list.data(), n);
        mill.Add(n);
        for (std::int32_t i = 0; i < n; ++i) mill.Add(list[static_cast<std::size_t>(i)]);
    }
}

void SortedKeys(Mill& mill) {
    for (int pattern = 0; pattern < test::kPatterns; ++pattern)
        for (const std::size_t n : {1U, 2U, 15U, 16U, 17U, 100U, 1000U, 5000U}) {
            auto keys = test::MakeKeys(static_cast<test::Pattern>(pattern), n, mill.Generator());
            std::vector<std::int64_t> companion(n);
            for (std::size_t i = 0; i < n; ++i) companion[i] = static_cast<std::int64_t>(i);
            const auto count = static_cast<std::int32_t>(n);
            mill.Add(Sorting::Partition(1, count, keys.data(), companion.data()));
            Sorting::QuickSortIterative(count, keys.data(), companion.data());
            for (const auto& key : keys) mill.Add(key);
            for (const std::int64_t value : companion) mill.Add(value);
        }
}

// Lines written, read back, and loaded as cards.
void CardFiles(Mill& mill) {
    constexpr std::int32_t kUnit = 9;
    const auto path = std::filesystem::temp_directory_path() / "corvale-bits-XXXXXX";
    std::string name = path;
    const int descriptor = mkstemp(name.data());
    if (descriptor < 0) return;
    for (int round = 0; round < 60; ++round) {
        mill.Add(FileIO::FileOpen(kUnit, name, 0));
        for (std::uint64_t lines = mill.Below(60); lines > 0; --lines) {
            std::string line = mill.OneIn(3) ? mill.Bytes(90) : mill.Text("QZqz_MOICDA*", 20);
            if (mill.OneIn(2)) line = mill.OneIn(8) ? "qz_dma_on" : "QZ_MOIC ";
            for (std::uint64_t items = mill.Below(20); items > 0; --items) {
                line += Number(mill);
                line += mill.Text(" ,*/\t", 2);
            }
            mill.Add(CorvaleCardReading::CorvaleCardType(line));
            mill.Add(std::int32_t{TextUnits::WriteLine(kUnit, line)});
        }
        mill.Add(FileIO::FileOpen(kUnit, name, 1));
        std::array<char, 64> line;
        while (TextUnits::ReadLine(kUnit, line)) mill.Add(line);
        mill.Add(CorvaleCardReading::ReadCorvaleFrFile(name));
        mill.Add(CorvaleCardReading::MoicArr);
        mill.Add(CorvaleCardReading::ElsetKeyModeGet());
    }
    TextUnits::Close(kUnit);
    close(descriptor);
    std::filesystem::remove(name);
}

void Messages(Mill& mill) {
    std::array<char, 128> text;
    for (int round = 0; round < 20000; ++round) {
        FileIO::TraceLogError(mill.Bytes(150));
        FileIO::LastLoggedErrMsg.Load(text);
        mill.Add(text);
    }
}

template <void (*Run)(Mill&)>
std::uint64_t DigestOf() {
    Mill mill(1);
    Run(mill);
    return mill.Digest();
}

constexpr Family kFamilies[] = {
    {"reals", DigestOf<Reals>, Promise::Everywhere},
    {"integers", DigestOf<Integers>, Promise::Everywhere},
    {"numbers-and-words", DigestOf<NumbersAndWords>, Promise::Everywhere},
    {"writers", DigestOf<Writers>, Promise::Everywhere},
    {"rows", DigestOf<Rows>, Promise::Everywhere},
    {"texts", DigestOf<CleanTexts>, Promise::Everywhere},
    {"codes", DigestOf<Codes>, Promise::Everywhere},
    {"keys", DigestOf<Keys>, Promise::Everywhere},
    {"degrees", DigestOf<Degrees>, Promise::Everywhere},
    {"vectors", DigestOf<SpaceVectors>, Promise::Everywhere},
    {"cholesky", DigestOf<Factors>, Promise::Everywhere},
    {"inverses", DigestOf<Inverses>, Promise::Everywhere},
    {"packed", DigestOf<PackedMatrices>, Promise::Everywhere},
    {"helpers", DigestOf<Helpers>, Promise::Everywhere},
    {"lists", DigestOf<Lists>, Promise::Everywhere},
    {"sorts", DigestOf<SortedKeys>, Promise::Everywhere},
    {"cards", DigestOf<CardFiles>, Promise::OneProcess},
    {"messages", DigestOf<Messages>, Promise::OneProcess},
    {"trigonometry", DigestOf<Trigonometry>, Promise::OneLibrary},
};

}  // namespace

std::span<const Family> Families() {
    return kFamilies;
}

}  // namespace corvale::soak

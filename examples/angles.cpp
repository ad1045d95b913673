// Angles within a turn, sexagesimal texts, and the two rotations.
#include <corvale/numeric/Angles.hpp>
#include <corvale/numeric/Vectors.hpp>

#include <cstdio>

namespace gen = corvale::GenFunctions;

static void Print(const char* name, const gen::Vector3& v) {
    std::printf("%-14s %9.6f %9.6f %9.6f\n", name, v[0], v[1], v[2]);
}

int main() {
    // [angles]
    std::printf("%.6f rad\n", gen::FMod2P(-1.0));
    std::printf("%.6f rad\n", gen::AcTan(-1.0, 0.0));  // sine first, then cosine
    std::printf("%.1f deg\n", gen::DeltaAngleLT180(350.0, 10.0));
    // [angles]

    // [texts]
    const auto latitude = gen::DegToDDMMSSSSS_Str(-0.5);
    const auto ascension = gen::DegToHHMMSSS_Str(193.2716);
    std::printf("%.11s\n%.7s\n", latitude.data(), ascension.data());
    // [texts]

    // [split]
    std::int32_t degrees = 0, minutes = 0;
    double seconds = 0.0;
    gen::DegToDDMMSSS(10.1, degrees, minutes, seconds);
    std::printf("%d %d %.15g\n", degrees, minutes, seconds);
    // [split]

    // [rotations]
    const gen::Vector3 x = {1.0, 0.0, 0.0}, z = {0.0, 0.0, 1.0};
    Print("Rotate", gen::Rotate(x, 3, 0.5235987755982988));  // the frame turns, by 30 degrees
    Print("RodriguesRot", gen::RodriguesRot(x, 30.0, z));    // the vector turns
    Print("Cross", gen::Cross(z, x));
    // [rotations]
    return 0;
}

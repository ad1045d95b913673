#include <corvale/numeric/GenFunctions.hpp>

#include <cstdio>

int main() {
    const auto code = corvale::GenFunctions::NumToAlpha5(100000);
    std::printf("%.5s\n", code.data());
}

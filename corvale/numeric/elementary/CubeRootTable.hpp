// Internal to numeric/: not installed, may change in any commit.
//
// Made by proofs/elementary/CubeRootTable.sollya; scripts/prove.sh elementary makes it again and
// compares.
#pragma once

namespace corvale::internal {

/// What is known of the middle c of a cell. All three are rounded to double.
struct CubeRootCell {
    double reciprocal;
    double cubeRoot;
    double logarithm;
};

/// 32 cells of equal width from 1 to 2.
inline constexpr CubeRootCell kCubeRootCells[] = {
    {0x1.f81f81f81f82p-1, 0x1.01539221d4c97p0, 0x1.fc0a8b0fc03e4p-7},
    {0x1.e9131abf0b767p-1, 0x1.03f06771a2e33p0, 0x1.77458f632dcfcp-5},
    {0x1.dae6076b981dbp-1, 0x1.06800e629d672p0, 0x1.341d7961bd1d1p-4},
    {0x1.cd85689039b0bp-1, 0x1.090328731deb2p0, 0x1.a926d3a4ad563p-4},
    {0x1.c0e070381c0ep-1, 0x1.0b7a4b1bd64acp0, 0x1.0d77e7cd08e59p-3},
    {0x1.b4e81b4e81b4fp-1, 0x1.0de601024fb88p0, 0x1.44d2b6ccb7d1ep-3},
    {0x1.a98ef606a63bep-1, 0x1.1046cb0597001p0, 0x1.7ab890210d909p-3},
    {0x1.9ec8e951033d9p-1, 0x1.129d212a9ba9cp0, 0x1.af3c94e80bff3p-3},
    {0x1.948b0fcd6e9ep-1, 0x1.14e9736cdaf39p0, 0x1.e27076e2af2e6p-3},
    {0x1.8acb90f6bf3aap-1, 0x1.172c2a772f508p0, 0x1.0a324e27390e3p-2},
    {0x1.8181818181818p-1, 0x1.1965a848001d3p0, 0x1.22941fbcf7966p-2},
    {0x1.78a4c8178a4c8p-1, 0x1.1b9648c38c55dp0, 0x1.3a64c556945eap-2},
    {0x1.702e05c0b817p-1, 0x1.1dbe6236a0c45p0, 0x1.51aad872df82dp-2},
    {0x1.6816816816817p-1, 0x1.1fde45cbb1f9fp0, 0x1.686c81e9b14afp-2},
    {0x1.6058160581606p-1, 0x1.21f63ff409043p0, 0x1.7eaf83b82afc3p-2},
    {0x1.58ed2308158edp-1, 0x1.240698c6746e5p0, 0x1.947941c2116fbp-2},
    {0x1.51d07eae2f815p-1, 0x1.260f9454bb99bp0, 0x1.a9cec9a9a084ap-2},
    {0x1.4afd6a052bf5bp-1, 0x1.281172f8e7074p0, 0x1.beb4d9da71b7cp-2},
    {0x1.446f86562d9fbp-1, 0x1.2a0c719b4b6d1p0, 0x1.d32fe7e00ebd5p-2},
    {0x1.3e22cbce4a902p-1, 0x1.2c00c9f2263edp0, 0x1.e744261d68788p-2},
    {0x1.3813813813814p-1, 0x1.2deeb2bb7fb79p0, 0x1.faf588f78f31fp-2},
    {0x1.323e34a2b10bfp-1, 0x1.2fd65ff1efbbcp0, 0x1.0723e5c1cdf4p-1},
    {0x1.2c9fb4d812cap-1, 0x1.31b802fccf6a2p0, 0x1.109f39e2d4c97p-1},
    {0x1.27350b8812735p-1, 0x1.3393cadc50709p0, 0x1.19ee6b467c96fp-1},
    {0x1.21fb78121fb78p-1, 0x1.3569e451e4c2bp0, 0x1.23130d7bebf43p-1},
    {0x1.1cf06ada2811dp-1, 0x1.373a7a0554cdfp0, 0x1.2c0e9ed448e8cp-1},
    {0x1.1811811811812p-1, 0x1.3905b4a6d76cep0, 0x1.34e289d9ce1d3p-1},
    {0x1.135c81135c811p-1, 0x1.3acbbb0e756b7p0, 0x1.3d9026a7156fbp-1},
    {0x1.0ecf56be69c9p-1, 0x1.3c8cb258fa341p0, 0x1.4618bc21c5ec2p-1},
    {0x1.0a6810a6810a7p-1, 0x1.3e48be02ac0cfp0, 0x1.4e7d811b75bb1p-1},
    {0x1.0624dd2f1a9fcp-1, 0x1.4p0, 0x1.56bf9d5b3f399p-1},
    {0x1.0204081020408p-1, 0x1.41b298d47800ep0, 0x1.5ee02a9241675p-1},
};

/// The cube roots of 1, 2 and 4.
inline constexpr double kCubeRootsOfPowers[] = {0x1p0, 0x1.428a2f98d728bp0, 0x1.965fea53d6e3dp0};

}  // namespace corvale::internal

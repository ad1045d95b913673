// The small numeric procedures beside their peers: Topic/Peer. What a peer answers is compared
// first. Vectors by Eigen stand in a shared library as ours do: what is compared is the work, not
// the call; "inline" shows what a caller gains who compiles the work in.
#include <corvale/numeric/GenFunctions.hpp>

#include "EigenVectors.hpp"
#include "literal/LiteralNumeric.hpp"

// GenFunctions: the numerical toolkit of the family, and what it knows about keys and this build.
//
// Reals are IEEE doubles. Arrays count from 1; a contiguous m-by-n matrix is stored column by
// column. Nothing here keeps state, takes a lock, reports a message or throws.
//
// SoftwareInfo.hpp   the information line of a library
// SatelliteKeys.hpp  the arithmetic of satellite keys
#pragma once

#include <corvale/numeric/Cholesky.hpp>
#include <corvale/numeric/MatrixInversion.hpp>
#include <corvale/numeric/PackedSymmetric.hpp>
#include <corvale/numeric/SatelliteKeys.hpp>
#include <corvale/numeric/SoftwareInfo.hpp>
#include <corvale/numeric/Views.hpp>

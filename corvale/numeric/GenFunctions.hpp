// GenFunctions: the numerical toolkit of the family, and what it knows about keys and this build.
//
// Reals are IEEE doubles. Arrays count from 1; a contiguous m-by-n matrix is stored column by
// column. Nothing here keeps state, takes a lock, reports a message or throws.
//
// SoftwareInfo.hpp      the information line of a library
// SatelliteKeys.hpp     the arithmetic of satellite keys
// SatelliteNumbers.hpp  satellite numbers in five characters
// Angles.hpp            reduction, inverse functions, degrees as sexagesimal numbers and texts
// Vectors.hpp           vectors of space and their rotations
// SmallHelpers.hpp      functions, checksum, table search, logical values
// IntegerLists.hpp      lists of integers without duplicates, and sorted
// Views.hpp             vectors and matrices with strides
// PackedSymmetric.hpp   symmetric matrices as squares and as packed triangles
// Cholesky.hpp          symmetric positive definite systems and inverses
// MatrixInversion.hpp   inverses of square matrices
#pragma once
#include <corvale/numeric/Angles.hpp>
#include <corvale/numeric/Cholesky.hpp>
#include <corvale/numeric/IntegerLists.hpp>
#include <corvale/numeric/MatrixInversion.hpp>
#include <corvale/numeric/PackedSymmetric.hpp>
#include <corvale/numeric/SatelliteKeys.hpp>
#include <corvale/numeric/SatelliteNumbers.hpp>
#include <corvale/numeric/SmallHelpers.hpp>
#include <corvale/numeric/SoftwareInfo.hpp>
#include <corvale/numeric/Vectors.hpp>
#include <corvale/numeric/Views.hpp>

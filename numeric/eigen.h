// Eigenvalues and eigenvectors of a real symmetric matrix.
#ifndef XVKFC_NUMERIC_EIGEN_H_
#define XVKFC_NUMERIC_EIGEN_H_

#include "platform/export.h"

// Cyclic threshold Jacobi: plane rotations annihilate one off-diagonal
// element at a time while the rotation threshold falls from the matrix norm
// by a factor n twice per pass, until it reaches norm * tolerance / n. Works
// in double precision on private copies; only the arguments are float.
//
// matrix:       n x n floats, row-major, symmetric; read only. The rotations
//               read the upper triangle; the lower triangle only enters the
//               starting norm.
// eigenvectors: n x n floats, row-major, written: row k is the unit
//               eigenvector of eigenvalue k.
// eigenvalues:  n floats, written in descending signed order (a large
//               negative value sorts last); equal values keep the order of
//               the diagonal they came from.
// tolerance:    values below 1e-7, and NaN, are raised to 1e-7.
//
// Returns 0. For n < 1 nothing is computed or written. If the working storage
// (about 2 n^2 doubles) cannot be allocated, logs
// "malloc fail!!!(in eigenDecomposition" and returns without writing either
// output. An off-diagonal element that is not a number is never rotated, so a
// NaN in the input ends in NaN outputs instead of an endless sweep.
// REQUIRES: the three arrays hold the sizes above and do not overlap.
XVKFC_EXPORT int eigenDecomposition(float* matrix, float* eigenvectors, float* eigenvalues, int n,
                                    float tolerance);

#endif  // XVKFC_NUMERIC_EIGEN_H_

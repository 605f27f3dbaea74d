/**
 * @file Eigenvectors.h
 * Eigenvectors of small symmetric matrices.
 */
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numeric>

template <std::size_t N>
using SquareMatrix = std::array<std::array<double, N>, N>;

/** The largest eigenvalue first; row i of the vectors, which have length 1, belongs to value i. */
template <std::size_t N>
struct Eigenvectors {
    std::array<double, N> values;
    SquareMatrix<N> vectors;
};

/** Turns rows and columns p and q of a matrix so that its element there becomes zero, and the vectors with it. */
template <std::size_t N>
void turnElementToZero(SquareMatrix<N>& matrix, SquareMatrix<N>& vectors, std::size_t p, std::size_t q) {
    const double theta = (matrix[q][q] - matrix[p][p]) / (2.0 * matrix[p][q]);
    const double t = (theta < 0.0 ? -1.0 : 1.0) / (std::fabs(theta) + std::hypot(theta, 1.0));
    const double c = 1.0 / std::hypot(t, 1.0);
    const double s = t * c;
    for (std::size_t k = 0; k < N; ++k) {
        const double a = matrix[k][p];
        const double b = matrix[k][q];
        matrix[k][p] = c * a - s * b;
        matrix[k][q] = s * a + c * b;
    }
    for (std::size_t k = 0; k < N; ++k) {
        const double a = matrix[p][k];
        const double b = matrix[q][k];
        matrix[p][k] = c * a - s * b;
        matrix[q][k] = s * a + c * b;
        const double v = vectors[p][k];
        const double w = vectors[q][k];
        vectors[p][k] = c * v - s * w;
        vectors[q][k] = s * v + c * w;
    }
}

/** Eigenvectors of a symmetric matrix, by Jacobi's method. */
template <std::size_t N>
Eigenvectors<N> eigenvectorsOf(SquareMatrix<N> matrix) {
    SquareMatrix<N> vectors{};
    double size = 0.0;
    for (std::size_t i = 0; i < N; ++i) {
        vectors[i][i] = 1.0;
        size += std::fabs(matrix[i][i]);
    }
    constexpr int mostSweeps = 30;
    constexpr double negligible = 1e-16;
    for (int sweep = 0, turns = 1; sweep < mostSweeps && turns > 0; ++sweep) {
        turns = 0;
        for (std::size_t p = 0; p < N; ++p) {
            for (std::size_t q = p + 1; q < N; ++q) {
                if (std::fabs(matrix[p][q]) > negligible * size) {
                    turnElementToZero(matrix, vectors, p, q);
                    ++turns;
                }
            }
        }
    }

    std::array<std::size_t, N> order{};
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return matrix[a][a] > matrix[b][b]; });
    Eigenvectors<N> result{};
    for (std::size_t i = 0; i < N; ++i) {
        result.values[i] = matrix[order[i]][order[i]];
        result.vectors[i] = vectors[order[i]];
    }
    return result;
}

// The matrices of package models as they are kept: what files cannot show.
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "IbisParser/mtx.h"
#include "IbisParser/parse.h"
#include "IbisParser/pkgmdl.h"
#include "tests/support/Messages.h"
#include "tests/support/TempDir.h"

static const char s_head[] =
    R"([IBIS Ver] 3.2
[File Name] m.pkg
[File Rev] 1
[Define Package Model] m
[Manufacturer] a
[OEM] b
[Description] c
)";

// A package model in memory, with the numbers of the messages that its reading gave.
class Package {
public:
    // Pins p0, p1, ... and the lines of an inductance matrix from its keyword on.
    Package(int pins, const std::string& matrix)
    {
        std::ostringstream text;
        text << s_head << "[Number Of Pins] " << pins << "\n[Pin Numbers]\n";
        for (int i = 0; i < pins; ++i)
            text << "p" << i << "\n";
        text << "[Model Data]\n[Inductance Matrix] " << matrix
             << "[Capacitance Matrix] Banded_matrix\n[Bandwidth] 0\n";
        for (int i = 0; i < pins; ++i)
            text << "[Row] p" << i << "\n1p\n";
        text << "[End Model Data]\n[End Package Model]\n[End]\n";
        Messages messages(2600, 2631);
        INIT();
        PARSE(m_Dir.Write("m.pkg", text.str()).c_str(), FILE_PKG);
        m_Numbers = messages.TakeNumbers();
        IbisRoot* root = nullptr;
        IBIS_GetIBIS(&root);
        m_Matrix = root->pkgMdls->inductance;
    }
    ~Package()
    {
        Messages quiet;
        FINI();
    }
    Package(const Package&) = delete;
    Package& operator=(const Package&) = delete;

    const Mtx* Matrix() const { return m_Matrix; }
    const std::string& Numbers() const { return m_Numbers; }

    // -1 for an element that was not given.
    double At(int i, int j) const
    {
        double value = 5;
        const int given = MTX_Get(m_Matrix, i, j, &value);
        if (given) return value;
        EXPECT_EQ(value, 0);
        return -1;
    }

private:
    TempDir m_Dir;
    const Mtx* m_Matrix = nullptr;
    std::string m_Numbers;
};

GTEST_TEST(Matrix, TheSameElementsWhateverTheKind)
{
    // A tridiagonal matrix of four pins; 4 on the diagonal, then 1, 2, 3 beside it.
    static const struct {
        const char* label;
        const char* text;
        double far;  // element (0, 3)
    } matrices[] = {
        {"full",
         R"(Full_matrix
[Row] p0
4e-9 1e-9
0 0
[Row] p1
4e-9 2e-9 0
[Row] p2
4e-9 3e-9
[Row] p3
4e-9
)",
         0},
        {"banded",
         R"(Banded_matrix
[Bandwidth] 1
[Row] p0
4e-9 1e-9
[Row] p1
4e-9
2e-9
[Row] p2
4e-9 3e-9
[Row] p3
4e-9
)",
         -1},
        {"sparse, upper half",
         R"(Sparse_matrix
[Row] p0
p0 4e-9
p1 1e-9
[Row] p1
p1 4e-9
p2 2e-9
[Row] p2
p2 4e-9
p3 3e-9
[Row] p3
p3 4e-9
)",
         -1},
        {"sparse, lower half, backwards",
         R"(Sparse_matrix
[Row] p3
p3 4e-9
p2 3e-9
[Row] p2
p1 2e-9
p2 4e-9
[Row] p1
p1 4e-9
p0 1e-9
[Row] p0
p0 4e-9
)",
         -1},
    };
    for (const auto& matrix : matrices) {
        SCOPED_TRACE(matrix.label);
        const Package package(4, matrix.text);
        for (int i = 0; i < 4; ++i)
            EXPECT_EQ(package.At(i, i), 4e-9);
        static const double beside[] = {1e-9, 2e-9, 3e-9};
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(package.At(i, i + 1), beside[i]);
            EXPECT_EQ(package.At(i + 1, i), beside[i]);
        }
        EXPECT_EQ(package.At(0, 3), matrix.far);
        EXPECT_EQ(package.At(3, 0), matrix.far);
        EXPECT_EQ(package.At(0, 4), -1);
        EXPECT_EQ(package.At(-1, 0), -1);
    }
}

// Room is taken for what is written, not for what a keyword announces.
GTEST_TEST(Matrix, MemoryFollowsTheText)
{
    const Package package(1000, "Banded_matrix\n[Bandwidth] 999\n[Row] p0\n1n 0 0\n[Row] p1\n1n\n");
    const Mtx* matrix = package.Matrix();
    EXPECT_EQ(matrix->bandwidth, 999);
    EXPECT_LE(matrix->rows[0].capacity, 8);
    EXPECT_EQ(matrix->rows[2].capacity, 0);
    EXPECT_EQ(package.Numbers(), "2615 2615 2621 2629");
}

// A repeated element is found in whichever rows its two places stand.
GTEST_TEST(Matrix, RepeatedSparseElements)
{
    static const struct {
        const char* label;
        const char* rows;
        const char* numbers;
    } cases[] = {
        {"in one row", "[Row] p0\np0 1n\np2 0\np2 0\n[Row] p1\np1 1n\n[Row] p2\np2 1n\n", "2619"},
        {"mirrored", "[Row] p0\np0 1n\np2 0\n[Row] p1\np1 1n\n[Row] p2\np0 0\np2 1n\n", "2619"},
        {"mirrored, rows backwards",
         "[Row] p2\np0 0\np2 1n\n[Row] p1\np1 1n\n[Row] p0\np0 1n\np1 0\np2 0\n", "2628 2619"},
        {"other pairs of the same pins",
         "[Row] p0\np0 1n\np1 0\n[Row] p1\np1 1n\np2 0\n[Row] p2\np0 0\np2 1n\n", ""},
        {"after a first mirrored element",
         "[Row] p0\np0 1n\np2 0\n[Row] p1\np1 1n\np2 0\n[Row] p2\np2 1n\np1 0\np0 0\n",
         "2619 2619"},
    };
    for (const auto& row : cases) {
        const Package package(3, std::string("Sparse_matrix\n") + row.rows);
        EXPECT_EQ(package.Numbers(), row.numbers) << row.label;
    }
}

static std::string s_uniform(int pins, double diagonal, double other)
{
    std::ostringstream text;
    text << "Full_matrix\n";
    for (int i = 0; i < pins; ++i) {
        text << "[Row] p" << i << "\n" << diagonal << "\n";
        for (int j = i + 1; j < pins; ++j)
            text << other << ((j - i) % 8 == 0 ? "\n" : " ");
        text << "\n";
    }
    return text.str();
}

// The eigenvalues of d on the diagonal and k elsewhere are d + (n - 1) k and, n - 1 times, d - k.
GTEST_TEST(Matrix, PositiveDefiniteUpToFourHundredPins)
{
    static const struct {
        int pins;
        double other;
        const char* numbers;
    } cases[] = {
        {5, -0.2499e-9, ""},  // 1 - 4 * 0.2499 > 0
        {5, -0.2501e-9, "2626"},    {5, 0.999e-9, ""},
        {400, -0.0025e-9, ""},                               // 1 - 399 * 0.0025 = 0.0025
        {400, -0.00251e-9, "2626"}, {401, -0.00251e-9, ""},  // too large to be judged
    };
    for (const auto& row : cases) {
        const Package package(row.pins, s_uniform(row.pins, 1e-9, row.other));
        EXPECT_EQ(package.Numbers(), row.numbers) << row.pins << " pins, " << row.other;
    }
}

#include <corvale/numeric/Views.hpp>

#include <corvale/numeric/MatrixInversion.hpp>

#include "reference/MatrixInversion.hpp"
#include "reference/inputs/MatrixKinds.hpp"
#include "tests/support/Bits.hpp"

#include <gtest/gtest.h>
#include <limits>

namespace corvale::GenFunctions {
namespace {

TEST(Views, CountFromOneWithAnyStride) {
    double m[] = {11, 21, 12, 22, 13, 23};
    struct Case {
        MatrixView<double> view;
        double corner, below, beside;
        const char* why;
    };
    const Case cases[] = {
        {{m, 2, 3}, 11, 21, 12, "column by column"},
        {{m, 3, 2, 2, 1}, 11, 12, 21, "the transpose"},
        {{m + 5, 2, 3, -1, -2}, 23, 13, 22, "both backwards"},
        {{m + 4, 2, 3, 1, -2}, 13, 23, 12, "columns backwards"},
        {{m + 2, 2, 2, 0, 0}, 12, 12, 12, "one element for all"},
    };
    for (const auto& [view, corner, below, beside, why] : cases) {
        const MatrixView<const double> readOnly = view;
        EXPECT_EQ(readOnly(1, 1), corner) << why;
        EXPECT_EQ(readOnly(2, 1), below) << why;
        EXPECT_EQ(readOnly(1, 2), beside) << why;
    }
    const VectorView<const double> back = VectorView<double>(m + 5, 3, -2);
    EXPECT_EQ(back(1), 23);
    EXPECT_EQ(back(3), 21);
}

TEST(Views, HaveNoNegativeExtent) {
    EXPECT_EQ(VectorView<double>(nullptr, -1).Size(), 0);
    EXPECT_EQ(MatrixView<double>(nullptr, -1, 3).Rows(), 0);
    EXPECT_EQ(MatrixView<double>(nullptr, 3, std::numeric_limits<int>::min()).Columns(), 0);
    EXPECT_EQ(MatrixView<double>().Rows(), 0);
    EXPECT_EQ(MatrixView<double>().Columns(), 0);
    constexpr std::ptrdiff_t kFar = std::numeric_limits<std::ptrdiff_t>::max();
    double one = 4.0;  // a stride that is never taken may have any size
    MtxInv(MatrixView<double>(&one, 1, 1, kFar, -kFar), MatrixView<double>(&one, 1, 1, kFar, kFar));
    EXPECT_EQ(one, 0.25);
}

TEST(Views, OverlapOfResultAndInputChangesNothing) {
    using Plain = void (*)(const double*, std::int32_t, double*);
    struct Case {
        void (*invert)(MatrixView<const double>, MatrixView<double>) noexcept;
        Plain plain;
    };
    for (const auto& [invert, plain] :
         {Case{&MtxInv, &reference::MtxInv}, Case{&MInv, &reference::MInv}})
        for (const std::int32_t n : {3, 11, 15, 20, 45}) {
            const reference::Matrix a = reference::PositiveDefinite(n);
            reference::Matrix memory(2 * a.size()), wanted(a.size());
            plain(a.data(), n, wanted.data());
            std::copy(a.begin(), a.end(), memory.begin());
            const MatrixView<double> shifted(memory.data() + n, n, n, n, 1);
            invert(MatrixView<double>(memory.data(), n, n), shifted);
            for (std::int32_t j = 1; j <= n; ++j)
                for (std::int32_t i = 1; i <= n; ++i)
                    ASSERT_EQ(test::Bits(shifted(i, j)),
                              test::Bits(reference::Element(wanted, n, i - 1, j - 1)))
                        << n << " " << i << " " << j;
        }
}

}  // namespace
}  // namespace corvale::GenFunctions

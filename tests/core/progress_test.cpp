// The percent rule, against the closed form: after k of n rows the percentage is 100 k / n rounded down, told
// whenever it has changed.
#include "core/progress.h"
#include "core/reports.h"

#include <gtest/gtest.h>

namespace zkr::test {
namespace {

std::vector<int32_t> ExpectedReports(int64_t rows) {
    std::vector<int32_t> expected{0};
    for (int64_t row = 1; row <= rows; ++row)
        if (const auto percent = static_cast<int32_t>(100 * row / rows); percent != expected.back())
            expected.push_back(percent);
    return expected;
}

TEST(Progress, TellsEachPercentageOnce) {
    std::vector<int32_t> counts = {9999, 65536, 1000003};
    for (int32_t count = 1; count <= 1000; ++count)
        counts.push_back(count);
    for (int32_t count : counts) {
        const Reports reports(Z_SetStatusCallBack);
        Progress progress(StatusReceiver::Status(), count);
        EXPECT_EQ(progress.Begin(), code::Success);
        for (int32_t row = 0; row < count; ++row)
            ASSERT_EQ(progress.Step(), code::Success);
        EXPECT_EQ(reports.Seen, ExpectedReports(count)) << count;
    }
}

TEST(Progress, CarriesOverTheLargestHeights) {
    const Reports reports(Z_SetStatusCallBack);
    Progress progress(StatusReceiver::Status(), INT32_MAX);
    for (int32_t row = 0; row < 21474837; ++row) // the first row at which 100 rows make a whole of the height
        static_cast<void>(progress.Step());
    EXPECT_EQ(reports.Seen, std::vector<int32_t>{1});
}

TEST(Progress, AnyOtherResultStops) {
    for (ReturnCode answer : {0, 2, -1, -29}) {
        const Reports reports(Z_SetStatusCallBack, 3, answer);
        Progress progress(StatusReceiver::Status(), 10);
        ReturnCode status = progress.Begin();
        int rows = 0;
        for (; status == code::Success && rows < 10; ++rows)
            status = progress.Step();
        EXPECT_EQ(status, answer);
        EXPECT_EQ(rows, 3);
    }
}

bool IsSilent() {
    return Z_GetStatusCallBack(nullptr) == nullptr;
}

// Whatever the range and its units: 100 k / 100 of the units are reached at inner percentage k, rounded down,
// and their share of the range is told, rounded down, whenever it has changed.
TEST(ProgressStage, MapsTheInnerRangeIntoTheOuterOne) {
    const struct {
        int32_t Start, End, Total;
    } stages[] = {{0, 100, 100}, {0, 50, 100},   {50, 100, 100}, {30, 37, 100},
                  {10, 90, 7},   {0, 100, 3000}, {99, 100, 1}};
    for (const auto& stage : stages) {
        for (int32_t stride : {1, 7, 50}) {
            const Reports reports(Z_SetStatusCallBack);
            ProgressStage tested;
            ASSERT_EQ(tested.Begin(stage.Start, stage.End, stage.Total), code::Success);
            std::vector<int32_t> expected{stage.Start};
            for (int32_t inner = 0; inner < 100 + stride; inner += stride) {
                const int32_t reached = std::min(inner, 100);
                EXPECT_TRUE(IsSilent());
                ASSERT_EQ(tested.Report(reached), code::Success);
                const int32_t units = reached * stage.Total / 100;
                const int32_t percent = stage.Start + (stage.End - stage.Start) * units / stage.Total;
                if (percent != expected.back()) expected.push_back(percent);
            }
            EXPECT_FALSE(IsSilent()) << "the outer operation goes on reporting";
            EXPECT_EQ(reports.Seen, expected) << stage.Start << " " << stage.End << " " << stage.Total;
        }
    }
}

TEST(ProgressStage, AnOperationThatIsStoppedGivesTheCallbackBack) {
    for (const size_t stop : {size_t{0}, size_t{2}}) {
        const Reports reports(Z_SetStatusCallBack, stop, 5);
        {
            ProgressStage stage;
            ASSERT_EQ(stage.Begin(20, 100), stop == 0 ? 5 : code::Success);
            if (stop != 0) {
                EXPECT_EQ(stage.Report(10), code::Success);
                EXPECT_EQ(stage.Report(20), 5);
            }
        }
        EXPECT_EQ(reports.Seen.size(), stop + 1);
        EXPECT_FALSE(IsSilent());
    }
}

TEST(ProgressStage, WithoutACallbackNothingHappens) {
    ProgressStage stage;
    ASSERT_EQ(stage.Begin(), code::Success);
    const Reports reports(Z_SetStatusCallBack);
    EXPECT_EQ(stage.Report(50), code::Success);
    EXPECT_FALSE(IsSilent());
    EXPECT_TRUE(reports.Seen.empty());
}

} // namespace
} // namespace zkr::test

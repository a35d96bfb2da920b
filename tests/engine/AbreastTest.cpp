// Cleans of a far device, which remove several entries at once.
#include <algorithm>
#include <atomic>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "EngineTest.h"
#include "platform/queue/Crew.h"
#include "support/Meeting.h"

namespace sweepwright {
namespace {

/// What an observer heard, in order.
class Heard final : public CleanObserver {
  public:
    std::vector<std::string> steps;

    void removed(const std::string& path, std::uint64_t bytes) override {
        steps.push_back("removed " + path + " " + std::to_string(bytes));
    }
    void kept(const std::string& path, KeptReason reason, const std::string&) override {
        steps.push_back("kept " + path + " " + std::string(keptReasonName(reason)));
    }
};

class AbreastTest : public EngineTest {
  protected:
    static constexpr int kFolders = 40;
    /// Fewer than there are threads: of those entries that are in hand some may have to stay.
    static constexpr int kAtOnce = 8;

    AbreastTest() {
        for (int i = 0; i < kFolders; ++i)
            d_.tree.file(d_.temporary(std::to_string(i) + "/file"), static_cast<std::uint64_t>(i));
        d_.tree.file(d_.temporary(".hidden"), 1000);
        d_.tree.file(d_.temporary("x.sqlite"), 1000);
        d_.tree.link(d_.temporary("link"), "0");
    }

    /// A clean of the temporary files, and what was heard of it.
    std::pair<std::uint64_t, std::vector<std::string>> clean() {
        Heard heard;
        d_.engine.setObserver(&heard);
        std::vector<double> progress;
        const auto outcome = d_.clean(CleanType::TempFiles, [&](const std::string&, double done) {
            progress.push_back(done);
        });
        d_.engine.setObserver(nullptr);
        EXPECT_TRUE(std::ranges::is_sorted(progress));
        return {outcome.bytes, heard.steps};
    }
};

TEST_F(AbreastTest, SeveralEntriesGoAtOnceAndTheSameIsToldInTheSameOrder) {
    const std::vector<std::string> names =
        d_.tree.files().contentsOfDirectory(d_.device.temporaryDirectory()).value();
    test::Meeting all(kAtOnce);
    std::atomic<bool> met{true};
    d_.eraser.onRemove = [&](const std::string&) {
        if (!all.attend()) met = false;
    };
    d_.eraser.crew()->setFar(true);
    const auto [bytes, steps] = clean();
    EXPECT_TRUE(met);
    EXPECT_EQ(bytes, kFolders * (kFolders - 1) / 2U);
    ASSERT_EQ(steps.size(), names.size());
    for (std::size_t i = 0; i < names.size(); ++i)
        EXPECT_NE(steps[i].find(" " + d_.temporary(names[i]) + " "), std::string::npos) << steps[i];
    EXPECT_EQ(
        std::ranges::count_if(steps, [](const std::string& s) { return s.starts_with("kept"); }),
        3);
    for (const char* kept : {".hidden", "x.sqlite", "link"})
        EXPECT_TRUE(d_.tree.exists(d_.temporary(kept))) << kept;
}

TEST_F(AbreastTest, AStopLetsTheEntriesInHandGoAndReportsThem) {
    test::Meeting all(kAtOnce);
    d_.eraser.onRemove = [&](const std::string&) {
        all.attend();
        d_.engine.stop();
    };
    d_.eraser.crew()->setFar(true);
    const auto [bytes, steps] = clean();
    EXPECT_LT(d_.eraser.removed.size(), std::size_t{kFolders});
    std::uint64_t gone = 0;
    for (const std::string& path : d_.eraser.removed)
        gone += static_cast<std::uint64_t>(std::stoi(path.substr(path.rfind('/') + 1)));
    EXPECT_EQ(bytes, gone);
}

}  // namespace
}  // namespace sweepwright

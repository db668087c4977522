// Where the library finds its filter modules: beside itself, never in the current folder. It is loaded from a
// folder of the test's own.
#include "support/loaded_module.h"
#include "zkr13n/bitmap.h"
#include "zkr13n/locks.h"
#include "zkr13n/storage.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <random>

namespace zkr::test {
namespace {

namespace fs = std::filesystem;

const fs::path Library = ZKR_LIBRARY, ColourFilter = ZKR_COLOUR_FILTER, BitonalFilter = ZKR_BITONAL_FILTER;

class Loading : public testing::Test {
  protected:
    void SetUp() override {
        before_ = fs::current_path();
        folder_ =
            fs::temp_directory_path() / ("zkr13n-filters-test-" + std::to_string(std::random_device{}()));
        fs::create_directory(folder_);
        Put(Library, Library);
        library_ = Load(Placed(Library));
        ASSERT_NE(library_, nullptr);
    }
    void TearDown() override {
        for (const fs::path& file : {Library, ColourFilter, BitonalFilter})
            EXPECT_FALSE(IsLoaded(Placed(file))) << "a module stays behind";
        fs::current_path(before_);
        fs::remove_all(folder_);
    }
    void Put(const fs::path& file, const fs::path& as) {
        fs::copy_file(file, folder_ / as.filename(), fs::copy_options::overwrite_existing);
    }
    std::string Placed(const fs::path& file) const { return (folder_ / file.filename()).string(); }
    ReturnCode Create(int32_t bits) {
        const auto create = ZKR_FIND(library_, Z_CreateBitmap);
        const auto release = ZKR_FIND(library_, Z_FreeBitmap);
        BitmapHandle bitmap;
        const ReturnCode result =
            create(&bitmap, MemorySuperCompressed, 9, 40, bits, 1, nullptr, 0, nullptr, 0);
        EXPECT_EQ((bitmap.Flags & Z_FLAG_ALLOCATED) != 0, result == Z_SUCCESS);
        release(&bitmap);
        return result;
    }

    fs::path before_, folder_;
    Module library_ = nullptr;
};

TEST_F(Loading, LooksBesideTheLibraryAlone) {
    fs::current_path(ColourFilter.parent_path());
    EXPECT_EQ(Create(24), Z_ERROR_COLOUR_FILTER);
    EXPECT_EQ(Create(1), Z_ERROR_FAX_FILTER);

    Put(Library, ColourFilter); // a module without the two entries
    EXPECT_EQ(Create(24), Z_ERROR_COLOUR_FILTER);
    EXPECT_FALSE(IsLoaded(Placed(ColourFilter)));

    Put(ColourFilter, ColourFilter);
    Put(BitonalFilter, BitonalFilter);
    fs::current_path(before_);
    for (int round = 0; round < 2; ++round)
        for (const int32_t bits : {24, 1})
            EXPECT_EQ(Create(bits), Z_SUCCESS);
    EXPECT_TRUE(IsLoaded(Placed(ColourFilter))) << "kept for the next bitmap";
    const auto shutdown = ZKR_FIND(library_, Z_IntShutdown);
    EXPECT_EQ(shutdown(), Z_SUCCESS);
    EXPECT_FALSE(IsLoaded(Placed(ColourFilter)));
    EXPECT_EQ(Create(24), Z_SUCCESS);
    Unload(library_);
}

} // namespace
} // namespace zkr::test

// The module linked against a fake of the projectile and target companions:
// what it hands to them, and how it takes their refusals.
#include <gtest/gtest.h>

#include <string>

#include "fake_companions.hpp"
#include "tempdir.hpp"
#include "vlkxs.h"

namespace {

class FakeLayer : public ::testing::Test {
protected:
    void SetUp() override { fake::reset(); }
    fake::Layer &layer = fake::layer();
    SVLKXS set{};
};

TEST_F(FakeLayer, ReadTakesCompanionsInTheFirstPassAndFreeReleasesThem) {
    ASSERT_EQ(VLKXSRead(&set, vlktest::data_file("e.H2O.is.xs").c_str(), 0).code, 0);
    EXPECT_EQ(std::string(set.proj.name), "fake electron");
    EXPECT_EQ(std::string(set.targ.name), "fake water");
    EXPECT_EQ(layer.proj_from_str, 1);  // a dim 1 file has four passes
    EXPECT_EQ(layer.targ_import, 1);
    ASSERT_EQ(VLKXSComplete(&set, 0).code, 0);
    // Binding energies come from the layer's shell table.
    for (int32_t i = 0; i + 1 < set.nShell; ++i)
        EXPECT_DOUBLE_EQ(set.pShell[i].pE[0].km, set.targ.pShell[set.pShell[i].shell].Ebind);
    EXPECT_EQ(VLKXSIsValid(&set, 0).code, 0);
    EXPECT_NE(layer.is_valid_mode & VLKXS_MODE_CHECK, 0);
    VLKXSFree(&set, 0);
    EXPECT_EQ(layer.proj_free, 1);
    EXPECT_EQ(layer.targ_free, 1);
}

TEST_F(FakeLayer, RefusalsBecomeTheModulesCodes) {
    const struct {
        bool fake::Layer::*flag;
        int32_t read_code, valid_code;
    } cases[] = {
        {&fake::Layer::refuse_projectile, VLKXS_C_R_PROJECTILE, -1},
        {&fake::Layer::refuse_material, VLKXS_C_R_TARGET, -1},
        {&fake::Layer::invalid_projectile, 0, VLKXS_C_BADPROJ},
        {&fake::Layer::invalid_target, 0, VLKXS_C_BADTARG},
    };
    for (const auto &c : cases) {
        fake::reset();
        layer.*c.flag = true;
        const SCMDSTATUS s = VLKXSRead(&set, vlktest::data_file("e.H2O.it.xs").c_str(), VLKXS_MODE_QUIET);
        EXPECT_EQ(s.code, c.read_code);
        if (s.code != 0) {
            // The failed read emptied the set through the layer.
            EXPECT_EQ(layer.proj_free, 1);
            EXPECT_EQ(set.nShell, 0);
            continue;
        }
        EXPECT_EQ(VLKXSIsValid(&set, VLKXS_MODE_QUIET).code, c.valid_code);
        VLKXSFree(&set, 0);
    }
}

}  // namespace

// Submodels that models add.
#include "tests/IbisParser/read/model/model_texts.h"
#include "tests/support/IbsCases.h"

GTEST_TEST(SubmodelUses, Files)
{
    const IbsLog log({{200, 209}, {3600, 3600}});
    const std::string model = "[Model] m\nModel_type 3-state\n[Add Submodel]\nf Non-Driving\n";
    CheckCases(log, model, ModelInUse,
               R"(
--- 4.2 none in the file: E0205
--- 4.2 two of a name, one of no model: E3600 W0201 W0204
[Submodel] f
Submodel_type Fall_back
[Submodel] g
Submodel_type Fall_back
[Submodel] f
Submodel_type Fall_back
)");
}

GTEST_TEST(SubmodelUses, ModesByTypeOfModel)
{
    static const struct {
        const char* type;
        const char* driving;
        const char* nonDriving;
    } rows[] = {
        {"3-state", "", ""},
        {"I/O_open_drain", "", ""},
        {"Output", "", "E0202"},
        {"Open_drain", "", "E0202"},
        {"Open_source", "", "E0202"},
        {"3-state_ECL", "", ""},
        {"Output_diff", "", "E0202"},
        {"3-state_diff", "", ""},
        {"Input", "E0202", ""},
        {"Input_ECL", "E0202", ""},
        {"Terminator", "E0202", ""},
        {"Series", "E0203", "E0203"},
        {"Series_switch", "E0203", "E0203"},
    };
    IbsLog log({{200, 209}});
    for (const auto& row : rows) {
        SCOPED_TRACE(row.type);
        const auto check = [&](const char* mode) {
            return log.Check("4.2", std::string("[Model] m\nModel_type ") + row.type +
                                        "\n[Add Submodel]\nk " + mode +
                                        "\n[Submodel] k\nSubmodel_type Bus_hold\n" + ModelInUse);
        };
        EXPECT_EQ(check("Driving"), row.driving);
        EXPECT_EQ(check("Non-Driving"), row.nonDriving);
        if (std::string(row.driving) != "E0203") {
            EXPECT_EQ(check("All"), "");
        }
    }
}

// The checks of models meet records of a program that no file gives.
#include <gtest/gtest.h>

#include <cstring>

#include "IbisParser/chk.h"
#include "IbisParser/curve.h"
#include "IbisParser/drvsh.h"
#include "IbisParser/mdl.h"
#include "IbisParser/parse.h"
#include "IbisParser/rcvth.h"
#include "tests/support/Messages.h"

GTEST_TEST(ModelChecks, GuardAgainstRecordsThatNoFileGives)
{
    Messages messages;
    INIT();
    Mdl model = {};
    std::strcpy(model.name, "m");
    RcvTh thresholds = {};
    thresholds.item[0] = {1.0, CELL_NUMBER};
    DrvSh row = {};
    std::strcpy(row.model, "stage");
    model.thresholds = &thresholds;
    model.schedule = &row;
    model.type = MDL_OUTPUT;
    RCVTH_Check(&model);
    EXPECT_EQ(messages.Take()[0],
              "2006 Model 'm' (Output) is no receiver but has [Receiver Thresholds].");
    model.type = MDL_INPUT;
    DRVSH_Test(&model);
    EXPECT_EQ(messages.Take()[0],
              "3012 Model 'm' (Input) does not drive but has a [Driver Schedule].");
    model.type = 99;
    chk_CheckAllModels(&model);
    EXPECT_EQ(messages.TakeNumbers().substr(0, 3), "701");
    Curve curve;
    EXPECT_EQ(CURVE_Combine(&model, 7, CORNER_TYP, 0, &curve), CURVE_NO_TABLE);
    EXPECT_EQ(messages.TakeNumbers(), "4701");
    FINI();
}

#include "model/Version.h"

#include <gtest/gtest.h>

GTEST_TEST(Version, PrintsSixLinesThatTextScannersFind)
{
    testing::internal::CaptureStdout();
    TalvernQuellCodeGen::version();
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "$Id: File Description  Kormavist 2012.06 IBIS-AMI Model $\n"
              "$Id: File Version      2012.06 $\n"
              "$Id: Product Name      Kormavist $\n"
              "$Id: Product Version   2012.06 $\n"
              "$Id: Company Name       $\n"
              "$Id: Copyright          $\n");
}

#include "model/Version.h"

#include <gtest/gtest.h>

GTEST_TEST(Version, PrintsSixLinesThatTextScannersFind)
{
    testing::internal::CaptureStdout();
    TalvernQuellCodeGen::version();
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              R"($Id: File Description  Kormavist 2012.06 IBIS-AMI Model $
$Id: File Version      2012.06 $
$Id: Product Name      Kormavist $
$Id: Product Version   2012.06 $
$Id: Company Name       $
$Id: Copyright          $
)");
}

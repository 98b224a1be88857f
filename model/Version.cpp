#include "model/Version.h"

#include <iostream>

namespace TalvernQuellCodeGen {

#define KEEP __attribute__((used, retain))

// Text-scanning tools pick these lines out of the library file, so they are kept even where nothing
// calls version().
KEEP static const char FileDescription[] =
    "$Id: File Description  Kormavist 2012.06 IBIS-AMI Model $";
KEEP static const char FileVersion[] = "$Id: File Version      2012.06 $";
KEEP static const char ProductName[] = "$Id: Product Name      Kormavist $";
KEEP static const char ProductVersion[] = "$Id: Product Version   2012.06 $";
KEEP static const char CompanyName[] = "$Id: Company Name       $";
KEEP static const char Copyright[] = "$Id: Copyright          $";

void version()
{
    for (const char* line :
         {FileDescription, FileVersion, ProductName, ProductVersion, CompanyName, Copyright})
        std::cout << line << std::endl;
}

}  // namespace TalvernQuellCodeGen

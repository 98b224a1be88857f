// Files beside the one being checked: opening them, and those that [Algorithmic Model] blocks name.
#include "IbisParser/check/companions.h"

#include <cstring>

#include "IbisParser/algmod.h"
#include "IbisParser/base/place.h"
#include "IbisParser/base/position.h"
#include "IbisParser/base/raise.h"
#include "IbisParser/check/ami.h"
#include "IbisParser/cmn.h"
#include "IbisParser/mdl.h"
#include "IbisParser/read/parse.h"
#include "IbisParser/store/section.h"

std::FILE* COMPANION_Open(const char* name)
{
    char path[2 * (CMN_PATH_MAX + 1)];
    const std::size_t length = std::strlen(gsFilePath_ibs);
    const char* separator = length > 0 && gsFilePath_ibs[length - 1] != '/' ? "/" : "";
    std::snprintf(path, sizeof path, "%s%s%s", gsFilePath_ibs, separator, name);
    return SEC_OpenFile(path);
}

bool COMPANION_Exists(const char* name)
{
    std::FILE* file = COMPANION_Open(name);
    if (file == nullptr) return false;
    std::fclose(file);
    return true;
}

static void s_testParameterFile(AlgModExec* exec, const char* model)
{
    if (std::strchr(exec->parameterFile, '.') == nullptr) {
        ERRLOG_ErrorNew(4617, exec->parameterFile, model);
        return;
    }
    std::FILE* file = COMPANION_Open(exec->parameterFile);
    if (file == nullptr) {
        ERRLOG_ErrorNew(4618, exec->parameterFile, model);
        return;
    }
    const PositionKeeper position;
    FreeParsedTree(&exec->tree);
    if (PARSE_ReadParameters(exec->parameterFile, file))
        exec->tree = AMICHECK_Parameters();
    else
        AMICHECK_FreeText();
}

static void s_testExec(AlgModExec* exec, const char* model)
{
    const PlaceScope at(exec);
    if (!COMPANION_Exists(exec->codeFile)) ERRLOG_ErrorNew(4616, exec->codeFile, model);
    s_testParameterFile(exec, model);
}

int ALGMOD_Test(Mdl* models)
{
    for (Mdl* model = models; model != nullptr; model = model->next) {
        if (model->algMod == nullptr) continue;
        const PlaceScope at(SUBJECT_MODEL, model);
        const PlaceScope block(model->algMod);
        if (model->algMod->execs == nullptr) ERRLOG_ErrorNew(4615, model->name);
        for (AlgModExec* exec = model->algMod->execs; exec != nullptr; exec = exec->next)
            s_testExec(exec, model->name);
    }
    return 1;
}

#include "IbisParser/base/position.h"

#include <cstring>

// The position is the reader's.
static const char s_Module[] = "IbisParser/parse";

unsigned long gulLineNum = 0;
char gsFileName[CMN_PATH_MAX + 1] = "";
char gsFilePath_ibs[CMN_PATH_MAX + 1] = "";
char gpcComment = '|';
KeywordCode geCurrentKeyword = NOT_KEY;
FileType geCurrFileType = FILE_IBS;
int geFileVersion = 0;
int gbIBIS_VerFound = 0;
int gbEndFound = 0;
int gbInSubModel = 0;
int gbContinue = 0;
char* gsBuffer = nullptr;
bool gbTabFound = false;

PositionKeeper::PositionKeeper()
    : m_LineNum(gulLineNum),
      m_Comment(gpcComment),
      m_CurrentKeyword(geCurrentKeyword),
      m_FileType(geCurrFileType),
      m_FileVersion(geFileVersion),
      m_IbisVerFound(gbIBIS_VerFound),
      m_EndFound(gbEndFound),
      m_InSubModel(gbInSubModel),
      m_Continue(gbContinue),
      m_TabFound(gbTabFound)
{
    std::memcpy(m_FileName, gsFileName, sizeof gsFileName);
    std::memcpy(m_FilePath, gsFilePath_ibs, sizeof gsFilePath_ibs);
}

PositionKeeper::~PositionKeeper()
{
    gulLineNum = m_LineNum;
    std::memcpy(gsFileName, m_FileName, sizeof gsFileName);
    std::memcpy(gsFilePath_ibs, m_FilePath, sizeof gsFilePath_ibs);
    gpcComment = m_Comment;
    geCurrentKeyword = m_CurrentKeyword;
    geCurrFileType = m_FileType;
    geFileVersion = m_FileVersion;
    gbIBIS_VerFound = m_IbisVerFound;
    gbEndFound = m_EndFound;
    gbInSubModel = m_InSubModel;
    gbContinue = m_Continue;
    gbTabFound = m_TabFound;
}

void POSITION_Reset(FileType fileType)
{
    gbInSubModel = 0;
    gbTabFound = false;
    gulLineNum = 0;
    gpcComment = '|';
    geCurrentKeyword = NOT_KEY;
    gbIBIS_VerFound = 0;
    gbEndFound = 0;
    geCurrFileType = fileType;
    PLACE_Close();
}

unsigned long PARSE_GetLineNum()
{
    return gulLineNum;
}

char* PARSE_GetFileName(char* buf)
{
    CMN_ASSERT(buf != nullptr);
    return static_cast<char*>(std::memcpy(buf, gsFileName, std::strlen(gsFileName) + 1));
}
